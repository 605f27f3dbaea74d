#include "dbfinternal.h"

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

constexpr int32_t maximumbuckets = 65534;
constexpr int32_t maximumrowsperbucket = 65535;

struct intstruct {
    char before;
    int32_t member;
};
struct floatstruct {
    char before;
    float member;
};
struct doublestruct {
    char before;
    double member;
};
struct stringstruct {
    char before;
    char member;
};
struct bytesstruct {
    char before;
    unsigned char member;
};
struct pointerstruct {
    char before;
    void* member;
};
struct wstringstruct {
    char before;
    uint16_t member;
};

/** Size in a row of a field, or 0 for a type or size that is not valid. */
int64_t fieldsize(const dbf_fieldspec& spec) {
    switch (spec.type) {
    case DBF_INT:
    case DBF_FLOAT:
        return 4;
    case DBF_DOUBLE:
    case DBF_POINTER:
    case DBF_PSTRING:
    case DBF_PWSTRING:
        return 8;
    case DBF_STRING:
    case DBF_BYTES:
        return std::max<int64_t>(spec.size, 0);
    case DBF_WSTRING:
        return 2 * std::max<int64_t>(spec.size, 0);
    default:
        return 0;
    }
}

int64_t alignmentof(int32_t type) {
    switch (type) {
    case DBF_INT:
        return offsetof(intstruct, member);
    case DBF_FLOAT:
        return offsetof(floatstruct, member);
    case DBF_DOUBLE:
        return offsetof(doublestruct, member);
    case DBF_STRING:
        return offsetof(stringstruct, member);
    case DBF_BYTES:
        return offsetof(bytesstruct, member);
    case DBF_POINTER:
    case DBF_PSTRING:
    case DBF_PWSTRING:
        return offsetof(pointerstruct, member);
    case DBF_WSTRING:
        return offsetof(wstringstruct, member);
    default:
        std::abort();
    }
}

int64_t alignto(int64_t offset, int64_t alignment) {
    return (offset + alignment - 1) / alignment * alignment;
}

int64_t dbf_alignfield(int64_t offset, int32_t type) {
    return alignto(offset, alignmentof(type));
}

/** Number of fields; 0 when one of them is not valid. Nothing behind the end or an invalid record is read. */
int32_t dbf_countfields(const dbf_fieldspec* fieldspecs) {
    int32_t count = 0;
    for (; fieldspecs[count].type < DBF_END; ++count) {
        if (fieldsize(fieldspecs[count]) == 0) {
            return 0;
        }
    }
    return fieldspecs[count].type == DBF_END ? count : 0;
}

bool dbf_initializefields(dbf_table* table, const dbf_fieldspec* fieldspecs) {
    table->fieldcount = dbf_countfields(fieldspecs);
    if (table->fieldcount == 0) {
        return false;
    }
    table->fields = dbf_allocatearray<dbf_field>(static_cast<size_t>(table->fieldcount), "field struct array");
    if (table->fields == nullptr) {
        return false;
    }
    int64_t offset = 0;
    for (int32_t i = 0; i < table->fieldcount; ++i) {
        const dbf_fieldspec& spec = fieldspecs[i];
        const int64_t size = fieldsize(spec);
        offset = dbf_alignfield(offset, spec.type);
        if (alignto(offset + size, offsetof(doublestruct, member)) > INT32_MAX) {
            return false;
        }
        table->fields[i] = {spec.type, static_cast<int32_t>(size), static_cast<int32_t>(offset)};
        offset += size;
    }
    table->rowsize = static_cast<int32_t>(offset);
    table->rowstride = static_cast<int32_t>(alignto(offset, offsetof(doublestruct, member)));
    return true;
}

size_t occupiedwords(const dbf_table* table) {
    return (static_cast<size_t>(table->rowsperbucket) + 31) / 32;
}

void dbf_deallocatebucket(dbf_bucket* bucket) {
    if (bucket != nullptr) {
        std::free(bucket->data);
        std::free(bucket->occupied);
        std::free(bucket);
    }
}

dbf_bucket* dbf_allocatebucket(const dbf_table* table) {
    dbf_bucket* bucket = dbf_allocatearray<dbf_bucket>(1, "bucket");
    if (bucket == nullptr) {
        return nullptr;
    }
    const size_t datasize = static_cast<size_t>(table->rowsperbucket) * static_cast<size_t>(table->rowstride);
    bucket->data = dbf_allocatearray<char>(datasize, "bucket data");
    bucket->occupied = dbf_allocatearray<uint32_t>(occupiedwords(table), "bucket free table");
    if (bucket->data == nullptr || bucket->occupied == nullptr) {
        dbf_deallocatebucket(bucket);
        return nullptr;
    }
    return bucket;
}

