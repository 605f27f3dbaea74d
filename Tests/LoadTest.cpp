/**
 * @file LoadTest.cpp
 * Many random operations on one database and one table: the answers stay right, and memory stays where it is once the
 * data stops growing. The environment variable IMPORTCOMMON_FULL_TESTS makes it ten million operations each.
 */
#include "Models/IndexedTable.h"

#include <ImportCommon/ExternalGUIDDatabase.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <random>
#include <string>
#include <vector>

#if defined(__GLIBC__)
#include <malloc.h>
#endif

using namespace ImportCommon;

/** There in programs that are built with a sanitizer. */
extern "C" __attribute__((weak)) std::size_t __sanitizer_get_current_allocated_bytes();

namespace {

unsigned int numberOfOperations() {
    return std::getenv("IMPORTCOMMON_FULL_TESTS") != nullptr ? 10000000 : 300000;
}

/** Bytes that the program holds; 0 when nobody counts them. */
std::size_t bytesInUse() {
    if (__sanitizer_get_current_allocated_bytes != nullptr) {
        return __sanitizer_get_current_allocated_bytes();
    }
#if defined(__GLIBC__) && (__GLIBC__ > 2 || __GLIBC_MINOR__ >= 33)
    const auto info = mallinfo2();
    return info.uordblks + info.hblkhd;
#else
    return 0;
#endif
}

/** Four kinds in turn. */
ExternalGUID identityOf(unsigned int number) {
    const std::uint64_t bits = (number + 1) * 0x9E3779B97F4A7C15U;
    char record[ExternalGUID::RecordSize] = {static_cast<char>(1 + number % 4)};
    char* const payload = record + ExternalGUID::PayloadOffset;
    std::memcpy(payload, &bits, number % 4 == 3 ? sizeof(std::int32_t) : sizeof bits);
    for (unsigned int i = 0; number % 4 == 0 && i < ExternalGUID::SpatialHashSize; ++i) {
        const auto value = static_cast<double>(bits >> (5 * i) & 1023);
        std::memcpy(payload + i * sizeof value, &value, sizeof value);
    }
    return ExternalGUID::fromByteStream(sizeof record, record);
}

std::string recordOf(const ExternalGUID& guid) {
    unsigned int size = 0;
    const char* const bytes = guid.getBytes(&size);
    return std::string(bytes, size);
}

TEST(LoadTest, databaseAnswersTheSameAndDoesNotGrow) {
    constexpr unsigned int identities = 40000;
    ExternalGUIDDatabase database;
    std::vector<int> ids(identities, -1);
    std::mt19937 random(1);
    std::size_t filled = 0;
    for (unsigned int operation = 0; operation < numberOfOperations() + 2 * identities; ++operation) {
        // First each identity once, in any case; from then on nothing is new.
        const unsigned int number =
            operation < identities ? operation : static_cast<unsigned int>(random() % identities);
        if (operation == 2 * identities) {
            filled = bytesInUse();
        }
        const ExternalGUID guid = identityOf(number);
        if (ids[number] == -1) {
            ids[number] = database.insertGUID(guid);
        }
        const auto action = random() % 3;
        if (action == 0) {
            ASSERT_EQ(database.insertGUID(guid), ids[number]) << operation;
        } else if (action == 1) {
            ASSERT_EQ(database.findGUID(guid), ids[number]) << operation;
        } else {
            ASSERT_EQ(recordOf(database.findGUID(static_cast<ExternalGUIDRuntimeID_e>(ids[number]))), recordOf(guid));
        }
    }
    std::cout << filled << " bytes in use when filled, " << bytesInUse() << " at the end\n";
    EXPECT_EQ(bytesInUse(), filled);
}

TEST(LoadTest, tableAnswersTheSameAndDoesNotGrow) {
    constexpr int32_t keys = 20000;
    const IndexedTable t({0, 100});
    std::vector<int32_t> groups(keys, 0);
    for (int32_t key = 0; key < keys; ++key) {
        ASSERT_EQ(t.insert(rowOf(key, 0)), DBF_OK);
    }
    const std::size_t filled = bytesInUse();
    std::mt19937 random(2);
    for (unsigned int operation = 0; operation < numberOfOperations(); ++operation) {
        const auto key = static_cast<int32_t>(random() % keys);
        int32_t& group = groups[static_cast<std::size_t>(key)];
        const auto newGroup = static_cast<int32_t>(random() % 5000);
        IndexedRow row = rowOf(key, newGroup);
        dbf_index* const index = operation % 2 == 0 ? t.byKey : t.byText;
        const int known = group == noGroup ? DBF_NOTFOUND : DBF_OK;
        switch (random() % 4) {
        case 0:
            ASSERT_EQ(t.insert(row), group == noGroup ? DBF_OK : DBF_DUPLICATE) << operation;
            group = group == noGroup ? newGroup : group;
            break;
        case 1:
            ASSERT_EQ(dbf_select(index, &row), known) << operation;
            ASSERT_EQ(row.group, group == noGroup ? newGroup : group) << operation;
            break;
        case 2:
            ASSERT_EQ(dbf_update(index, &row), known) << operation;
            group = group == noGroup ? noGroup : newGroup;
            break;
        default:
            ASSERT_EQ(dbf_delete(index, &row), known) << operation;
            group = noGroup;
        }
    }
    std::cout << filled << " bytes in use when filled, " << bytesInUse() << " at the end\n";
    EXPECT_EQ(bytesInUse(), filled);
    t.check(groups);
}

TEST(LoadTest, fullTableStaysWhole) {
    constexpr int32_t last = 65534 * 3;
    const IndexedTable t({0, 3});
    std::vector<int32_t> groups(2 * last, noGroup);
    for (int32_t key = 0; key < last; ++key) {
        ASSERT_EQ(t.insert(rowOf(key, groups[static_cast<std::size_t>(key)] = key % 1000)), DBF_OK) << key;
    }
    const std::size_t full = bytesInUse();
    for (int32_t key = last; key < last + 100; ++key) {
        ASSERT_EQ(t.insert(rowOf(key, 0)), DBF_FAILED);
    }
    EXPECT_EQ(t.insert(rowOf(0, 0)), DBF_DUPLICATE);
    EXPECT_EQ(bytesInUse(), full);
    for (int32_t key = 0; key < last; key += 37) {
        const IndexedRow gone = rowOf(key, 0);
        ASSERT_EQ(dbf_delete(t.byKey, &gone), DBF_OK) << key;
        ASSERT_EQ(t.insert(rowOf(key + last, 7)), DBF_OK) << key;
        ASSERT_EQ(t.insert(gone), DBF_FAILED) << key;
        groups[static_cast<std::size_t>(key)] = noGroup;
        groups[static_cast<std::size_t>(key + last)] = 7;
    }
    t.check(groups);
    EXPECT_EQ(dbf_cleartable(t.table.get()), DBF_OK);
    EXPECT_EQ(t.insert(rowOf(0, 0)), DBF_OK);
    EXPECT_EQ(t.rows(), 1);
}

} // namespace
