/**
 * @file IndexedTable.h
 * A table with a unique index over its key, another over its text, and one over its groups.
 */
#pragma once

#include "Models/TableModel.h"

#include <gtest/gtest.h>

struct IndexedRow {
    int32_t key;
    int32_t group;
    char text[16];
};

/** Texts differ in many bytes, and stand for the key alone. */
inline IndexedRow rowOf(int32_t key, int32_t group) {
    IndexedRow row{key, group, {}};
    const std::uint64_t bits = (static_cast<std::uint64_t>(key) + 1) * 0x9E3779B97F4A7C15U;
    std::memcpy(row.text + 4, &bits, sizeof bits);
    return row;
}

constexpr int32_t noGroup = -1; ///< stands for a row that is not there

struct IndexedTable {
    explicit IndexedTable(const dbf_tablespec& spec)
        : table(createTable(spec, {{DBF_INT, 0}, {DBF_INT, 0}, {DBF_BYTES, 16}})),
          byKey(createIndex(table, true, {0})),
          byText(createIndex(table, true, {2})),
          byGroup(createIndex(table, false, {1})) {}

    const TablePtr table;
    dbf_index* byKey;
    dbf_index* byText;
    dbf_index* const byGroup;

    int insert(const IndexedRow& row) const { return dbf_insert(table.get(), &row); }

    int rows() const { return rowsOf(dbf_opencursor_all(table.get())); }

    /** Rows with the groups of their keys, and no others, are found through every index. */
    void check(const std::vector<int32_t>& groups) const {
        std::map<int32_t, int> sizes;
        for (int32_t key = 0; key < static_cast<int32_t>(groups.size()); ++key) {
            const int32_t group = groups[static_cast<std::size_t>(key)];
            for (dbf_index* const index : {byKey, byText}) {
                IndexedRow row = rowOf(key, noGroup);
                ASSERT_EQ(dbf_select(index, &row), group == noGroup ? DBF_NOTFOUND : DBF_OK) << key;
                ASSERT_EQ(row.group, group) << key;
            }
            ++sizes[group];
        }
        ASSERT_EQ(rows(), static_cast<int>(groups.size()) - sizes[noGroup]);
        sizes[noGroup] = 0;
        for (const auto& [group, size] : sizes) {
            const IndexedRow row = rowOf(0, group);
            ASSERT_EQ(rowsOf(dbf_opencursor(byGroup, &row)), size) << group;
        }
    }

private:
    static int rowsOf(dbf_cursor* cursor) {
        const int count = dbf_getcursorrowcount(cursor);
        dbf_closecursor(cursor);
        return count;
    }
};
