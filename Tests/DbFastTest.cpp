#include "Models/TableComparison.h"
#include "Support/Stderr.h"

#include <climits>
#include <iostream>
#include <numeric>
#include <random>

/** A request that is too large to be served is a failure like any other, also for a sanitizer. */
extern "C" const char* __asan_default_options() {
    return "allocator_may_return_null=1";
}

namespace {

TEST(DbFastTest, tableSpecificationsAreChecked) {
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
        for (const auto& c : cases) {
            EXPECT_EQ(createTable(c.table, c.fields, c.terminator) != nullptr, c.accepted) << c.what;
        }
    });
}

TEST(DbFastTest, indexSpecificationsAreChecked) {
    const TablePtr table = createTable({0, 4}, {{DBF_INT, 0}, {DBF_FLOAT, 0}});
    const struct {
        int32_t kind;
        std::vector<int32_t> fields;
        bool accepted;
    } cases[] = {{1, {0}, true},  {1, {1, 0}, true},  {0, {0}, false},       {2, {0}, false},         {1, {}, false},
                 {1, {2}, false}, {1, {0, 0}, false}, {1, {0, 1, 0}, false}, {1, {0, INT_MAX}, false}};
    for (const auto& c : cases) {
        EXPECT_EQ(createIndex(table, true, c.fields, c.kind) != nullptr, c.accepted)
            << testing::PrintToString(c.fields);
    }
}

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

struct RandomChoices {
    std::mt19937 random;
    unsigned int below(std::size_t limit) { return static_cast<unsigned int>(random() % limit); }
};

TEST(DbFastTest, agreesWithAPlainModel) {
    unsigned int seed = 20260;
    for (const TableShape& shape : tableShapes) {
        for (const dbf_tablespec& storage : storages) {
            std::cout << shape.name << ", " << storage.initialrows << " rows, " << storage.rowsperbucket
                      << " per bucket: seed " << ++seed << std::endl;
            RandomChoices choices{std::mt19937(seed)};
            TableComparison<RandomChoices> comparison(shape, storage, choices);
            const unsigned int steps = storage.rowsperbucket == 2000 ? 30000 : 5000;
            for (unsigned int step = 0; step < steps; ++step) {
                if (step % (steps / 8) == 0) {
                    comparison.compareAll();
                }
                if (step == steps / 12 || step == steps - steps / 6) {
                    comparison.clear();
                }
                comparison.step(step * 5 / steps % 2 == 0 ? 24 : 2); // growing and shrinking in turn
            }
            comparison.compareAll();
        }
    }
}

// Copying a row may go by parts: each byte has its own value, and what stands behind the row stays.
TEST(DbFastTest, rowsOfAnySizeComeBackWhole) {
    for (const std::size_t size : {5u, 15u, 16u, 31u, 32u, 33u, 64u, 71u, 300u}) {
        SCOPED_TRACE(size);
        const TablePtr table = createTable({0, 2}, {{DBF_BYTES, 4}, {DBF_BYTES, static_cast<int32_t>(size - 4)}});
        dbf_index* const index = createIndex(table, true, {0});
        const auto rowWith = [size](char key, char first) {
            Row row(size, key);
            std::iota(row.begin() + 4, row.end(), first);
            return row;
        };
        for (const char key : {'a', 'b', 'c'}) {
            ASSERT_EQ(dbf_insert(table.get(), rowWith(key, key).data()), DBF_OK);
        }
        ASSERT_EQ(dbf_update(index, rowWith('b', 'x').data()), DBF_OK);
        dbf_cursor* const cursor = dbf_opencursor_all(table.get());
        for (const Row& expected : {rowWith('a', 'a'), rowWith('b', 'x'), rowWith('c', 'c')}) {
            Row selected = expected.substr(0, 4) + Row(size, '#');
            Row fetched(size + 4, '#');
            EXPECT_EQ(dbf_select(index, selected.data()), DBF_OK);
            EXPECT_EQ(selected, expected + "####");
            EXPECT_EQ(dbf_fetch(cursor, fetched.data()), DBF_OK);
            EXPECT_EQ(fetched, expected + "####");
        }
        dbf_closecursor(cursor);
    }
}

TEST(DbFastTest, aLocationFromBeforeClearingFindsNothing) {
    const TablePtr table = createTable({0, 4}, {{DBF_INT, 0}});
    dbf_index* const index = createIndex(table, false, {0});
    const int32_t key = 7;
    for (int row = 0; row < 100; ++row) {
        ASSERT_EQ(dbf_insert(table.get(), &key), DBF_OK);
    }
    const dbf_rowid last = *dbf_findhashmatch(index, &key);
    ASSERT_EQ(dbf_cleartable(table.get()), DBF_OK);
    EXPECT_EQ(dbf_findhashmatch_next(index, &key, &last), nullptr);
}

TEST(DbFastTest, aNullTextEqualsOnlyItself) {
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
