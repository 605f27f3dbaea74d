/**
 * @file LoadTest.cpp
 * Many random operations on one database and one table: the answers stay right, and memory stays where it is once the
 * data stops growing. The environment variable IMPORTCOMMON_FULL_TESTS makes it ten million operations each.
 */
#include <DbFast/dbfast.h>
#include <ImportCommon/ExternalGUIDDatabase.h>

#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <memory>
#include <random>
#include <string>
#include <vector>

#if defined(__GLIBC__)
#include <malloc.h>
#endif

using namespace ImportCommon;

/** There in programs that are built with a sanitizer. */
extern "C" __attribute__((weak)) std::size_t __sanitizer_get_current_allocated_bytes();

/** Sizes that can't be served give null, as they do without the sanitizer. */
extern "C" const char* __asan_default_options() {
    return "allocator_may_return_null=1";
}

namespace {

using TablePtr = std::unique_ptr<dbf_table, decltype(&dbf_droptable)>;

unsigned int numberOfOperations() {
    return std::getenv("IMPORTCOMMON_FULL_TESTS") != nullptr ? 10000000 : 300000;
}

/** Bytes that the program holds; 0 when nobody counts them. */
std::size_t bytesInUse() {
    if (__sanitizer_get_current_allocated_bytes != nullptr)
        return __sanitizer_get_current_allocated_bytes();
#if defined(__GLIBC__) && (__GLIBC__ > 2 || __GLIBC_MINOR__ >= 33)
    const auto info = mallinfo2();
    return info.uordblks + info.hblkhd;
#else
    return 0;
#endif
}

/** Numbers that differ in every byte. */
std::uint64_t scattered(unsigned int number) {
    return (number + 1) * 0x9E3779B97F4A7C15U;
}

/** Four kinds in turn. */
ExternalGUID identityOf(unsigned int number) {
    const std::uint64_t bits = scattered(number);
    if (number % 4 == 0) {
        char globalId[] = "0123456789012345678901";
        for (int i = 0; i < 11; ++i)
            globalId[i] = static_cast<char>('A' + (bits >> (4 * i) & 15));
        std::memcpy(globalId + 12, &"0123456789"[number % 10], 1);
        return ExternalGUID::fromIFCGlobalID(globalId);
    }
    if (number % 4 == 1) {
        PXGUID_t px = {};
        std::memcpy(px.bytes, &bits, sizeof bits);
        return ExternalGUID::fromPX(px);
    }
    if (number % 4 == 2)
        return ExternalGUID::fromHalvorneObi(static_cast<int>(bits >> 32));
    double hash[ExternalGUID::SpatialHashSize];
    for (unsigned int i = 0; i < ExternalGUID::SpatialHashSize; ++i)
        hash[i] = static_cast<double>(bits >> (5 * i) & 1023);
    ExternalGUID guid;
    guid.fromSpatialHash(hash);
    return guid;
}

std::string recordOf(const ExternalGUID& guid) {
    unsigned int size = 0;
    const char* const bytes = guid.getBytes(&size);
    return std::string(bytes, size);
}

TEST(Load, databaseAnswersTheSameAndDoesNotGrow) {
    constexpr unsigned int identities = 40000;
    ExternalGUIDDatabase database;
    std::vector<int> ids(identities, -1);
    std::mt19937 random(1);
    std::size_t filled = 0;
    for (unsigned int operation = 0; operation < numberOfOperations() + 2 * identities; ++operation) {
        // First each identity once, in any case; from then on nothing is new.
        const unsigned int number =
            operation < identities ? operation : static_cast<unsigned int>(random() % identities);
        if (operation == 2 * identities)
            filled = bytesInUse();
        const ExternalGUID guid = identityOf(number);
        if (ids[number] == -1)
            ids[number] = database.insertGUID(guid);
        const auto action = random() % 3;
        if (action == 0)
            ASSERT_EQ(database.insertGUID(guid), ids[number]) << operation;
        else if (action == 1)
            ASSERT_EQ(database.findGUID(guid), ids[number]) << operation;
        else
            ASSERT_EQ(recordOf(database.findGUID(static_cast<ExternalGUIDRuntimeID_e>(ids[number]))), recordOf(guid));
    }
    std::cout << filled << " bytes in use when filled, " << bytesInUse() << " at the end\n";
    EXPECT_EQ(bytesInUse(), filled);
}

struct Row {
    std::int32_t key;
    std::int32_t group;
    char text[16];
};

Row rowOf(int key, std::int32_t group) {
    Row row{key, group, {}};
    const std::uint64_t bits = scattered(static_cast<unsigned int>(key));
    std::memcpy(row.text + 4, &bits, sizeof bits);
    return row;
}

constexpr dbf_fieldspec rowFields[] = {{DBF_INT, 0}, {DBF_INT, 0}, {DBF_BYTES, 16}, {DBF_END, 0}};

/** A table with a unique index over the key, another over the text, and groups. */
struct IndexedTable {
    TablePtr table;
    dbf_index* byKey;
    dbf_index* byText;
    dbf_index* byGroup;

    explicit IndexedTable(const dbf_tablespec& spec)
        : table(dbf_createtable(&spec, rowFields), &dbf_droptable),
          byKey(index(0, 1)),
          byText(index(2, 1)),
          byGroup(index(1, 0)) {}

    dbf_index* index(std::int32_t field, std::int32_t unique) const {
        const dbf_indexspec spec{1, unique};
        const std::int32_t fields[] = {field, -1};
        return dbf_createindex(table.get(), &spec, fields);
    }