bool dbf_growpbuckets(dbf_table* table) {
    const int32_t capacity = table->bucketcapacity == 0 ? 16 : 4 * table->bucketcapacity;
    dbf_bucket** buckets = dbf_allocatearray<dbf_bucket*>(static_cast<size_t>(capacity), "bucket pointer array");
    if (buckets == nullptr) {
        return false;
    }
    std::copy_n(table->buckets, table->bucketcount, buckets);
    std::free(table->buckets);
    table->buckets = buckets;
    table->bucketcapacity = capacity;
    return true;
}

/** Adds a bucket. When the indexes can't grow with it, the bucket stays and the result is false all the same. */
bool dbf_growtable(dbf_table* table) {
    if (table->bucketcount == table->bucketcapacity && !dbf_growpbuckets(table)) {
        return false;
    }
    const uint64_t grown = dbf_capacity(table) + static_cast<uint64_t>(table->rowsperbucket);
    if (table->bucketcount >= maximumbuckets || grown > INT32_MAX) {
        return false;
    }
    dbf_bucket* bucket = dbf_allocatebucket(table);
    if (bucket == nullptr) {
        return false;
    }
    table->buckets[table->bucketcount] = bucket;
    if (table->firstfree == -1) {
        table->firstfree = table->bucketcount;
    }
    ++table->bucketcount;
    return dbf_checkhashsize(table);
}

bool dbf_allocatetable(dbf_table* table) {
    table->firstfree = -1;
    do {
        if (!dbf_growtable(table)) {
            return false;
        }
    } while (dbf_capacity(table) < static_cast<uint64_t>(table->initialrows));
    return true;
}

void dbf_deallocatetable(dbf_table* table) {
    for (int32_t i = 0; i < table->bucketcount; ++i) {
        dbf_deallocatebucket(table->buckets[i]);
    }
    std::free(table->buckets);
    std::free(table->fields);
    std::free(table);
}

/** The lowest free slot from @p slot on, or -1. */
int32_t nextfreeslot(const dbf_table* table, const dbf_bucket* bucket, int32_t slot) {
    while (slot < table->rowsperbucket) {
        const uint32_t free = ~bucket->occupied[slot / 32] >> (slot % 32);
        if (free != 0) {
            slot += __builtin_ctz(free);
            break;
        }
        slot = (slot / 32 + 1) * 32;
    }
    return slot < table->rowsperbucket ? slot : -1;
}

/** Takes the table's lowest free slot, which must exist. */
dbf_rowid occupyslot(dbf_table* table) {
    const int32_t number = table->firstfree;
    dbf_bucket* bucket = table->buckets[number];
    const int32_t slot = bucket->lowestfree;
    bucket->occupied[slot / 32] |= 1U << (slot % 32);
    ++bucket->used;
    bucket->lowestfree = nextfreeslot(table, bucket, slot + 1);
    if (bucket->lowestfree == -1) {
        int32_t next = number + 1;
        while (next < table->bucketcount && table->buckets[next]->used == table->rowsperbucket) {
            ++next;
        }
        table->firstfree = next < table->bucketcount ? next : -1;
    }
    return {static_cast<uint16_t>(number), static_cast<uint16_t>(slot)};
}

void releaseslot(dbf_table* table, dbf_rowid rowid) {
    dbf_bucket* bucket = table->buckets[rowid.bucket];
    bucket->occupied[rowid.slot / 32] &= ~(1U << (rowid.slot % 32));
    --bucket->used;
    if (bucket->lowestfree == -1 || bucket->lowestfree > rowid.slot) {
        bucket->lowestfree = rowid.slot;
    }
    if (table->firstfree == -1 || table->firstfree > rowid.bucket) {
        table->firstfree = rowid.bucket;
    }
}

/** Finds the row with the key in a unique index. */
int findunique(const dbf_index* index, const void* row, dbf_match& match) {
    if (index->unique == 0) {
        return DBF_NOTUNIQUE;
    }
    match = dbf_findmatch(index, dbf_calculatehash(index, row), row);
    return match.row == nullptr ? DBF_NOTFOUND : DBF_OK;
}

} // namespace

void* dbf_allocate(size_t size, const char* what) {
    if (size == 0) {
        return nullptr;
    }
    void* memory = std::calloc(1, size);
    if (memory == nullptr) {
        std::fprintf(stderr, "libdbfast: cannot allocate memory (%d bytes) for %s\n", static_cast<int>(size), what);
    }
    return memory;
}

