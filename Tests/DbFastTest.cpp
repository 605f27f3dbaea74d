#include "Stderr.h"
#include "TableModel.h"

#include <algorithm>
#include <array>
#include <climits>
#include <cstddef>
#include <iostream>
#include <limits>
#include <memory>
#include <numeric>
#include <random>

/** A request that is too large to be served is a failure like any other, also for a sanitizer. */
extern "C" const char* __asan_default_options() {
    return "allocator_may_return_null=1";
}

namespace {

TEST(DbFast, tableSpecificationsAreChecked) {
    const struct {
        const char* what;
        dbf_tablespec table;
        FieldSpecs fields;
        int32_t terminator;
        bool accepted;
    } cases[] = {
        {"least of everything", {0, 1}, {{DBF_BYTES, 1}}, DBF_END, true},
        {"most buckets", {65534, 1}, {{DBF_INT, 0}}, DBF_END, true},
        {"one bucket too many", {65535, 1}, {{DBF_INT, 0}}, DBF_END, false},
        {"sizes that fixed types ignore", {1, 1}, {{DBF_INT, -5}, {DBF_PWSTRING, -1}, {DBF_DOUBLE, 0}}, DBF_END, true},
        {"no room in a bucket", {0, 0}, {{DBF_INT, 0}}, DBF_END, false},
        {"bucket too large", {0, 65536}, {{DBF_INT, 0}}, DBF_END, false},
        {"negative capacity", {-1, 1}, {{DBF_INT, 0}}, DBF_END, false},
        {"no fields", {0, 1}, {}, DBF_END, false},
        {"terminator 101", {0, 1}, {{DBF_INT, 0}}, 101, false},
        {"unknown types", {0, 1}, {{DBF_INT, 0}, {9, 4}}, DBF_END, false},
        {"empty string", {0, 1}, {{DBF_STRING, 0}}, DBF_END, false},
        {"negative bytes", {0, 1}, {{DBF_BYTES, -1}}, DBF_END, false},
        {"wide string beyond 31 bits", {0, 1}, {{DBF_WSTRING, 0x40000001}}, DBF_END, false},
        {"row beyond 31 bits", {0, 1}, {{DBF_BYTES, INT_MAX}, {DBF_BYTES, INT_MAX}}, DBF_END, false},
        {"bucket of the largest rows", {0, 65535}, {{DBF_BYTES, INT_MAX - 8}}, DBF_END, false},
        {"bucket of the largest wide rows", {0, 65535}, {{DBF_WSTRING, INT_MAX / 2 - 8}}, DBF_END, false},
        {"most buckets of the largest rows", {INT_MAX, 65535}, {{DBF_BYTES, INT_MAX - 8}}, DBF_END, false},
        {"more rows than 31 bits count", {INT_MAX, 1}, {{DBF_BYTES, 1}}, DBF_END, false},
    };
    stderrOf([&] { // where memory that the system does not have is reported
        for (const auto& c : cases)
            EXPECT_EQ(createTable(c.table, c.fields, c.terminator) != nullptr, c.accepted) << c.what;
    });
}

TEST(DbFast, indexSpecificationsAreChecked) {
    const TablePtr table = createTable({0, 4}, {{DBF_INT, 0}, {DBF_FLOAT, 0}});
    const struct {
        int32_t kind;
        std::vector<int32_t> fields;
        bool accepted;
    } cases[] = {{1, {0}, true},  {1, {1, 0}, true},  {0, {0}, false},       {2, {0}, false},         {1, {}, false},
                 {1, {2}, false}, {1, {0, 0}, false}, {1, {0, 1, 0}, false}, {1, {0, INT_MAX}, false}};
    for (const auto& c : cases)
        EXPECT_EQ(createIndex(table, true, c.fields, c.kind) != nullptr, c.accepted)
            << testing::PrintToString(c.fields);
}

struct TableShape {
    const char* name;
    FieldSpecs fields;
    std::vector<unsigned int> values; // per field: how many different ones occur
    std::vector<std::pair<bool, std::vector<int32_t>>> indexes;
};

const TableShape tableShapes[] = {
    {"numbers",
     {{DBF_DOUBLE, 0}, {DBF_INT, 0}, {DBF_DOUBLE, 0}, {DBF_FLOAT, 0}},
     {9000, 30000, 40, 40},
     {{true, {1}}, {true, {0}}, {false, {2}}, {false, {3}}, {true, {2, 1}}, {false, {0, 2}}, {false, {3, 2}}}},
    {"texts",
     {{DBF_PSTRING, 0}, {DBF_STRING, 1}, {DBF_WSTRING, 6}, {DBF_INT, 0}},
     {300, 20, 200, 30000},
     {{true, {3}}, {false, {1}}, {false, {2}}, {false, {0}}, {true, {0, 2}}, {false, {2, 1, 0}}}},
    {"every type",
     {{DBF_INT, 0},
      {DBF_FLOAT, 0},
      {DBF_DOUBLE, 0},
      {DBF_STRING, 6},
      {DBF_BYTES, 5},
      {DBF_POINTER, 0},
      {DBF_PSTRING, 0},
      {DBF_WSTRING, 6},
      {DBF_PWSTRING, 0}},
     {30000, 60, 60, 300, 300, 300, 300, 300, 300},
     {{true, {0}}, {false, {3}}, {false, {4}}, {false, {5}}, {false, {8}}, {true, {2, 5, 7}}, {false, {1, 3, 8}}}},
};

const dbf_tablespec storages[] = {{0, 1}, {0, 2}, {16, 1}, {0, 7}, {100, 7}, {0, 2000}, {4000, 2000}};

/** Text that differs for each number; every third one fills its capacity, without a terminator. */
template <typename Char>
std::vector<Char> textOf(unsigned int number, std::size_t capacity, unsigned int behindTerminator) {
    const auto unit = [](unsigned int digit) {
        return static_cast<Char>((sizeof(Char) == 1 ? 0xC0 : 0x1F600) + digit);
    };
    std::vector<Char> text;
    for (unsigned int rest = number; rest != 0 && text.size() < capacity; rest /= 25)
        text.push_back(unit(rest % 25));
    const bool terminated = number % 3 != 0 && text.size() < capacity;
    if (terminated)
        text.push_back(0);
    text.resize(capacity, unit(terminated ? behindTerminator : 25));
    return text;
}

/** Terminated text; there are two copies of each at different addresses. */
template <typename Char>
const Char* pooledText(unsigned int number, bool second) {
    static std::map<std::pair<unsigned int, bool>, std::vector<Char>> pool;
    auto& text = pool[{number, second}];
    if (text.empty()) {
        text = textOf<Char>(number, number % 9, 0);
        text.push_back(0);
    }
    return text.data();
}

double numberOf(unsigned int number) {
    const std::array<double, 3> special = {0.0, -0.0, std::numeric_limits<double>::quiet_NaN()};
    return number < special.size() ? special[number] : number * 0.25;
}

/** Drives a table and its model with the same random calls. */
class Comparison {
public:
    Comparison(const TableShape& shape, const dbf_tablespec& storage, unsigned int seed)
        : shape_(shape),
          fields_(layoutOf(shape.fields)),
          random_(seed),
          table_(createTable(storage, shape.fields)),
          model_(storage) {
        for (const auto& [unique, keyFields] : shape.indexes)
            addIndex(IndexModel(unique, keyFields, fields_));
    }

