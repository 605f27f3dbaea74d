// The identity database beside containers that find a GlobalId and its number by each other.
//
// Every contender reads its inputs in the order of memory: the library identity objects, the others 22 characters. By
// runtime id the library makes an identity object, the others copy 22 characters.

#include "KeyStores.h"

#include <ImportCommon/ExternalGUIDDatabase.h>

#include <malloc.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <memory>
#include <numeric>

using namespace ImportCommon;

namespace {

/** The library, with the functions of the other stores. */
class Database {
public:
    static std::vector<ExternalGUID> inputs(const std::vector<Key>& keys) {
        std::vector<ExternalGUID> guids;
        guids.reserve(keys.size());
        for (const Key& key : keys) {
            guids.push_back(ExternalGUID::fromIFCGlobalID(key.text.data()));
        }
        return guids;
    }
    std::int32_t findOrInsert(std::int32_t, const ExternalGUID& guid) { return database_.insertGUID(guid); }
    std::int32_t find(const ExternalGUID& guid) { return database_.findGUID(guid); }
    ExternalGUID keyOf(std::int32_t id) { return database_.findGUID(static_cast<ExternalGUIDRuntimeID_e>(id)); }

private:
    ExternalGUIDDatabase database_;
};

std::vector<Key> inputsOf(const std::vector<Key>& keys, const void*) {
    return keys;
}

std::vector<ExternalGUID> inputsOf(const std::vector<Key>& keys, const Database*) {
    return Database::inputs(keys);
}

const std::vector<Key>& keysOf(std::size_t count) {
    static std::vector<Key> keys;
    if (keys.size() != count) {
        keys = randomKeys(count);
    }
    return keys;
}

template <typename Store, typename Inputs>
void fill(Store& store, const Inputs& inputs) {
    std::int32_t id = -2;
    for (const auto& input : inputs) {
        benchmark::DoNotOptimize(store.findOrInsert(id--, input));
    }
}

/** A store of that many keys, kept for the next benchmark. */
template <typename Store>
Store& filledStore(std::size_t count) {
    static std::size_t size = 0;
    static std::unique_ptr<Store> store;
    if (size != count) {
        store.reset();
        store = std::make_unique<Store>();
        fill(*store, inputsOf(keysOf(count), store.get()));
        size = count;
    }
    return *store;
}

template <typename Store>
void registerAll(benchmark::State& state, std::size_t count) {
    const auto inputs = inputsOf(keysOf(count), static_cast<Store*>(nullptr));
    for (auto _ : state) {
        auto store = std::make_unique<Store>();
        fill(*store, inputs);
        state.PauseTiming();
        store.reset();
        state.ResumeTiming();
    }
}

template <typename Store>
void findAll(benchmark::State& state, std::size_t count) {
    Store& store = filledStore<Store>(count);
    const auto inputs = inputsOf(shuffled(keysOf(count)), &store);
    for (auto _ : state) {
        for (const auto& input : inputs) {
            benchmark::DoNotOptimize(store.find(input));
        }
    }
}

template <typename Store>
void findAllById(benchmark::State& state, std::size_t count) {
    Store& store = filledStore<Store>(count);
    std::vector<std::int32_t> ids(count);
    std::iota(ids.rbegin(), ids.rend(), -1 - static_cast<std::int32_t>(count));
    ids = shuffled(std::move(ids));
    for (auto _ : state) {
        for (const std::int32_t id : ids) {
            benchmark::DoNotOptimize(store.keyOf(id));
        }
    }
}

double residentBytes() {
    std::size_t total = 0;
    std::size_t resident = 0;
    std::ifstream("/proc/self/statm") >> total >> resident;
    return static_cast<double>(resident) * static_cast<double>(sysconf(_SC_PAGESIZE));
}

/** Memory that a store takes, measured in a process of its own so that no store finds what another left behind. */
template <typename Store>
void measureMemory(benchmark::State& state, std::size_t count) {
    const auto inputs = inputsOf(keysOf(count), static_cast<Store*>(nullptr));
    double bytes = 0;
    for (auto _ : state) {
        int ends[2];
        if (pipe(ends) != 0) {
            state.SkipWithError("no pipe");
            return;
        }
        const pid_t child = fork();
        if (child == 0) {
            malloc_trim(0);
            const double before = residentBytes();
            Store store;
            fill(store, inputs);
            const double taken = residentBytes() - before;
            _exit(write(ends[1], &taken, sizeof taken) == sizeof taken ? 0 : 1);
        }
        close(ends[1]);
        if (read(ends[0], &bytes, sizeof bytes) != sizeof bytes) {
            state.SkipWithError("the child process failed");
        }
        close(ends[0]);
        waitpid(child, nullptr, 0);
    }
    state.counters["bytes"] = bytes / static_cast<double>(count);
}

template <typename Store>
void addStore(const Store*, std::size_t count, const std::string& name) {
    const std::string size = "/" + std::to_string(count) + "/" + name;
    const auto add = [&](const char* work, void (*run)(benchmark::State&, std::size_t)) {
        return addBenchmark("identities/" + std::string(work) + size, count,
                            [run, count](benchmark::State& state) { run(state, count); });
    };
    add("memory", measureMemory<Store>)->Iterations(1)->Repetitions(1);
    add("register", registerAll<Store>);
    add("find", findAll<Store>);
    add("find by id", findAllById<Store>);
}

const bool added = [] {
    for (const std::size_t count : std::initializer_list<std::size_t>{10000, 100000, 1000000, 4000000}) {
        addStore(static_cast<Database*>(nullptr), count, "library");
        forEachKeyStore([count](auto* store, const char* name) {
            if (count <= 1000000 || std::string_view(name) != "SQLite") { // which takes minutes
                addStore(store, count, name);
            }
        });
    }
    return true;
}();

} // namespace
