#include "FailingAllocator.h"
#include "IndexedTable.h"
#include "Stderr.h"

#include <ImportCommon/DxKDTree.h>
#include <ImportCommon/ExternalGUID.h>
#include <ImportCommon/ExternalGUIDDatabase.h>

#include <cstring>
#include <functional>
#include <memory>
#include <optional>
#include <string>

using ImportCommon::CDxKDTree;
using ImportCommon::ExternalGUID;
using ImportCommon::ExternalGUIDDatabase;
using ImportCommon::ExternalGUIDRuntimeID_e;

namespace {

/** A table with rows 0, 1, 2 ..., and one index that can be made again. */
class GrowingTable {
public:
    GrowingTable(const dbf_tablespec& spec, int32_t count) : table_(spec) {
        groups_.reserve(10000); // so that only the store allocates
        while (count-- > 0)
            EXPECT_EQ(insert(), DBF_OK);
    }

    int insert() {
        const auto key = static_cast<int32_t>(groups_.size());
        const int result = table_.insert(rowOf(key, key % 5));
        if (result == DBF_OK)
            groups_.push_back(key % 5);
        return result;
    }

    int clear() {
        groups_.clear();
        return dbf_cleartable(table_.table.get());
    }

    int addIndex() {
        const dbf_indexspec spec{1, 1};
        const int32_t fields[] = {2, -1};
        dbf_index* const index = dbf_createindex(table_.table.get(), &spec, fields);
        table_.byText = index != nullptr ? index : table_.byText;
        return index != nullptr ? DBF_OK : DBF_FAILED;
    }

