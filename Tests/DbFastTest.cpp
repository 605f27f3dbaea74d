#include "TableModel.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <climits>
#include <cstddef>
#include <iostream>
#include <limits>
#include <memory>
#include <numeric>
#include <random>

namespace {

using TablePtr = std::unique_ptr<dbf_table, decltype(&dbf_droptable)>;
using FieldSpecs = std::vector<dbf_fieldspec>;

TablePtr createTable(const dbf_tablespec& spec, FieldSpecs fields, int32_t terminator = DBF_END) {
    fields.push_back({terminator, 0});
    fields.push_back({DBF_END, 0}); // a scan that passes a wrong terminator stays inside the array
    return {dbf_createtable(&spec, fields.data()), &dbf_droptable};
}

dbf_index* createIndex(dbf_table* table, int32_t kind, int32_t unique, std::vector<int32_t> fields) {
    const dbf_indexspec spec{kind, unique};
    fields.push_back(-1);
    return dbf_createindex(table, &spec, fields.data());
}

TEST(DbFast, tableSpecificationsAreChecked) {
    const struct {
        const char* what;
        dbf_tablespec table;
        FieldSpecs fields;
        int32_t terminator;
        bool accepted;
    } cases[] = {
        {"least of everything", {0, 1}, {{DBF_BYTES, 1}}, DBF_END, true},
        {"largest bucket", {0, 65535}, {{DBF_STRING, 1}}, DBF_END, true},
        {"most buckets", {65534, 1}, {{DBF_INT, 0}}, DBF_END, true},
        {"one bucket too many", {65535, 1}, {{DBF_INT, 0}}, DBF_END, false},
        {"sizes that fixed types ignore", {1, 1}, {{DBF_INT, -5}, {DBF_PWSTRING, -1}, {DBF_DOUBLE, 0}}, DBF_END, true},
        {"no room in a bucket", {0, 0}, {{DBF_INT, 0}}, DBF_END, false},
        {"negative bucket", {0, -1}, {{DBF_INT, 0}}, DBF_END, false},
        {"bucket too large", {0, 65536}, {{DBF_INT, 0}}, DBF_END, false},
        {"negative capacity", {-1, 1}, {{DBF_INT, 0}}, DBF_END, false},
        {"no fields", {0, 1}, {}, DBF_END, false},
        {"terminator 101", {0, 1}, {{DBF_INT, 0}}, 101, false},
        {"terminator 99", {0, 1}, {{DBF_INT, 0}}, 99, false},
        {"unknown type", {0, 1}, {{9, 4}}, DBF_END, false},
        {"negative type", {0, 1}, {{DBF_INT, 0}, {-1, 4}}, DBF_END, false},
        {"empty string", {0, 1}, {{DBF_STRING, 0}}, DBF_END, false},
        {"negative bytes", {0, 1}, {{DBF_BYTES, -1}}, DBF_END, false},
        {"empty wide string", {0, 1}, {{DBF_WSTRING, 0}}, DBF_END, false},
        {"wide string beyond 31 bits", {0, 1}, {{DBF_WSTRING, 0x40000001}}, DBF_END, false},
        {"row beyond 31 bits", {0, 1}, {{DBF_BYTES, INT_MAX}, {DBF_BYTES, INT_MAX}}, DBF_END, false},
    };
    for (const auto& c : cases)
        EXPECT_EQ(createTable(c.table, c.fields, c.terminator) != nullptr, c.accepted) << c.what;
    const dbf_tablespec spec{0, 1};
    EXPECT_EQ(dbf_createtable(&spec, nullptr), nullptr);
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
        EXPECT_EQ(createIndex(table.get(), c.kind, 1, c.fields) != nullptr, c.accepted)
            << testing::PrintToString(c.fields);
}

TEST(DbFast, rowsHaveTheDeclaredLayout) {
    const struct {
        FieldSpecs fields;
        std::vector<std::pair<std::size_t, std::size_t>> places; // offset and size
        std::size_t rowSize;
    } cases[] = {
        {{{DBF_INT, 77}, {DBF_BYTES, 22}}, {{0, 4}, {4, 22}}, 26},
        {{{DBF_INT, 0}, {DBF_BYTES, 16}}, {{0, 4}, {4, 16}}, 20},
        {{{DBF_INT, 0}, {DBF_INT, 0}}, {{0, 4}, {4, 4}}, 8},
        {{{DBF_BYTES, 1}, {DBF_DOUBLE, 0}}, {{0, 1}, {8, 8}}, 16},
        {{{DBF_STRING, 1}, {DBF_WSTRING, 10}, {DBF_BYTES, 1}, {DBF_FLOAT, 0}, {DBF_STRING, 3}, {DBF_POINTER, 1}},
         {{0, 1}, {2, 20}, {22, 1}, {24, 4}, {28, 3}, {32, 8}},
         40},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.places));
        const TablePtr table = createTable({0, 1}, c.fields);
        Row row(c.rowSize, '\0');
        std::iota(row.begin(), row.end(), '\x21');
        ASSERT_EQ(dbf_insert(table.get(), row.data()), DBF_OK);
        for (std::size_t field = 0; field < c.places.size(); ++field) {
            dbf_index* const index = createIndex(table.get(), 1, 1, {static_cast<int32_t>(field)});
            const auto [offset, size] = c.places[field];
            Row probe(c.rowSize + 8, '\x7A');
            probe.replace(offset, size, row, offset, size);
            for (const std::size_t wrong : {offset, offset + size - 1}) {
                Row other = probe;
                other[wrong] = static_cast<char>(other[wrong] ^ 1);
                EXPECT_EQ(dbf_select(index, other.data()), DBF_NOTFOUND) << wrong;
            }
            EXPECT_EQ(dbf_select(index, probe.data()), DBF_OK) << field;
            EXPECT_EQ(probe, row + Row(8, '\x7A'));
        }
    }
}

