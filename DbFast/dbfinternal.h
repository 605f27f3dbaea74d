/**
 * @file dbfinternal.h
 * Records and internal operations of the table store.
 *
 * Invariants, re-established by every operation before it returns:
 * - a bucket's `lowestfree` is the smallest clear bit of its occupancy map, or -1;
 * - a table's `firstfree` is the smallest number of a bucket with room, or -1;
 * - every index has exactly `hashsize` chain heads and links, and every row's position is below `hashsize`. A bucket
 *   that was added while the indexes could not grow holds no rows until a later insert makes them grow.
 */
#ifndef DBFAST_DBFINTERNAL_H
#define DBFAST_DBFINTERNAL_H

#include <DbFast/dbfast.h>

#include <cstddef>
#include <cstdint>
#include <cstring>

struct dbf_field {
    int32_t type;
    int32_t size;
    int32_t offset;
};

struct dbf_bucket {
    char* data;
    uint32_t* occupied; // bit s % 32 of word s / 32 is set while slot s holds a row
    int32_t used;
    int32_t lowestfree;
};

struct dbf_table {
    int32_t initialrows;
    int32_t fieldcount;
    int32_t rowsize;
    int32_t rowstride;
    int32_t rowsperbucket;
    int32_t bucketcount;
    int32_t bucketcapacity;
    uint32_t hashsize;
    uint32_t hashbits;
    dbf_field* fields;
    dbf_bucket** buckets;
    int32_t firstfree;
    dbf_index* indexes;
};

/**
 * Reference to a row in a chain: its position plus one in the low `hashbits` + 1 bits, and above them as much as fits
 * of the key's hash that the chain's number doesn't tell. A look-up thus passes over nearly every row with another key
 * without touching it. 0 is the end of a chain.
 */
using dbf_chainref = uint32_t;

/** `previous` is the position of the row before this one, or `firstinchain` plus the chain's number. */
struct dbf_link {
    dbf_rowid rowid;
    uint32_t previous;
    dbf_chainref next;
};

constexpr uint32_t firstinchain = 0x80000000;

struct dbf_cursor {
    int32_t position;
    int32_t count;
    dbf_rowid* matches;
    dbf_table* table;
};

struct dbf_index {
    int32_t unique;
    int32_t keyfieldcount;
    int32_t singletype; // of a key that is one DBF_INT or one DBF_BYTES, else -1
    int32_t singleoffset;
    int32_t singlesize;
    int32_t changed;
    uint32_t rowhash; // of the row that is being inserted
    dbf_table* table;
    dbf_field* keyfields;
    dbf_chainref* heads;
    dbf_link* links;
    dbf_chainref* newheads; // arrays of the next size, while all indexes of the table get theirs
    dbf_link* newlinks;
    dbf_index* next;
};

/** Linear position of a slot; a row's link stands at its position. */
inline uint32_t dbf_position(const dbf_table* table, uint32_t bucket, uint32_t slot) {
    return bucket * static_cast<uint32_t>(table->rowsperbucket) + slot;
}

inline dbf_rowid dbf_rowidat(const dbf_table* table, uint32_t position) {
    const uint32_t rowsperbucket = static_cast<uint32_t>(table->rowsperbucket);
    return {static_cast<uint16_t>(position / rowsperbucket), static_cast<uint16_t>(position % rowsperbucket)};
}

inline char* dbf_rowat(const dbf_table* table, dbf_rowid rowid) {
    return table->buckets[rowid.bucket]->data + static_cast<size_t>(table->rowstride) * rowid.slot;
}

inline void dbf_copyrow(const dbf_table* table, void* target, const void* source) {
    std::memcpy(target, source, static_cast<size_t>(table->rowsize));
}

inline bool dbf_isoccupied(const dbf_bucket* bucket, uint32_t slot) {
    return (bucket->occupied[slot / 32] >> (slot % 32) & 1) != 0;
}

/** Zeroed memory, released with `free`. Null for 0 bytes; null with a message on standard error without memory. */
void* dbf_allocate(size_t size, const char* what);

template <typename T>
T* dbf_allocatearray(size_t count, const char* what) {
    return static_cast<T*>(dbf_allocate(count * sizeof(T), what));
}

/** Room for rows in the table's buckets. */
inline uint64_t dbf_capacity(const dbf_table* table) {
    return static_cast<uint64_t>(table->bucketcount) * static_cast<uint64_t>(table->rowsperbucket);
}

/** Whether there is a row at a location that may be out of date. */
inline bool dbf_rowexists(const dbf_table* table, dbf_rowid rowid) {
    return rowid.bucket < table->bucketcount && dbf_isoccupied(table->buckets[rowid.bucket], rowid.slot);
}

/**
 * Overwrites a row and moves it in the indexes whose key changes; @p unchanged, if any, is not looked at. DBF_OK, or
 * DBF_DUPLICATE with nothing changed.
 */
int dbf_overwriterow(dbf_table* table, dbf_rowid rowid, const void* row, const dbf_index* unchanged);

/** Takes a row out of all indexes and frees its slot. */
void dbf_deleterow(dbf_table* table, dbf_rowid rowid);

/** The key's 32-bit hash; its top `hashbits` bits are the number of the key's chain. */
uint32_t dbf_calculatehash(const dbf_index* index, const void* row);

/** 0 when all key fields of the two rows are equal, else 1. */
int dbf_comparerow(const dbf_index* index, const void* storedrow, const void* keyrow);

struct dbf_match {
    uint32_t position;
    char* row; // null when there is none
};

/** The first row with the key, whose hash is given. */
dbf_match dbf_findmatch(const dbf_index* index, uint32_t hash, const void* keyrow);

/** Enters a row in front of its chain. */
void dbf_hashentry_index(dbf_index* index, dbf_rowid rowid, uint32_t hash);

/** Takes the row at a position out of its chain, without looking at the row. */
void dbf_removeentry_index(dbf_index* index, uint32_t position);
void dbf_removeentry(dbf_table* table, uint32_t position);

/** Makes all indexes large enough for the table's buckets. On failure nothing has changed. */
bool dbf_checkhashsize(dbf_table* table);

/** Re-sizes all indexes for the table's present buckets, also to fewer. On failure nothing has changed. */
bool dbf_rehashindex_all(dbf_table* table);

/** Empties all indexes of a table without rows, at their present size. */
void dbf_emptyindex_all(dbf_table* table);

#endif
