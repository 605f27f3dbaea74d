#include "FailingAllocator.h"

#include <DbFast/dbfast.h>
#include <ImportCommon/DxKDTree.h>
#include <ImportCommon/ExternalGUID.h>
#include <ImportCommon/ExternalGUIDDatabase.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

using ImportCommon::CDxKDTree;
using ImportCommon::ExternalGUID;
using ImportCommon::ExternalGUIDDatabase;
using ImportCommon::ExternalGUIDRuntimeID_e;

namespace {

class AllocationFailure : public testing::Test {
protected:
    void SetUp() override {
        if (!FailingAllocator::isAvailable())
            GTEST_SKIP() << "the allocator can't be replaced here";
    }
};

/** Calls the attempt with its first, second, third ... allocation failing, until it gets by without a failure. */
void forEachFailure(const std::function<bool(long which, FailingAllocator::Extent_e extent)>& attempt) {
    for (const auto extent : {FailingAllocator::Once, FailingAllocator::FromThenOn}) {
        long which = 1;
        while (attempt(which, extent) && !testing::Test::HasFailure())
            ++which;
        EXPECT_GT(which, 1) << "nothing was allocated";
        if (testing::Test::HasFailure())
            FAIL() << "at allocation " << which << (extent == FailingAllocator::Once ? "" : " and all later ones");
    }
}

struct Row_s {
    int32_t id;
    int32_t group;
    char name[12];
};

Row_s rowOf(int32_t id) {
    Row_s row{id, id % 5, "name"};
    std::memcpy(row.name + 4, &id, sizeof id);
    return row;
}

dbf_table* createTable(const dbf_tablespec& spec) {
    const dbf_fieldspec fields[] = {{DBF_INT, 0}, {DBF_INT, 0}, {DBF_BYTES, 12}, {DBF_END, 0}};
    return dbf_createtable(&spec, fields);
}

/** A table with rows 0, 1, 2 ... and several indexes. */
class Table {
public:
    Table(const dbf_tablespec& spec, int32_t count) : table_(createTable(spec), &dbf_droptable) {
        EXPECT_TRUE(addIndex(0, true) == DBF_OK && addIndex(2, true) == DBF_OK && addIndex(1, false) == DBF_OK);
        while (count-- > 0)
            EXPECT_EQ(insert(), DBF_OK);
    }

    int insert() {
        const Row_s row = rowOf(count_);
        const int result = dbf_insert(table_.get(), &row);
        count_ += result == DBF_OK ? 1 : 0;
        return result;
    }

    int clear() {
        count_ = 0;
        return dbf_cleartable(table_.get());
    }

    int addIndex(int32_t field, bool unique) {
        const dbf_indexspec spec{1, unique ? 1 : 0};
        const int32_t fields[] = {field, -1};
        dbf_index* const index = dbf_createindex(table_.get(), &spec, fields);
        if (index != nullptr)
            (unique ? unique_ : grouped_)[field] = index;
        return index != nullptr ? DBF_OK : DBF_FAILED;
    }

