#include "dbfinternal.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <cwchar>

namespace {

constexpr uint32_t goldenratio = 0x9E3779B9; // 2^32 divided by the golden ratio (Knuth, TAOCP vol. 3, 6.4)
constexpr uint32_t minimumhashbits = 4;
constexpr uint32_t maximumhashbits = 31;

/** A value as it lies in a row, whose alignment is the caller's affair. */
template <typename T>
T load(const void* row, size_t offset = 0) {
    T value;
    std::memcpy(&value, static_cast<const char*>(row) + offset, sizeof value);
    return value;
}

uint32_t hashstep(uint32_t hash, uint32_t unit) {
    return (hash ^ unit) + (hash << 26 | hash >> 6);
}

uint32_t hashbytes(const char* bytes, size_t size) {
    uint32_t hash = 0;
    for (size_t i = 0; i < size; ++i) {
        hash = hashstep(hash, static_cast<unsigned char>(bytes[i]));
    }
    return hash;
}

/** Hash of text up to its zero unit or @p maximum units. */
template <typename Unit>
uint32_t hashtext(const void* text, size_t maximum) {
    uint32_t hash = 0;
    for (size_t i = 0; text != nullptr && i < maximum; ++i) {
        const Unit unit = load<Unit>(text, i * sizeof(Unit));
        if (unit == 0) {
            break;
        }
        hash = hashstep(hash, unit);
    }
    return hash;
}

uint32_t hashfield(const dbf_field& field, const char* row) {
    const char* value = row + field.offset;
    const size_t size = static_cast<size_t>(field.size);
    switch (field.type) {
    case DBF_INT:
    case DBF_FLOAT:
        return load<uint32_t>(value);
    case DBF_DOUBLE:
    case DBF_POINTER:
        return load<uint32_t>(value) ^ load<uint32_t>(value, 4);
    case DBF_STRING:
        return hashtext<unsigned char>(value, size);
    case DBF_BYTES:
        return hashbytes(value, size);
    case DBF_PSTRING:
        return hashtext<unsigned char>(load<const void*>(value), SIZE_MAX);
    case DBF_WSTRING:
        return hashtext<uint16_t>(value, size / sizeof(uint16_t));
    case DBF_PWSTRING:
        // 16-bit units, although the text has wider ones and is compared by them. Equal texts still hash equally, but
        // most texts hash by their first character alone.
        return hashtext<uint16_t>(load<const void*>(value), SIZE_MAX);
    default:
        std::abort();
    }
}

/** Compares eight bytes at a time; the last eight may overlap those before. */
bool bytesdiffer(const char* a, const char* b, size_t size) {
    if (size < sizeof(uint64_t)) {
        return std::memcmp(a, b, size) != 0;
    }
    const size_t last = size - sizeof(uint64_t);
    for (size_t i = 0; i < last; i += sizeof(uint64_t)) {
        if (load<uint64_t>(a, i) != load<uint64_t>(b, i)) {
            return true;
        }
    }
    return load<uint64_t>(a, last) != load<uint64_t>(b, last);
}

template <typename T>
bool floatsdiffer(const char* a, const char* b) {
    return !(load<T>(a) == load<T>(b));
}

bool widetextdiffers(const char* a, const char* b, size_t size) {
    size_t offset = 0;
    for (; offset + sizeof(wchar_t) <= size; offset += sizeof(wchar_t)) {
        const wchar_t unit = load<wchar_t>(a, offset);
        if (unit != load<wchar_t>(b, offset)) {
            return true;
        }
        if (unit == 0) {
            return false;
        }
    }
    return std::memcmp(a + offset, b + offset, size - offset) != 0;
}

/** Whether two texts differ, where a null pointer equals only itself. */
template <typename Char, typename Compare>
bool pointedtextsdiffer(const char* a, const char* b, Compare compare) {
    const Char* textA = load<const Char*>(a);
    const Char* textB = load<const Char*>(b);
    if (textA == nullptr || textB == nullptr) {
        return textA != textB;
    }
    return compare(textA, textB) != 0;
}

bool fieldsdiffer(const dbf_field& field, const char* a, const char* b) {
    const size_t size = static_cast<size_t>(field.size);
    switch (field.type) {
    case DBF_FLOAT:
        return floatsdiffer<float>(a, b);
    case DBF_DOUBLE:
        return floatsdiffer<double>(a, b);
    case DBF_STRING:
        return std::strncmp(a, b, size) != 0;
    case DBF_INT:
    case DBF_BYTES:
    case DBF_POINTER:
        return bytesdiffer(a, b, size);
    case DBF_PSTRING:
        return pointedtextsdiffer<char>(a, b, std::strcmp);
    case DBF_WSTRING:
        return widetextdiffers(a, b, size);
    case DBF_PWSTRING:
        return pointedtextsdiffer<wchar_t>(a, b, std::wcscmp);
    default:
        std::abort();
    }
}

uint32_t hashfields(const dbf_index* index, const char* row) {
    uint32_t hash = 0;
    for (int32_t i = 0; i < index->keyfieldcount; ++i) {
        hash = (hash << 1) ^ hashfield(index->keyfields[i], row);
    }
    return hash;
}

uint32_t chainnumber(const dbf_table* table, uint32_t hash) {
    return hash >> (32 - table->hashbits);
}

/** The bits of a chain reference that hold the position. */
uint32_t positionmask(const dbf_table* table) {
    return (2U << table->hashbits) - 1;
}

/** The bits of a chain reference that stand above the position. */
uint32_t hashtag(const dbf_table* table, uint32_t hash) {
    return (hash << table->hashbits) & ~positionmask(table);
}

/** The first row from a chain reference on whose key equals. */
template <typename Equals>
dbf_match findinchain(const dbf_index* index, dbf_chainref ref, uint32_t hash, Equals equals) {
    const dbf_table* table = index->table;
    const uint32_t mask = positionmask(table);
    const uint32_t tag = hashtag(table, hash);
    while (ref != 0) {
        const uint32_t position = (ref & mask) - 1;
        if ((ref & ~mask) == tag) {
            char* row = dbf_rowat(table, dbf_rowidat(table, position));
            if (equals(row)) {
                return {position, row};
            }
        }
        ref = index->links[position].next;
    }
    return {};
}

dbf_match findinchain(const dbf_index* index, dbf_chainref ref, uint32_t hash, const void* keyrow) {
    const char* key = static_cast<const char*>(keyrow);
    const int32_t offset = index->singleoffset;
    if (index->singletype == DBF_INT) {
        return findinchain(index, ref, hash, [=](const char* row) {
            return load<uint32_t>(row + offset) == load<uint32_t>(key + offset);
        });
    }
    if (index->singletype == DBF_BYTES) {
        const size_t size = static_cast<size_t>(index->singlesize);
        return findinchain(index, ref, hash,
                           [=](const char* row) { return !bytesdiffer(row + offset, key + offset, size); });
    }
    return findinchain(index, ref, hash, [=](const char* row) { return dbf_comparerow(index, row, key) == 0; });
}

const dbf_rowid* rowidof(const dbf_index* index, const dbf_match& match) {
    return match.row == nullptr ? nullptr : &index->links[match.position].rowid;
}

/** Number of key fields; 0 for a list that is empty, out of range, or repeats a field. */
int32_t dbf_countkeyfields(const dbf_table* table, const int32_t* keyfields) {
    char* seen = dbf_allocatearray<char>(static_cast<size_t>(table->fieldcount), "temp field array");
    if (seen == nullptr) {
        return 0;
    }
    int32_t count = 0;
    while (keyfields[count] >= 0) {
        const int32_t field = keyfields[count];
        if (field >= table->fieldcount || seen[field] != 0) {
            count = 0;
            break;
        }
        seen[field] = 1;
        ++count;
    }
    std::free(seen);
    return count;
}

bool dbf_initializekeyfields(dbf_index* index, const int32_t* keyfields) {
    const dbf_table* table = index->table;
    index->keyfieldcount = dbf_countkeyfields(table, keyfields);
    index->keyfields = dbf_allocatearray<dbf_field>(static_cast<size_t>(index->keyfieldcount), "index field array");
    if (index->keyfields == nullptr) {
        return false;
    }
    for (int32_t i = 0; i < index->keyfieldcount; ++i) {
        index->keyfields[i] = table->fields[keyfields[i]];
    }
    const dbf_field& first = index->keyfields[0];
    const bool issingle = index->keyfieldcount == 1 && (first.type == DBF_INT || first.type == DBF_BYTES);
    index->singletype = issingle ? first.type : -1;
    index->singleoffset = first.offset;
    index->singlesize = first.size;
    return true;
}

/** Gets arrays of the next size, beside the present ones. */
bool dbf_reallocateindex(dbf_index* index, size_t hashsize) {
    index->newheads = dbf_allocatearray<dbf_chainref>(hashsize, "index entry array");
    index->newlinks = dbf_allocatearray<dbf_link>(hashsize, "index link array");
    return index->newheads != nullptr && index->newlinks != nullptr;
}

void dropnewarrays(dbf_index* index) {
    std::free(index->newheads);
    std::free(index->newlinks);
    index->newheads = nullptr;
    index->newlinks = nullptr;
}

void adoptnewarrays(dbf_index* index) {
    std::swap(index->heads, index->newheads);
    std::swap(index->links, index->newlinks);
    dropnewarrays(index);
}

bool dbf_reallocateindex_all(dbf_table* table, size_t hashsize) {
    bool done = true;
    for (dbf_index* index = table->indexes; done && index != nullptr; index = index->next) {
        done = dbf_reallocateindex(index, hashsize);
    }
    for (dbf_index* index = table->indexes; index != nullptr; index = index->next) {
        done ? adoptnewarrays(index) : dropnewarrays(index);
    }
    return done;
}

/** Enters every row of the table, in storage order, in an empty index. */
void dbf_rehashindex(dbf_index* index) {
    const dbf_table* table = index->table;
    for (int32_t i = 0; i < table->bucketcount; ++i) {
        const dbf_bucket* bucket = table->buckets[i];
        for (int32_t slot = 0; bucket->used != 0 && slot < table->rowsperbucket; ++slot) {
            const dbf_rowid rowid = {static_cast<uint16_t>(i), static_cast<uint16_t>(slot)};
            if (dbf_isoccupied(bucket, rowid.slot)) {
                const uint32_t hash = dbf_calculatehash(index, dbf_rowat(table, rowid));
                dbf_hashentry_index(index, rowid, hash);
            }
        }
    }
}

void dbf_deallocateindex(dbf_index* index) {
    std::free(index->heads);
    std::free(index->links);
    dropnewarrays(index);
    std::free(index->keyfields);
    std::free(index);
}

} // namespace

