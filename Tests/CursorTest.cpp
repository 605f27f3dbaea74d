#include "FailingAllocator.h"
#include "TableModel.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <iostream>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace {

using TablePtr = std::unique_ptr<dbf_table, decltype(&dbf_droptable)>;
using CursorPtr = std::unique_ptr<dbf_cursor, decltype(&dbf_closecursor)>;

// A serial number without an index, two unique keys, a key that many rows share, and some bytes more.
const std::vector<dbf_fieldspec> fieldSpecs = {{DBF_INT, 0}, {DBF_INT, 0},   {DBF_BYTES, 3},
                                               {DBF_INT, 0}, {DBF_BYTES, 5}, {DBF_END, 0}};
const std::vector<FieldModel> fields = layoutOf({fieldSpecs.begin(), fieldSpecs.end() - 1});
enum Field_e : int32_t { Serial, Key, OtherKey, Group };

Row rowOf(unsigned int serial, unsigned int key, unsigned int otherKey, unsigned int group) {
    Row row(fields.back().offset + fields.back().size, static_cast<char>(serial));
    const std::array<unsigned int, 4> values = {serial, key, otherKey, group};
    for (std::size_t i = 0; i < values.size(); ++i)
        row.replace(fields[i].offset, fields[i].size, reinterpret_cast<const char*>(&values[i]), fields[i].size);
    return row;
}

TablePtr createTable(const dbf_tablespec& spec) {
    return {dbf_createtable(&spec, fieldSpecs.data()), &dbf_droptable};
}

dbf_index* createIndex(dbf_table* table, bool unique, const std::vector<int32_t>& keyFields) {
    const dbf_indexspec spec{1, unique ? 1 : 0};
    std::vector<int32_t> list = keyFields;
    list.push_back(-1);
    return dbf_createindex(table, &spec, list.data());
}

/** Drives a table with open cursors, and their model, with the same random calls. */
class Comparison {
public:
    Comparison(const dbf_tablespec& storage, unsigned int seed)
        : random_(seed), table_(createTable(storage)), model_(storage) {
        const std::pair<bool, std::vector<int32_t>> indexes[] = {
            {true, {Key}}, {false, {Group}}, {true, {OtherKey, Group}}, {false, {Group, OtherKey}}};
        for (const auto& [unique, keyFields] : indexes) {
            model_.indexes.emplace_back(unique, keyFields, fields);
            model_.indexes.back().handle = createIndex(table_.get(), unique, keyFields);
        }
        // Only the model has an index by serial number, to act on the row at a location.
        model_.indexes.emplace_back(true, std::vector<int32_t>{Serial}, fields);
    }

    void run(unsigned int steps) {
        for (unsigned int step = 0; step < steps && !testing::Test::HasFailure(); ++step) {
            SCOPED_TRACE(step);
            if (cursors_.size() < 6 && below(4) == 0) {
                const IndexModel& by = anyIndex();
                cursors_.push_back(below(2) == 0 ? openAll() : openByKey(by, randomRow(0)));
            }
            if (below(700) == 0) {
                EXPECT_EQ(dbf_cleartable(table_.get()), DBF_OK);
                model_.clear();
            } else if (below(3) == 0) {
                changeRows(step);
            } else if (!cursors_.empty()) {
                useCursor(below(cursors_.size()));
            }
            if (step % 200 == 0)
                compareAll();
        }
        compareAll();
    }

private:
    struct Cursor_s {
        CursorPtr handle;
        std::vector<Position> rows;
        std::size_t position;
    };

    unsigned int below(std::size_t limit) { return static_cast<unsigned int>(random_() % limit); }
    IndexModel& bySerial() { return model_.indexes.back(); }
    IndexModel& anyIndex() { return model_.indexes[below(model_.indexes.size() - 1)]; }

    Row randomRow(unsigned int serial) {
        const std::array<unsigned int, 3> keys = {below(900), below(200), below(4)}; // in this order everywhere
        return rowOf(serial, keys[0], keys[1], keys[2]);
    }

    Cursor_s openAll() {
        Cursor_s cursor{{dbf_opencursor_all(table_.get()), &dbf_closecursor}, {}, 0};
        for (const auto& stored : model_.rows)
            cursor.rows.push_back(stored.first);
        return cursor;
    }

    Cursor_s openByKey(const IndexModel& index, const Row& row) {
        Cursor_s cursor{{dbf_opencursor(index.handle, row.data()), &dbf_closecursor}, index.matches(row), 0};
        std::reverse(cursor.rows.begin(), cursor.rows.end());
        return cursor;
    }

    void changeRows(unsigned int serial) {
        const Row row = randomRow(serial);
        if (below(5) < 3) {
            EXPECT_EQ(dbf_insert(table_.get(), row.data()), model_.insert(row));
        } else {
            const IndexModel& by = anyIndex();
            EXPECT_EQ(dbf_delete(by.handle, row.data()), model_.remove(by, row));
        }
    }

    void fetch(Cursor_s& cursor) {
        Row expected(rowOf(0, 0, 0, 0).size() + 8, 'z');
        Row row = expected;
        int result = DBF_NOTFOUND;
        if (cursor.position < cursor.rows.size()) {
            const auto stored = model_.rows.find(cursor.rows[cursor.position++]);
            if (stored != model_.rows.end()) {
                expected.replace(0, stored->second.size(), stored->second);
                result = DBF_OK;
            }
        }
        EXPECT_EQ(dbf_fetch(cursor.handle.get(), row.data()), result);
        EXPECT_EQ(row, expected);
        EXPECT_EQ(dbf_getcursorrowcount(cursor.handle.get()), static_cast<int>(cursor.rows.size() - cursor.position));
    }