    /** Every row stored, and no other, is found through every index. */
    void check() const {
        for (int32_t id = 0; id < count_ + 50; ++id)
            for (dbf_index* const index : {unique_[0], unique_[2]}) {
                Row_s row = rowOf(id);
                ASSERT_EQ(dbf_select(index, &row), id < count_ ? DBF_OK : DBF_NOTFOUND) << id;
            }
        std::set<std::pair<int, int>> places;
        for (int32_t group = 0; group < 5; ++group) {
            const Row_s key = rowOf(group);
            int32_t expected = (count_ + 4 - group) / 5;
            for (const dbf_rowid* id = dbf_findhashmatch(grouped_[1], &key); id != nullptr && expected >= 0;
                 id = dbf_findhashmatch_next(grouped_[1], &key, id), --expected)
                places.insert({id->bucket, id->slot});
            EXPECT_EQ(expected, 0) << group;
        }
        EXPECT_EQ(places.size(), static_cast<std::size_t>(count_));
    }

private:
    std::unique_ptr<dbf_table, decltype(&dbf_droptable)> table_;
    dbf_index* unique_[3] = {};
    dbf_index* grouped_[3] = {};
    int32_t count_ = 0;
};

TEST_F(AllocationFailure, tableStaysWhole) {
    const auto insert = [](Table& table) { return table.insert(); };
    const auto clear = [](Table& table) { return table.clear(); };
    const auto addIndex = [](Table& table) { return table.addIndex(2, true); };
    const struct {
        const char* what;
        dbf_tablespec storage;
        int32_t rows;
        int (*run)(Table&);
    } cases[] = {{"larger hash and bucket array", {0, 1}, 16, insert},
                 {"larger bucket array", {0, 2}, 32, insert},
                 {"third large bucket", {0, 2000}, 4000, insert},
                 {"clear", {10, 7}, 500, clear},
                 {"create index", {0, 7}, 500, addIndex}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        forEachFailure([&c](long which, FailingAllocator::Extent_e extent) {
            Table table(c.storage, c.rows);
            std::optional<FailingAllocator> memory(std::in_place, which, extent);
            const int result = c.run(table);
            memory.reset();
            const bool hasFailed = FailingAllocator::hasFailed();
            EXPECT_EQ(result, hasFailed ? DBF_FAILED : DBF_OK);
            table.check();
            if (!hasFailed)
                return false;
            memory.emplace(1);
            const int again = c.run(table);
            memory.reset();
            EXPECT_EQ(again, DBF_FAILED) << "no memory yet";
            table.check();
            EXPECT_EQ(c.run(table), DBF_OK);
            for (int more = 0; more < 300; ++more)
                EXPECT_EQ(table.insert(), DBF_OK) << more;
            table.check();
            return true;
        });
    }
}

TEST_F(AllocationFailure, tableIsCreatedWholeOrNotAtAll) {
    testing::internal::CaptureStderr();
    forEachFailure([](long which, FailingAllocator::Extent_e extent) {
        std::optional<FailingAllocator> memory(std::in_place, which, extent);
        dbf_table* const table = createTable({40, 2});
        memory.reset();
        EXPECT_EQ(table == nullptr, FailingAllocator::hasFailed());
        if (table != nullptr)
            dbf_droptable(table);
        return table == nullptr;
    });
    const std::string log = testing::internal::GetCapturedStderr();
    for (const char* const line :
         {"bytes) for table struct\n", "bytes) for field struct array\n", "(128 bytes) for bucket pointer array\n",
          "bytes) for bucket\n", "libdbfast: cannot allocate memory (48 bytes) for bucket data\n",
          "(4 bytes) for bucket free table\n"})
        EXPECT_NE(log.find(line), std::string::npos) << line << "is missing in\n" << log;
}

TEST_F(AllocationFailure, identityIsEmpty) {
    const double vertex[11] = {1, 2, 3};
    const ExternalGUID good = ExternalGUID::fromHalvorneObi(7);
    const std::function<ExternalGUID()> makers[] = {
        [] { return ExternalGUID(); },
        [&] { return ExternalGUID(good); },
        [] { return ExternalGUID::fromIFCGlobalID("2O2Fr$t4X7Zf8NOew3FLOH"); },
        [] { return ExternalGUID::fromPX({{1}}); },
        [] { return ExternalGUID::fromHalvorneObi(7); },
        [] { return ExternalGUID::fromByteStream(4, "\4\0\0"); },
        [&] { return ExternalGUID::spatialHashFromVertexes(1, vertex); }};
    const auto isEmpty = [](const ExternalGUID& guid) {
        unsigned int size = 0;
        const char* const bytes = guid.getBytes(&size);
        return guid.getType() == ExternalGUID::GUIDTypeNone && std::string(bytes, size) == std::string(96, '\0');
    };
    for (const auto& make : makers) {
        std::optional<FailingAllocator> memory(std::in_place, 1);
        ExternalGUID guid = make();
        memory.reset();
        EXPECT_TRUE(FailingAllocator::hasFailed());
        EXPECT_TRUE(isEmpty(guid)) << &make - makers;
        guid = good;
        guid.fromSpatialHash(vertex);
        EXPECT_TRUE(isEmpty(guid) && isEmpty(ExternalGUID(guid)));
        ExternalGUID other = good;
        other = guid;
        EXPECT_TRUE(isEmpty(other));
    }
}

TEST_F(AllocationFailure, treeKeepsItsNodes) {
    for (const unsigned int before : {0U, 1024U})
        forEachFailure([before](long which, FailingAllocator::Extent_e extent) {
            std::optional<FailingAllocator> memory;
            if (before == 0)
                memory.emplace(which, extent);
            CDxKDTree tree(2);
            const auto insert = [&tree](unsigned int id) {
                const double vector[] = {id % 32 * 1.0, id / 32 * 1.0};
                return tree.insert(vector);
            };
            for (unsigned int id = 0; id < before; ++id)
                EXPECT_EQ(insert(id), id);
            if (before != 0)
                memory.emplace(which, extent);
            const unsigned int result = insert(before);
            const bool hasFailed = FailingAllocator::hasFailed();
            const unsigned int count = tree.getCount();
            memory.reset();
            EXPECT_EQ(result, hasFailed ? 0 : before);
            EXPECT_EQ(count, before + (hasFailed ? 0 : 1));
            if (before == 0 && hasFailed) { // a tree without its first block stays empty
                const double vector[] = {0, 0};
                EXPECT_EQ(tree.insert(vector), 0U);
                EXPECT_EQ(tree.find(vector), CDxKDTree::NotFound);
                EXPECT_EQ(tree.getVector(0), nullptr);
                EXPECT_EQ(tree.getCount(), 0U);
                return true;
            }
            EXPECT_EQ(tree.getVector(before) == nullptr, hasFailed);
            for (unsigned int id = 0; id < before + 100; ++id)
                EXPECT_EQ(insert(id), id);
            for (unsigned int id = 0; id < before + 100; ++id)
                EXPECT_EQ(tree.find(tree.getVector(id)), id);
            return hasFailed;
        });
}

/** Whether an identity is known, under the same id both ways, or unknown both ways. */
bool knows(ExternalGUIDDatabase& database, const ExternalGUID& guid, int id) {
    const int found = database.findGUID(guid);
    unsigned int size = 0;
    const ExternalGUID back = database.findGUID(static_cast<ExternalGUIDRuntimeID_e>(id));
    const bool same = std::memcmp(back.getBytes(&size), guid.getBytes(&size), 96) == 0;
    EXPECT_EQ(found == id && id != -1, same) << id;
    EXPECT_TRUE(same || (found == -1 && back.getType() == ExternalGUID::GUIDTypeNone)) << id;
    return same;
}

TEST_F(AllocationFailure, databaseAnswersForTheKindsThatItHas) {
    const double hash[11] = {1, 2, 3};
    const ExternalGUID guids[] = {ExternalGUID::fromIFCGlobalID("2O2Fr$t4X7Zf8NOew3FLOH"), ExternalGUID::fromPX({{1}}),
                                  ExternalGUID::fromHalvorneObi(7), ExternalGUID::spatialHashFromVertexes(1, hash)};
    forEachFailure([&guids](long which, FailingAllocator::Extent_e extent) {
        std::optional<FailingAllocator> memory(std::in_place, which, extent);
        ExternalGUIDDatabase database;
        memory.reset();
        const bool hasFailed = FailingAllocator::hasFailed();
        const auto known = std::count_if(std::begin(guids), std::end(guids), [&](const ExternalGUID& guid) {
            const int id = database.insertGUID(guid);
            return knows(database, guid, id);
        });
        EXPECT_EQ(known == 4, !hasFailed);
        EXPECT_TRUE(known == 0 || known >= 3 || extent == FailingAllocator::FromThenOn) << "one failure, one kind";
        return hasFailed;
    });
}

TEST_F(AllocationFailure, databaseKeepsItsIdentities) {
    const auto guidOf = [](int number) {
        return ExternalGUID::fromPX({{1, static_cast<unsigned char>(number), static_cast<unsigned char>(number >> 8)}});
    };
    for (const int before : {2000, 4000})
        forEachFailure([&](long which, FailingAllocator::Extent_e extent) {
            ExternalGUIDDatabase database;
            for (int number = 0; number < before; ++number)
                EXPECT_EQ(database.insertGUID(guidOf(number)), -2 - number);
            const ExternalGUID next = guidOf(before);
            std::optional<FailingAllocator> memory(std::in_place, which, extent);
            const int id = database.insertGUID(next);
            memory.reset();
            const bool hasFailed = FailingAllocator::hasFailed();
            EXPECT_EQ(id, hasFailed ? -1 : -2 - before);
            EXPECT_EQ(database.findGUID(next), id);
            for (int number = 0; number < before; ++number)
                EXPECT_TRUE(knows(database, guidOf(number), -2 - number));
            const int retried = database.insertGUID(next);
            EXPECT_EQ(retried, -2 - before - (hasFailed ? 1 : 0)) << "a failed insert uses up an id";
            EXPECT_TRUE(knows(database, next, retried));
            return hasFailed;
        });
}

} // namespace
