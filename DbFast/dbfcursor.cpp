#include "dbfinternal.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace {

constexpr int32_t initialmatches = 16;

dbf_cursor* createcursor(dbf_table* table) {
    dbf_cursor* cursor = dbf_allocatearray<dbf_cursor>(1, "cursor struct");
    if (cursor != nullptr) {
        cursor->table = table;
    }
    return cursor;
}

dbf_rowid* allocatematches(int32_t count) {
    return dbf_allocatearray<dbf_rowid>(static_cast<size_t>(count), "cursor match array");
}

/** Writes the locations of a bucket's rows, lowest slot first, and tells where the next bucket's go. */
dbf_rowid* listrows(const dbf_table* table, int32_t number, dbf_rowid* rowids) {
    const dbf_bucket* bucket = table->buckets[number];
    for (int32_t slot = 0; bucket->used != 0 && slot < table->rowsperbucket; slot += 32) {
        for (uint32_t word = bucket->occupied[slot / 32]; word != 0; word &= word - 1) {
            const int32_t found = slot + __builtin_ctz(word);
            *rowids++ = {static_cast<uint16_t>(number), static_cast<uint16_t>(found)};
        }
    }
    return rowids;
}

/** Appends one location, in an array of four times the room when it is full. */
bool appendmatch(dbf_cursor* cursor, int32_t& capacity, dbf_rowid match) {
    if (cursor->count == capacity) {
        if (capacity > INT32_MAX / 4) {
            return false;
        }
        const int32_t grown = capacity == 0 ? initialmatches : 4 * capacity;
        dbf_rowid* matches = allocatematches(grown);
        if (matches == nullptr) {
            return false;
        }
        std::copy_n(cursor->matches, cursor->count, matches);
        std::free(cursor->matches);
        cursor->matches = matches;
        capacity = grown;
    }
    cursor->matches[cursor->count++] = match;
    return true;
}

/** The row fetched last, if it is still there. */
const dbf_rowid* currentrow(const dbf_cursor* cursor) {
    const dbf_rowid* current = cursor->position > 0 ? &cursor->matches[cursor->position - 1] : nullptr;
    return current != nullptr && dbf_rowexists(cursor->table, *current) ? current : nullptr;
}

} // namespace

dbf_cursor* dbf_opencursor_all(dbf_table* table) {
    dbf_cursor* cursor = createcursor(table);
    if (cursor == nullptr) {
        return nullptr;
    }
    int32_t rows = 0;
    for (int32_t i = 0; i < table->bucketcount; ++i) {
        rows += table->buckets[i]->used;
    }
    if (rows == 0) {
        return cursor;
    }
    cursor->matches = allocatematches(rows);
    if (cursor->matches == nullptr) {
        dbf_closecursor(cursor);
        return nullptr;
    }
    cursor->count = rows;
    dbf_rowid* rowids = cursor->matches;
    for (int32_t i = 0; i < table->bucketcount; ++i) {
        rowids = listrows(table, i, rowids);
    }
    return cursor;
}

dbf_cursor* dbf_opencursor(dbf_index* index, const void* keyrow) {
    dbf_cursor* cursor = createcursor(index->table);
    if (cursor == nullptr) {
        return nullptr;
    }
    int32_t capacity = 0;
    const dbf_rowid* match = dbf_findhashmatch(index, keyrow);
    for (; match != nullptr; match = dbf_findhashmatch_next(index, keyrow, match)) {
        if (!appendmatch(cursor, capacity, *match)) {
            dbf_closecursor(cursor);
            return nullptr;
        }
    }
    return cursor;
}

int dbf_fetch(dbf_cursor* cursor, void* row) {
    if (cursor->position >= cursor->count) {
        return DBF_NOTFOUND;
    }
    const dbf_rowid current = cursor->matches[cursor->position++];
    if (!dbf_rowexists(cursor->table, current)) {
        return DBF_NOTFOUND;
    }
    dbf_copyrow(cursor->table, row, dbf_rowat(cursor->table, current));
    return DBF_OK;
}

int dbf_getcursorrowcount(dbf_cursor* cursor) {
    return cursor->count - cursor->position;
}

int dbf_updatecurrent(dbf_cursor* cursor, const void* row) {
    const dbf_rowid* current = currentrow(cursor);
    return current != nullptr ? dbf_overwriterow(cursor->table, *current, row, nullptr) : DBF_NOTFOUND;
}

int dbf_deletecurrent(dbf_cursor* cursor) {
    const dbf_rowid* current = currentrow(cursor);
    if (current == nullptr) {
        return DBF_NOTFOUND;
    }
    dbf_deleterow(cursor->table, *current);
    return DBF_OK;
}

int dbf_closecursor(dbf_cursor* cursor) {
    if (cursor != nullptr) {
        std::free(cursor->matches);
        std::free(cursor);
    }
    return DBF_OK;
}