uint32_t dbf_calculatehash(const dbf_index* index, const void* row) {
    const char* bytes = static_cast<const char*>(row);
    if (index->singletype == DBF_INT) {
        return load<uint32_t>(bytes + index->singleoffset) * goldenratio;
    }
    if (index->singletype == DBF_BYTES) {
        return hashbytes(bytes + index->singleoffset, static_cast<size_t>(index->singlesize)) * goldenratio;
    }
    return hashfields(index, bytes) * goldenratio;
}

int dbf_comparerow(const dbf_index* index, const void* storedrow, const void* keyrow) {
    const char* stored = static_cast<const char*>(storedrow);
    const char* key = static_cast<const char*>(keyrow);
    for (int32_t i = 0; i < index->keyfieldcount; ++i) {
        const dbf_field& field = index->keyfields[i];
        if (fieldsdiffer(field, stored + field.offset, key + field.offset)) {
            return 1;
        }
    }
    return 0;
}

dbf_match dbf_findmatch(const dbf_index* index, uint32_t hash, const void* keyrow) {
    return findinchain(index, index->heads[chainnumber(index->table, hash)], hash, keyrow);
}

void dbf_hashentry_index(dbf_index* index, dbf_rowid rowid, uint32_t hash) {
    const dbf_table* table = index->table;
    const uint32_t position = dbf_position(table, rowid.bucket, rowid.slot);
    const uint32_t chain = chainnumber(table, hash);
    dbf_chainref& head = index->heads[chain];
    if (head != 0) {
        index->links[(head & positionmask(table)) - 1].previous = position;
    }
    index->links[position] = {rowid, firstinchain | chain, head};
    head = hashtag(table, hash) | (position + 1);
}