    void check() const {
        std::vector<int32_t> groups = groups_;
        groups.resize(groups.size() + 50, noGroup);
        table_.check(groups);
    }

private:
    IndexedTable table_;
    std::vector<int32_t> groups_; // of the rows that must be there
};

TEST_F(AllocationFailure, tableStaysWhole) {
    const auto insert = [](GrowingTable& table) { return table.insert(); };
    const auto clear = [](GrowingTable& table) { return table.clear(); };
    const auto addIndex = [](GrowingTable& table) { return table.addIndex(); };
    const struct {
        const char* what;
        dbf_tablespec storage;
        int32_t rows;
        int (*run)(GrowingTable&);
    } cases[] = {{"larger hash and bucket array", {0, 1}, 16, insert},
                 {"larger bucket array", {0, 2}, 32, insert},
                 {"third large bucket", {0, 2000}, 4000, insert},
                 {"clear", {10, 7}, 500, clear},
                 {"create index", {0, 7}, 500, addIndex}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        forEachFailure([&c](const Failure_s& failure) {
            GrowingTable table(c.storage, c.rows);
            int result = DBF_OK;
            const bool failed = failure.during([&] { result = c.run(table); });
            EXPECT_EQ(result, failed ? DBF_FAILED : DBF_OK);
            table.check();
            if (failed) {
                noMemory.during([&] { result = c.run(table); });
                EXPECT_EQ(result, DBF_FAILED) << "no memory yet";
                table.check();
                EXPECT_EQ(c.run(table), DBF_OK);
                for (int more = 0; more < 300; ++more)
                    EXPECT_EQ(table.insert(), DBF_OK) << more;
                table.check();
            }
            return failed;
        });
    }
}

TEST_F(AllocationFailure, tableIsCreatedWholeOrNotAtAll) {
    const std::string log = stderrOf([] {
        forEachFailure([](const Failure_s& failure) {
            const dbf_tablespec spec{40, 2};
            const dbf_fieldspec fields[] = {{DBF_BYTES, 24}, {DBF_END, 0}};
            TablePtr table(nullptr, &dbf_droptable);
            const bool failed = failure.during([&] { table.reset(dbf_createtable(&spec, fields)); });
            EXPECT_EQ(table == nullptr, failed);
            return failed;
        });
    });
    EXPECT_NE(log.find("libdbfast: cannot allocate memory (48 bytes) for bucket data\n"), std::string::npos) << log;
}

TEST_F(AllocationFailure, identityIsEmpty) {
    const double vertex[11] = {1, 2, 3};
    const ExternalGUID good = ExternalGUID::fromHalvorneObi(7);
    const std::function<ExternalGUID()> makers[] = {
        [&] { return ExternalGUID(good); },
        [] { return ExternalGUID::fromIFCGlobalID("2O2Fr$t4X7Zf8NOew3FLOH"); },
        [] { return ExternalGUID::fromPX({{1}}); },
        [] { return ExternalGUID::fromHalvorneObi(7); },
        [] { return ExternalGUID::fromByteStream(4, "\4\0\0"); },
        [&] { return ExternalGUID::spatialHashFromVertexes(1, vertex); }};
    for (const auto& make : makers) {
        ExternalGUID guid = good;
        noMemory.during([&] {
            ExternalGUID made = make();
            made = good;
            made.fromSpatialHash(vertex);
            guid = made;
        });
        unsigned int size = 0;
        const char* const bytes = guid.getBytes(&size);
        EXPECT_EQ(std::string(bytes, size), std::string(96, '\0')) << &make - makers;
    }
}

TEST_F(AllocationFailure, treeKeepsItsNodes) {
    // The next node is the first one, or needs a block and a larger table of cells.
    for (const unsigned int before : {0U, 1024U})
        forEachFailure([before](const Failure_s& failure) {
            CDxKDTree tree(2);
            const auto insert = [&tree](unsigned int id) {
                const double vector[] = {id * 1.0, id / 512 * 1.0};
                return tree.insert(vector);
            };
            for (unsigned int id = 0; id < before; ++id)
                EXPECT_EQ(insert(id), id);
            unsigned int result = 0;
            unsigned int neighbour = 0;
            const bool failed = failure.during([&] {
                result = insert(before);
                const double nearby[] = {700.001, 1}; // which takes a descent, with its short cuts
                neighbour = tree.find(nearby);
            });
            EXPECT_EQ(neighbour, before > 700 ? 700 : CDxKDTree::NotFound);
            const bool isAdded = tree.getCount() == before + 1;
            EXPECT_EQ(result, isAdded ? before : 0);
            EXPECT_TRUE(isAdded || (failed && tree.getCount() == before));
            for (unsigned int id = 0; id < before + 2000; ++id)
                EXPECT_EQ(insert(id), id);
            for (unsigned int id = 0; id < before + 2000; ++id)
                EXPECT_EQ(tree.find(tree.getVector(id)), id);
            return failed;
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
    forEachFailure([&guids](const Failure_s& failure) {
        std::optional<ExternalGUIDDatabase> database;
        const bool failed = failure.during([&] { database.emplace(); });
        int known = 0;
        for (const ExternalGUID& guid : guids)
            known += knows(*database, guid, database->insertGUID(guid)) ? 1 : 0;
        EXPECT_EQ(known == 4, !failed);
        EXPECT_TRUE(known == 0 || known >= 3 || failure.extent == FailingAllocator::FromThenOn)
            << "one failure, one kind";
        return failed;
    });
}

TEST_F(AllocationFailure, databaseKeepsItsIdentities) {
    const auto guidOf = [](int number) {
        return ExternalGUID::fromPX({{1, static_cast<unsigned char>(number), static_cast<unsigned char>(number >> 8)}});
    };
    for (const int before : {2000, 4000})
        forEachFailure([&](const Failure_s& failure) {
            ExternalGUIDDatabase database;
            for (int number = 0; number < before; ++number)
                EXPECT_EQ(database.insertGUID(guidOf(number)), -2 - number);
            const ExternalGUID next = guidOf(before);
            int id = 0;
            const bool failed = failure.during([&] { id = database.insertGUID(next); });
            EXPECT_EQ(id, failed ? -1 : -2 - before);
            EXPECT_EQ(database.findGUID(next), id);
            for (int number = 0; number < before; ++number)
                EXPECT_TRUE(knows(database, guidOf(number), -2 - number));
            const int retried = database.insertGUID(next);
            EXPECT_EQ(retried, -2 - before - (failed ? 1 : 0)) << "a failed insert uses up an id";
            EXPECT_TRUE(knows(database, next, retried));
            return failed;
        });
}

} // namespace