    void run(unsigned int steps) {
        for (unsigned int step = 0; step < steps && !testing::Test::HasFailure(); ++step) {
            SCOPED_TRACE(step);
            if (step % (steps / 8) == 0)
                compareAll();
            if (step == steps / 12 || step == steps - steps / 6)
                clear();
            else if (below(400) == 0)
                exchangeIndex();
            else if (below(3) == 0)
                useCursor();
            else
                touchRow(step * 5 / steps % 2 == 0 ? 24 : 2);
        }
        compareAll();
    }

private:
    struct Cursor_s {
        std::unique_ptr<dbf_cursor, decltype(&dbf_closecursor)> handle;
        std::vector<Position> rows;
        std::size_t position;
    };

    unsigned int below(std::size_t limit) { return static_cast<unsigned int>(random_() % limit); }
    IndexModel& anyIndex() { return model_.indexes[below(model_.indexes.size())]; }

    void addIndex(IndexModel index) {
        index.rebuild(model_.rows);
        index.handle = createIndex(table_, index.unique, index.keyFields);
        EXPECT_NE(index.handle, nullptr);
        model_.indexes.push_back(std::move(index));
    }

    /** Drops an index for a while; what was dropped last comes back. */
    void exchangeIndex() {
        if (!dropped_.empty()) {
            addIndex(std::move(dropped_.back()));
            return dropped_.pop_back();
        }
        const auto index = model_.indexes.begin() + static_cast<std::ptrdiff_t>(below(model_.indexes.size()));
        EXPECT_EQ(dbf_dropindex(index->handle), DBF_OK);
        dropped_.push_back(std::move(*index));
        model_.indexes.erase(index);
    }

