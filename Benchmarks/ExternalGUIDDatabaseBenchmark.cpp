// The identity database beside containers that find a GlobalId and its number by each other.
//
// Every contender reads its inputs in the order of memory: the library identity objects, the others 22 characters. By
// runtime id the library makes an identity object, the others copy 22 characters.

#include "KeyStoreBenchmark.h"

#include <ImportCommon/ExternalGUIDDatabase.h>

#include <malloc.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>

using namespace ImportCommon;

namespace {

/** The library, with the functions of the other stores. */
class Database {
public:
    static std::vector<ExternalGUID> inputsOf(const std::vector<Key>& keys) {
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

double residentBytes() {
    std::size_t total = 0;
    std::size_t resident = 0;
    std::ifstream("/proc/self/statm") >> total >> resident;
    return static_cast<double>(resident) * static_cast<double>(sysconf(_SC_PAGESIZE));
}

/** Memory that a store takes, measured in a process of its own so that no store finds what another left behind. */
template <typename Store>
void measureMemory(benchmark::State& state, std::size_t count) {
    const auto inputs = Store::inputsOf(keysOf(count));
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
        const bool isMeasured = child > 0 && read(ends[0], &bytes, sizeof bytes) == sizeof bytes;
        close(ends[0]);
        if (child > 0) {
            waitpid(child, nullptr, 0);
        }
        if (!isMeasured) {
            state.SkipWithError("the child process failed");
            return;
        }
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
    add("register", insertAll<Store>);
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