void dbf_removeentry_index(dbf_index* index, uint32_t position) {
    const dbf_link& link = index->links[position];
    if ((link.previous & firstinchain) != 0) {
        index->heads[link.previous & ~firstinchain] = link.next;
    } else {
        index->links[link.previous].next = link.next;
    }
    if (link.next != 0) {
        index->links[(link.next & positionmask(index->table)) - 1].previous = link.previous;
    }
}

void dbf_removeentry(dbf_table* table, uint32_t position) {
    for (dbf_index* index = table->indexes; index != nullptr; index = index->next) {
        dbf_removeentry_index(index, position);
    }
}

bool dbf_checkhashsize(dbf_table* table) {
    return table->hashsize >= dbf_capacity(table) || dbf_rehashindex_all(table);
}

bool dbf_rehashindex_all(dbf_table* table) {
    uint32_t bits = minimumhashbits;
    while (bits < maximumhashbits && (1ULL << bits) < 2 * dbf_capacity(table)) {
        ++bits;
    }
    if (!dbf_reallocateindex_all(table, size_t{1} << bits)) {
        return false;
    }
    table->hashsize = 1U << bits;
    table->hashbits = bits;
    for (dbf_index* index = table->indexes; index != nullptr; index = index->next) {
        dbf_rehashindex(index);
    }
    return true;
}

