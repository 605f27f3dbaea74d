// The table store beside containers that find a row by a number and by 22 characters.

#include "KeyStoreBenchmark.h"

#include <DbFast/dbfast.h>

namespace {

/** A table with the functions of the other stores. */
class Table : public KeyedByText {
public:
    Table()
        : table_(dbf_createtable(&tableSpec, fieldSpecs)),
          byId_(dbf_createindex(table_, &indexSpec, idField)),
          byKey_(dbf_createindex(table_, &indexSpec, keyField)) {}
    ~Table() { dbf_droptable(table_); }
    Table(const Table&) = delete;
    Table& operator=(const Table&) = delete;

    std::int32_t findOrInsert(std::int32_t id, const Key& key) {
        const Pair row = {id, key};
        return dbf_insert(table_, &row) == DBF_OK ? id : find(key);
    }
    std::int32_t find(const Key& key) const {
        Pair row = {0, key};
        return dbf_select(byKey_, &row) == DBF_OK ? row.id : -1;
    }
    Key keyOf(std::int32_t id) const {
        Pair row = {id, {}};
        dbf_select(byId_, &row);
        return row.key;
    }
    void erase(const Key& key) {
        const Pair row = {0, key};
        dbf_delete(byKey_, &row);
    }
    dbf_table* table() const { return table_; }

private:
    static constexpr dbf_tablespec tableSpec = {2000, 2000};
    static constexpr dbf_fieldspec fieldSpecs[] = {{DBF_INT, 0}, {DBF_BYTES, 22}, {DBF_END, 0}};
    static constexpr dbf_indexspec indexSpec = {1, 1};
    static constexpr std::int32_t idField[] = {0, -1};
    static constexpr std::int32_t keyField[] = {1, -1};

    dbf_table* table_;
    dbf_index* byId_;
    dbf_index* byKey_;
};

/** Deletes half of the rows in random order and inserts them again; an operation is one of the two. */
template <typename Store>
void replaceHalf(benchmark::State& state, std::size_t count) {
    Store& store = filledStore<Store>(count);
    const std::vector<Key> keys = shuffled(keysOf(count));
    std::vector<Pair> half;
    for (std::size_t i = 0; i < count / 2; ++i) {
        half.push_back({store.find(keys[i]), keys[i]});
    }
    for (auto _ : state) {
        for (const Pair& pair : half) {
            store.erase(pair.key);
        }
        for (const Pair& pair : half) {
            benchmark::DoNotOptimize(store.findOrInsert(pair.id, pair.key));
        }
    }
}

void scan(benchmark::State& state, std::size_t count) {
    const Table& store = filledStore<Table>(count);
    std::int64_t sum = 0;
    for (auto _ : state) {
        dbf_cursor* cursor = dbf_opencursor_all(store.table());
        Pair row;
        while (dbf_fetch(cursor, &row) == DBF_OK) {
            sum += row.id;
        }
        dbf_closecursor(cursor);
    }
    benchmark::DoNotOptimize(sum);
}

/** Copies the rows, which take 32 bytes each in a table, from one array to another. */
void copyRows(benchmark::State& state, std::size_t count) {
    constexpr std::size_t stride = 32;
    const std::vector<char> rows(count * stride, 'x');
    std::vector<char> copy(count * stride);
    for (auto _ : state) {
        std::memcpy(copy.data(), rows.data(), rows.size());
        benchmark::ClobberMemory();
    }
}

const bool added = [] {
    for (const std::size_t count : std::initializer_list<std::size_t>{100000, 1000000}) {
        const auto add = [count](const char* work, const char* name, void (*run)(benchmark::State&, std::size_t)) {
            addBenchmark("tables/" + std::string(work) + "/" + std::to_string(count) + "/" + name, count,
                         [run, count](benchmark::State& state) { run(state, count); });
        };
        const auto addStore = [add](auto* store, const char* name) {
            using Store = std::remove_pointer_t<decltype(store)>;
            add("insert", name, insertAll<Store>);
            add("find 22 bytes", name, findAll<Store>);
            add("find int", name, findAllById<Store>);
            add("delete and insert", name, replaceHalf<Store>);
        };
        addStore(static_cast<Table*>(nullptr), "library");
        forEachKeyStore(addStore);
        add("scan", "library", scan);
        add("scan", "memcpy", copyRows);
    }
    return true;
}();

} // namespace