TEST(DbFast, tableStopsAtItsLastBucket) {
    const TablePtr table = createTable({0, 1}, {{DBF_INT, 0}});
    dbf_index* const index = createIndex(table.get(), 1, 1, {0});
    const int32_t last = 65534;
    int32_t key = 0;
    while (key < last && dbf_insert(table.get(), &key) == DBF_OK)
        ++key;
    EXPECT_EQ(key, last);
    EXPECT_EQ(dbf_insert(table.get(), &key), DBF_FAILED);
    EXPECT_EQ(dbf_select(index, &key), DBF_NOTFOUND);
    for (int32_t known = 0; known < last; ++known)
        ASSERT_EQ(dbf_select(index, &known), DBF_OK) << known;
    const int32_t deleted = 4711;
    EXPECT_EQ(dbf_delete(index, &deleted), DBF_OK);
    EXPECT_EQ(dbf_insert(table.get(), &key), DBF_OK);
    EXPECT_EQ(dbf_insert(table.get(), &deleted), DBF_FAILED);
}

struct TableShape {
    const char* name;
    FieldSpecs fields;
    std::vector<unsigned int> values; // per field: how many different ones occur
    std::vector<std::pair<bool, std::vector<int32_t>>> indexes;
};

const TableShape tableShapes[] = {
    {"identities", {{DBF_INT, 0}, {DBF_BYTES, 22}}, {30000, 30000}, {{true, {0}}, {true, {1}}, {false, {1, 0}}}},
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
            else
                touchRow(step * 5 / steps % 2 == 0 ? 24 : 2);
        }
        compareAll();
    }

private:
    unsigned int below(std::size_t limit) { return static_cast<unsigned int>(random_() % limit); }

    void addIndex(IndexModel index) {
        index.rebuild(model_.rows);
        index.handle = createIndex(table_.get(), 1, index.unique ? 1 : 0, index.keyFields);
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
        IndexModel& by = model_.indexes[below(model_.indexes.size())];
        Row row = randomRow();
        const unsigned int action = below(inserts + 6);
        const auto stored = model_.rows.lower_bound(below(model_.capacity() + 1));
        if (stored != model_.rows.end() && below(4) < (action < 6 ? 3 : 1))
            by.copyKey(stored->second, row);
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

    Row randomRow() {
        Row row(fields_.back().offset + fields_.back().size, static_cast<char>(random_())); // the padding counts too
        for (std::size_t i = 0; i < fields_.size(); ++i)
            writeValue(fields_[i], below(shape_.values[i]), row.data() + fields_[i].offset);
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
};

TEST(DbFast, agreesWithAPlainModel) {
    unsigned int seed = 20260;
    for (const TableShape& shape : tableShapes)
        for (const dbf_tablespec& storage : storages) {
            std::cout << shape.name << ", " << storage.initialrows << " rows, " << storage.rowsperbucket
                      << " per bucket: seed " << ++seed << "\n";
            Comparison(shape, storage, seed).run(storage.rowsperbucket == 2000 ? 30000 : 4000);
            ASSERT_FALSE(HasFailure());
        }
}

} // namespace