dbf_table* dbf_createtable(const dbf_tablespec* tablespec, const dbf_fieldspec* fieldspecs) {
    const bool valid = tablespec != nullptr && fieldspecs != nullptr && tablespec->rowsperbucket >= 1 &&
                       tablespec->rowsperbucket <= maximumrowsperbucket && tablespec->initialrows >= 0;
    dbf_table* table = valid ? dbf_allocatearray<dbf_table>(1, "table struct") : nullptr;
    if (table == nullptr) {
        return nullptr;
    }
    table->initialrows = tablespec->initialrows;
    table->rowsperbucket = tablespec->rowsperbucket;
    if (!dbf_initializefields(table, fieldspecs) || !dbf_allocatetable(table)) {
        dbf_droptable(table);
        return nullptr;
    }
    return table;
}

int dbf_droptable(dbf_table* table) {
    if (table != nullptr) {
        while (table->indexes != nullptr) {
            dbf_dropindex(table->indexes);
        }
        dbf_deallocatetable(table);
    }
    return DBF_OK;
}

int dbf_cleartable(dbf_table* table) {
    const int32_t kept = (table->initialrows - 1) / table->rowsperbucket + 1;
    for (int32_t i = 0; i < table->bucketcount; ++i) {
        dbf_bucket* bucket = table->buckets[i];
        if (i < kept) {
            bucket->used = 0;
            bucket->lowestfree = 0;
            std::memset(bucket->occupied, 0, occupiedwords(table) * sizeof(uint32_t));
        } else {
            dbf_deallocatebucket(bucket);
            table->buckets[i] = nullptr;
        }
    }
    table->bucketcount = kept;
    table->firstfree = kept > 0 ? 0 : -1;
    if (!dbf_rehashindex_all(table)) {
        dbf_emptyindex_all(table);
        return DBF_FAILED;
    }
    return DBF_OK;
}

int dbf_insert(dbf_table* table, const void* row) {
    for (dbf_index* index = table->indexes; index != nullptr; index = index->next) {
        index->rowhash = dbf_calculatehash(index, row);
        if (index->unique != 0 && dbf_findmatch(index, index->rowhash, row).row != nullptr) {
            return DBF_DUPLICATE;
        }
    }
    // The indexes lag behind the buckets when an earlier insert found no memory for them.
    if (!dbf_checkhashsize(table) || (table->firstfree == -1 && !dbf_growtable(table))) {
        return DBF_FAILED;
    }
    const dbf_rowid rowid = occupyslot(table);
    dbf_copyrow(table, dbf_rowat(table, rowid), row);
    for (dbf_index* index = table->indexes; index != nullptr; index = index->next) {
        dbf_hashentry_index(index, rowid, index->rowhash);
    }
    return DBF_OK;
}

int dbf_overwriterow(dbf_table* table, dbf_rowid rowid, const void* row, const dbf_index* unchanged) {
    char* stored = dbf_rowat(table, rowid);
    const uint32_t position = dbf_position(table, rowid.bucket, rowid.slot);
    for (dbf_index* index = table->indexes; index != nullptr; index = index->next) {
        index->changed = 0;
        if (index == unchanged || dbf_comparerow(index, stored, row) == 0) {
            continue;
        }
        index->rowhash = dbf_calculatehash(index, row);
        if (index->unique != 0 && dbf_findmatch(index, index->rowhash, row).row != nullptr) {
            return DBF_DUPLICATE;
        }
        index->changed = 1;
    }
    for (dbf_index* index = table->indexes; index != nullptr; index = index->next) {
        if (index->changed != 0) {
            dbf_removeentry_index(index, position);
            dbf_hashentry_index(index, rowid, index->rowhash);
        }
    }
    dbf_copyrow(table, stored, row);
    return DBF_OK;
}

void dbf_deleterow(dbf_table* table, dbf_rowid rowid) {
    dbf_removeentry(table, dbf_position(table, rowid.bucket, rowid.slot));
    releaseslot(table, rowid);
}

int dbf_select(dbf_index* index, void* row) {
    dbf_match match;
    const int result = findunique(index, row, match);
    if (result == DBF_OK) {
        dbf_copyrow(index->table, row, match.row);
    }
    return result;
}

int dbf_update(dbf_index* index, const void* row) {
    dbf_match match;
    const int result = findunique(index, row, match);
    return result == DBF_OK ? dbf_overwriterow(index->table, dbf_rowidat(index->table, match.position), row, index)
                            : result;
}

int dbf_delete(dbf_index* index, const void* row) {
    dbf_match match;
    const int result = findunique(index, row, match);
    if (result == DBF_OK) {
        dbf_deleterow(index->table, dbf_rowidat(index->table, match.position));
    }
    return result;
}