    int insert(const Row& row) const { return dbf_insert(table.get(), &row); }

    int rowsOfGroup(std::int32_t group) const {
        const Row row = rowOf(0, group);
        dbf_cursor* const cursor = dbf_opencursor(byGroup, &row);
        const int count = dbf_getcursorrowcount(cursor);
        dbf_closecursor(cursor);
        return count;
    }

    int rows() const {
        dbf_cursor* const cursor = dbf_opencursor_all(table.get());
        const int count = dbf_getcursorrowcount(cursor);
        dbf_closecursor(cursor);
        return count;
    }
};

TEST(Load, tableAnswersTheSameAndDoesNotGrow) {
    constexpr int keys = 20000;
    constexpr std::int32_t absent = -1;
    const IndexedTable t({0, 100});
    std::vector<std::int32_t> groups(keys, absent);
    for (int key = 0; key < keys; ++key)
        ASSERT_EQ(t.insert(rowOf(key, groups[static_cast<std::size_t>(key)] = 0)), DBF_OK);
    const std::size_t filled = bytesInUse();
    std::mt19937 random(2);
    for (unsigned int operation = 0; operation < numberOfOperations(); ++operation) {
        const int key = static_cast<int>(random() % keys);
        std::int32_t& group = groups[static_cast<std::size_t>(key)];
        const auto newGroup = static_cast<std::int32_t>(random() % 5000);
        Row row = rowOf(key, newGroup);
        const int known = group == absent ? DBF_NOTFOUND : DBF_OK;
        switch (random() % 4) {
        case 0:
            ASSERT_EQ(t.insert(row), group == absent ? DBF_OK : DBF_DUPLICATE) << operation;
            group = group == absent ? newGroup : group;
            break;
        case 1:
            ASSERT_EQ(dbf_select(operation % 2 == 0 ? t.byKey : t.byText, &row), known) << operation;
            ASSERT_EQ(row.group, group == absent ? newGroup : group) << operation;
            break;
        case 2:
            ASSERT_EQ(dbf_update(operation % 2 == 0 ? t.byKey : t.byText, &row), known) << operation;
            group = group == absent ? absent : newGroup;
            break;
        default:
            ASSERT_EQ(dbf_delete(operation % 2 == 0 ? t.byKey : t.byText, &row), known) << operation;
            group = absent;
        }
    }
    std::cout << filled << " bytes in use when filled, " << bytesInUse() << " at the end\n";
    EXPECT_EQ(bytesInUse(), filled);
    std::vector<int> expected(5000);
    for (const std::int32_t group : groups)
        if (group != absent)
            ++expected[static_cast<std::size_t>(group)];
    for (std::int32_t group = 0; group < 5000; ++group)
        ASSERT_EQ(t.rowsOfGroup(group), expected[static_cast<std::size_t>(group)]) << group;
}

TEST(Load, fullTableStaysWhole) {
    constexpr int last = 65534 * 3;
    const IndexedTable t({0, 3});
    for (int key = 0; key < last; ++key)
        ASSERT_EQ(t.insert(rowOf(key, key % 1000)), DBF_OK) << key;
    const std::size_t full = bytesInUse();
    for (int key = last; key < last + 100; ++key)
        ASSERT_EQ(t.insert(rowOf(key, 0)), DBF_FAILED);
    EXPECT_EQ(t.insert(rowOf(0, 0)), DBF_DUPLICATE);
    EXPECT_EQ(bytesInUse(), full);
    for (int key = 0; key < last; key += 37) {
        const Row gone = rowOf(key, 0);
        const Row next = rowOf(key + last, key % 1000);
        ASSERT_EQ(dbf_delete(t.byKey, &gone), DBF_OK) << key;
        ASSERT_EQ(t.insert(next), DBF_OK) << key;
        ASSERT_EQ(t.insert(gone), DBF_FAILED) << key;
    }
    EXPECT_EQ(t.rows(), last);
    for (int key = 0; key < last; ++key) {
        Row row = rowOf(key % 37 == 0 ? key + last : key, 0);
        ASSERT_EQ(dbf_select(key % 2 == 0 ? t.byKey : t.byText, &row), DBF_OK) << key;
        ASSERT_EQ(row.group, key % 1000);
    }
    EXPECT_EQ(t.rowsOfGroup(1), 197);
    EXPECT_EQ(dbf_cleartable(t.table.get()), DBF_OK);
    EXPECT_EQ(t.insert(rowOf(0, 0)), DBF_OK);
    EXPECT_EQ(t.rows(), 1);
}

TEST(Load, sizesThatNobodyCanServeAreRefused) {
    const struct {
        const char* what;
        dbf_tablespec table;
        dbf_fieldspec field;
    } cases[] = {
        {"largest row", {0, 65535}, {DBF_BYTES, INT_MAX - 8}},
        {"largest wide row", {0, 65535}, {DBF_WSTRING, INT_MAX / 2 - 8}},
        {"most rows of the largest size", {INT_MAX, 65535}, {DBF_BYTES, INT_MAX - 8}},
        {"more rows than 31 bits count", {INT_MAX, 1}, {DBF_BYTES, 1}},
    };
    testing::internal::CaptureStderr();
    for (const auto& c : cases) {
        const dbf_fieldspec fields[] = {c.field, {DBF_END, 0}};
        EXPECT_EQ(dbf_createtable(&c.table, fields), nullptr) << c.what;
    }
    testing::internal::GetCapturedStderr();
}

} // namespace