    void useCursor(std::size_t which) {
        Cursor_s& cursor = cursors_[which];
        const auto current =
            cursor.position > 0 ? model_.rows.find(cursor.rows[cursor.position - 1]) : model_.rows.end();
        const bool exists = current != model_.rows.end();
        const unsigned int action = below(50);
        if (action == 0) {
            cursors_.erase(cursors_.begin() + static_cast<std::ptrdiff_t>(which));
        } else if (action < 15) {
            Row row = randomRow(exists ? readAs<unsigned int>(current->second.data()) : 0);
            if (exists && below(2) == 0)
                anyIndex().copyKey(current->second, row);
            EXPECT_EQ(dbf_updatecurrent(cursor.handle.get(), row.data()),
                      exists ? model_.update(bySerial(), row) : DBF_NOTFOUND);
        } else if (action < 20) {
            EXPECT_EQ(dbf_deletecurrent(cursor.handle.get()),
                      exists ? model_.remove(bySerial(), Row(current->second)) : DBF_NOTFOUND);
        } else {
            fetch(cursor);
        }
    }

    void drain(Cursor_s cursor) {
        while (cursor.position < cursor.rows.size() && !testing::Test::HasFailure())
            fetch(cursor);
        fetch(cursor); // the end
    }

    void compareAll() {
        drain(openAll());
        for (std::size_t i = 0; i + 1 < model_.indexes.size(); ++i) {
            for (const auto& stored : model_.rows)
                if (model_.indexes[i].matches(stored.second).back() == stored.first)
                    drain(openByKey(model_.indexes[i], stored.second));
        }
    }

    std::mt19937 random_;
    TablePtr table_;
    TableModel model_;
    std::vector<Cursor_s> cursors_; // closed before the table is dropped
};

TEST(Cursor, agreesWithAPlainModel) {
    unsigned int seed = 5150;
    for (const dbf_tablespec& storage : {dbf_tablespec{0, 1}, {0, 7}, {70, 33}, {0, 64}, {0, 2000}}) {
        std::cout << storage.initialrows << " rows, " << storage.rowsperbucket << " per bucket: seed " << ++seed
                  << "\n";
        Comparison(storage, seed).run(6000);
        ASSERT_FALSE(HasFailure());
    }
}

TEST(Cursor, countsTheRowsNotYetFetched) {
    const struct {
        unsigned int rows, fetches, deletions, insertions; // in this order; the last rows are deleted
        int remaining;
    } cases[] = {{0, 0, 0, 0, 0}, {0, 2, 0, 1, 0}, {3, 0, 0, 0, 3},    {3, 2, 0, 0, 1},
                 {3, 3, 0, 0, 0}, {3, 5, 0, 2, 0}, {17, 4, 13, 9, 13}, {65, 64, 0, 20, 1}};
    for (const auto& c : cases) {
        const TablePtr table = createTable({0, 16});
        dbf_index* const byKey = createIndex(table.get(), true, {Key});
        for (unsigned int i = 0; i < c.rows; ++i)
            dbf_insert(table.get(), rowOf(0, i, 0, 0).data());
        const CursorPtr cursor(dbf_opencursor_all(table.get()), &dbf_closecursor);
        Row row = rowOf(0, 0, 0, 0);
        for (unsigned int i = 0; i < c.fetches; ++i)
            EXPECT_EQ(dbf_fetch(cursor.get(), row.data()), i < c.rows ? DBF_OK : DBF_NOTFOUND);
        for (unsigned int i = 1; i <= c.deletions; ++i)
            EXPECT_EQ(dbf_delete(byKey, rowOf(0, c.rows - i, 0, 0).data()), DBF_OK);
        for (unsigned int i = 0; i < c.insertions; ++i)
            EXPECT_EQ(dbf_insert(table.get(), rowOf(0, 1000 + i, 0, 0).data()), DBF_OK);
        EXPECT_EQ(dbf_getcursorrowcount(cursor.get()), c.remaining);
    }
}

TEST(Cursor, openingMayFindNoMemory) {
    if (!FailingAllocator::isAvailable())
        GTEST_SKIP();
    const TablePtr table = createTable({0, 16});
    dbf_index* const byGroup = createIndex(table.get(), false, {Group});
    const Row row = rowOf(0, 0, 0, 0);
    for (int i = 0; i < 17; ++i) // more than the first array of matches holds
        dbf_insert(table.get(), row.data());
    for (const auto& [which, all] : {std::pair{1, true}, {2, true}, {1, false}, {2, false}, {3, false}}) {
        testing::internal::CaptureStderr();
        auto noMemory = std::make_unique<FailingAllocator>(which);
        const dbf_cursor* const cursor = all ? dbf_opencursor_all(table.get()) : dbf_opencursor(byGroup, row.data());
        noMemory.reset();
        const std::string message = testing::internal::GetCapturedStderr();
        EXPECT_EQ(cursor, nullptr);
        EXPECT_EQ(message.rfind("libdbfast: cannot allocate memory (", 0), 0u) << message;
        EXPECT_NE(message.find(which == 1 ? " for cursor struct\n" : " for cursor match array\n"), std::string::npos);
    }
}

} // namespace