void dbf_emptyindex_all(dbf_table* table) {
    for (dbf_index* index = table->indexes; index != nullptr; index = index->next) {
        std::fill_n(index->heads, table->hashsize, dbf_chainref{0});
        std::fill_n(index->links, table->hashsize, dbf_link{});
    }
}

dbf_index* dbf_createindex(dbf_table* table, const dbf_indexspec* indexspec, const int32_t* keyfields) {
    if (table == nullptr || indexspec == nullptr || keyfields == nullptr) {
        return nullptr;
    }
    dbf_index* index = dbf_allocatearray<dbf_index>(1, "index struct");
    if (index == nullptr) {
        return nullptr;
    }
    index->table = table;
    index->unique = indexspec->unique;
    if (indexspec->kind != 1 || !dbf_initializekeyfields(index, keyfields) ||
        !dbf_reallocateindex(index, table->hashsize)) {
        dbf_deallocateindex(index);
        return nullptr;
    }
    adoptnewarrays(index);
    dbf_rehashindex(index);
    index->next = table->indexes;
    table->indexes = index;
    return index;
}

int dbf_dropindex(dbf_index* index) {
    if (index != nullptr) {
        dbf_index** place = &index->table->indexes;
        while (*place != index) {
            place = &(*place)->next;
        }
        *place = index->next;
        dbf_deallocateindex(index);
    }
    return DBF_OK;
}

const dbf_rowid* dbf_findhashmatch(dbf_index* index, const void* keyrow) {
    return rowidof(index, dbf_findmatch(index, dbf_calculatehash(index, keyrow), keyrow));
}

const dbf_rowid* dbf_findhashmatch_next(dbf_index* index, const void* keyrow, const dbf_rowid* match) {
    const uint32_t position = dbf_position(index->table, match->bucket, match->slot);
    if (position >= index->table->hashsize) {
        return nullptr; // a location from before the table was cleared
    }
    const dbf_chainref next = index->links[position].next;
    return rowidof(index, findinchain(index, next, dbf_calculatehash(index, keyrow), keyrow));
}