    void clear() {
        EXPECT_EQ(dbf_cleartable(table_.get()), DBF_OK);
        model_.clear();
    }

    /** Inserts with a weight of `inserts` against 6 for the rest. */
    void touchRow(unsigned int inserts) {
        const IndexModel& by = anyIndex();
        const unsigned int action = below(inserts + 6);
        Row row = randomRow(by, action < 6 ? 3 : 1);
        Row expected = row;
        if (action < 1) {
            EXPECT_EQ(dbf_select(by.handle, row.data()), model_.select(by, expected));
            EXPECT_EQ(row, expected);
        } else if (action < 3) {
            EXPECT_EQ(dbf_update(by.handle, row.data()), model_.update(by, row));
        } else if (action < 6) {
            EXPECT_EQ(dbf_delete(by.handle, row.data()), model_.remove(by, row));
        } else {
            EXPECT_EQ(dbf_insert(table_.get(), row.data()), model_.insert(row));
        }
        compareMatches(by, row);
    }

    /** As many quarters of them have the key of a row that is stored. */
    Row randomRow(const IndexModel& by, unsigned int quarters) {
        Row row(fields_.back().offset + fields_.back().size, static_cast<char>(random_())); // the padding counts too
        for (std::size_t i = 0; i < fields_.size(); ++i)
            writeValue(fields_[i], below(shape_.values[i]), row.data() + fields_[i].offset);
        const auto stored = model_.rows.lower_bound(below(model_.capacity() + 1));
        if (stored != model_.rows.end() && below(4) < quarters)
            by.copyKey(stored->second, row);
        row.shrink_to_fit();
        return row;
    }

    void writeValue(const FieldModel& field, unsigned int number, char* at) {
        const bool second = below(2) == 0;
        const auto put = [&](const auto& value) { std::memcpy(at, &value, field.size); };
        switch (field.type) {
        case DBF_FLOAT:
            return put(static_cast<float>(numberOf(number)));
        case DBF_DOUBLE:
            return put(numberOf(number));
        case DBF_STRING:
            std::memcpy(at, textOf<char>(number, field.size, below(25)).data(), field.size);
            return;
        case DBF_WSTRING:
            std::memcpy(at, textOf<wchar_t>(number, field.size / sizeof(wchar_t), below(25)).data(), field.size);
            return;
        case DBF_POINTER:
        case DBF_PSTRING:
            return put(pooledText<char>(number, second));
        case DBF_PWSTRING:
            return put(pooledText<wchar_t>(number, second));
        default:
            return put(std::array<unsigned int, 6>{number, 0, number ^ 7U, number * 31U, 0, 1});
        }
    }

    Cursor_s openAll() const {
        Cursor_s cursor{{dbf_opencursor_all(table_.get()), &dbf_closecursor}, {}, 0};
        for (const auto& stored : model_.rows)
            cursor.rows.push_back(stored.first);
        return cursor;
    }

    Cursor_s openByKey(const IndexModel& by, const Row& row) const {
        Cursor_s cursor{{dbf_opencursor(by.handle, row.data()), &dbf_closecursor}, by.matches(row), 0};
        std::reverse(cursor.rows.begin(), cursor.rows.end());
        return cursor;
    }

    void useCursor() {
        if (cursors_.size() < 6) {
            const IndexModel& by = anyIndex();
            cursors_.push_back(below(3) == 0 ? openAll() : openByKey(by, randomRow(by, 3)));
        }
        const std::size_t which = below(cursors_.size());
        Cursor_s& cursor = cursors_[which];
        const auto current =
            cursor.position > 0 ? model_.rows.find(cursor.rows[cursor.position - 1]) : model_.rows.end();
        const bool exists = current != model_.rows.end();
        const unsigned int action = below(20);
        if (action == 0) {
            cursors_.erase(cursors_.begin() + static_cast<std::ptrdiff_t>(which));
        } else if (action < 5) {
            Row row = randomRow(anyIndex(), 2);
            if (exists && below(2) == 0)
                anyIndex().copyKey(current->second, row);
            EXPECT_EQ(dbf_updatecurrent(cursor.handle.get(), row.data()),
                      exists ? model_.updateAt(current->first, row) : DBF_NOTFOUND);
        } else if (action < 7) {
            EXPECT_EQ(dbf_deletecurrent(cursor.handle.get()), exists ? model_.removeAt(current->first) : DBF_NOTFOUND);
        } else {
            fetch(cursor);
        }
    }

    void fetch(Cursor_s& cursor) const {
        Row row(fields_.back().offset + fields_.back().size + 8, 'z');
        Row expected = row;
        int result = DBF_NOTFOUND;
        EXPECT_EQ(dbf_getcursorrowcount(cursor.handle.get()), static_cast<int>(cursor.rows.size() - cursor.position));
        if (cursor.position < cursor.rows.size()) {
            const auto stored = model_.rows.find(cursor.rows[cursor.position++]);
            if (stored != model_.rows.end()) {
                expected.replace(0, stored->second.size(), stored->second);
                result = DBF_OK;
            }
        }
        EXPECT_EQ(dbf_fetch(cursor.handle.get(), row.data()), result);
        EXPECT_EQ(row, expected);
    }

    void compareMatches(const IndexModel& index, const Row& key) const {
        const auto expected = index.matches(key);
        std::vector<Position> found;
        for (const dbf_rowid* id = dbf_findhashmatch(index.handle, key.data());
             id != nullptr && found.size() <= expected.size();
             id = dbf_findhashmatch_next(index.handle, key.data(), id))
            found.push_back(model_.positionOf(*id));
        std::reverse(found.begin(), found.end());
        EXPECT_EQ(found, expected);
    }

    void compareAll() const {
        Cursor_s all = openAll();
        for (std::size_t rows = 0; rows <= model_.rows.size(); ++rows)
            fetch(all);
        for (const IndexModel& index : model_.indexes)
            for (const auto& [position, row] : model_.rows) {
                const auto same = index.matches(row);
                if (same.empty() || same.back() == position)
                    compareMatches(index, row);
                Row found = row;
                Row expected = row;
                EXPECT_EQ(dbf_select(index.handle, found.data()), model_.select(index, expected));
                EXPECT_EQ(found, expected);
            }
    }

    const TableShape& shape_;
    const std::vector<FieldModel> fields_;
    std::mt19937 random_;
    TablePtr table_;
    TableModel model_;
    std::vector<IndexModel> dropped_;
    std::vector<Cursor_s> cursors_; // closed before the table is dropped
};

TEST(DbFast, agreesWithAPlainModel) {
    unsigned int seed = 20260;
    for (const TableShape& shape : tableShapes)
        for (const dbf_tablespec& storage : storages) {
            std::cout << shape.name << ", " << storage.initialrows << " rows, " << storage.rowsperbucket
                      << " per bucket: seed " << ++seed << "\n";
            Comparison(shape, storage, seed).run(storage.rowsperbucket == 2000 ? 30000 : 5000);
            ASSERT_FALSE(HasFailure());
        }
}

TEST(DbFast, aLocationFromBeforeClearingFindsNothing) {
    const TablePtr table = createTable({0, 4}, {{DBF_INT, 0}});
    dbf_index* const index = createIndex(table, false, {0});
    const int32_t key = 7;
    for (int row = 0; row < 100; ++row)
        ASSERT_EQ(dbf_insert(table.get(), &key), DBF_OK);
    const dbf_rowid last = *dbf_findhashmatch(index, &key);
    ASSERT_EQ(dbf_cleartable(table.get()), DBF_OK);
    EXPECT_EQ(dbf_findhashmatch_next(index, &key, &last), nullptr);
}

TEST(DbFast, aNullTextEqualsOnlyItself) {
    for (const int32_t type : {DBF_PSTRING, DBF_PWSTRING}) {
        const TablePtr table = createTable({0, 4}, {{type, 0}});
        dbf_index* const index = createIndex(table, true, {0});
        const wchar_t empty[] = L"";
        const void* const keys[] = {nullptr, empty};
        for (const void* key : keys) {
            EXPECT_EQ(dbf_select(index, &key), DBF_NOTFOUND);
            EXPECT_EQ(dbf_insert(table.get(), &key), DBF_OK);
            EXPECT_EQ(dbf_insert(table.get(), &key), DBF_DUPLICATE);
        }
    }
}

} // namespace
