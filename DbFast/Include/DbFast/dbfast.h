/**
 * @file dbfast.h
 * A small in-memory table store with a C interface.
 *
 * A table holds rows of a fixed layout. Rows live in buckets that are added as the table grows and never move, and they
 * are found through hash indexes: any number per table, over one or more fields, unique or not. A table with its
 * indexes belongs to one thread at a time; nothing here locks.
 *
 * Records are owned by the module: what a create call returns is released by the matching drop call. When memory runs
 * out, one line on the standard error stream names the size and the purpose, and the operation reports failure;
 * whatever was stored before stays stored and can be found.
 *
 * The create calls answer null for a null argument, the drop and close calls accept null, and a null pointer in a field
 * is a value of its own. REQUIRES, everywhere else: no argument is null, and a row buffer has the layout of the table's
 * fields.
 */
#ifndef DBFAST_DBFAST_H
#define DBFAST_DBFAST_H

#include <stdint.h>

#if defined(__GNUC__)
#define DBFAST_API __attribute__((visibility("default")))
#else
#define DBFAST_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/** Result codes of the row operations. */
enum {
    DBF_OK = 0,        /**< done */
    DBF_NOTFOUND = 1,  /**< no row has that key */
    DBF_DUPLICATE = 2, /**< the key is already present in a unique index; nothing was changed */
    DBF_NOTUNIQUE = 3, /**< the operation needs a unique index and was given another */
    DBF_FAILED = 4     /**< out of memory, or the table is as large as it can be; nothing stored is lost */
};

/** Field types: what a field holds, how much room it takes in a row, and how keys compare. */
enum {
    DBF_INT = 0,      /**< 32-bit integer; 4 bytes */
    DBF_FLOAT = 1,    /**< float; 4 bytes; a NaN equals nothing. The two zeros are equal but have different hashes, so
                           that a look-up by one may miss the other; that is meant: give keys one of them */
    DBF_DOUBLE = 2,   /**< double; 8 bytes; compares as DBF_FLOAT does */
    DBF_STRING = 3,   /**< inline text of `size` bytes, ended by a zero byte or the field's end */
    DBF_BYTES = 4,    /**< exactly `size` bytes */
    DBF_POINTER = 5,  /**< a pointer, compared by its value; 8 bytes */
    DBF_PSTRING = 6,  /**< pointer to zero-terminated text owned by the caller; 8 bytes */
    DBF_WSTRING = 7,  /**< inline wide text; takes 2 bytes per character of `size`. Hashed by 16-bit units up to a zero
                           but compared by `wchar_t`: fill the rest of the field with zeros */
    DBF_PWSTRING = 8, /**< pointer to zero-terminated wide text (`wchar_t`) owned by the caller; 8 bytes. Hashed by
                           16-bit units, for most text its first character: look-ups in large tables are slow */
    DBF_END = 100     /**< ends an array of field specifications */
};

/** One field of a row. `size` counts for DBF_STRING, DBF_BYTES (bytes) and DBF_WSTRING (characters); at least 1. */
typedef struct dbf_fieldspec {
    int32_t type; /**< a field type, or DBF_END behind the last field */
    int32_t size; /**< bytes or characters; not looked at for the other types */
} dbf_fieldspec;

/** Storage of a table: rows to make room for at once (0 or more), and rows per bucket (1 to 65535). */
typedef struct dbf_tablespec {
    int32_t initialrows;   /**< rows to make room for at once; 0 or more */
    int32_t rowsperbucket; /**< rows that are allocated together; 1 to 65535 */
} dbf_tablespec;

/** Kind of an index (1, a hash index, is the only one) and whether a key may occur just once (not 0). */
typedef struct dbf_indexspec {
    int32_t kind;   /**< 1 for a hash index */
    int32_t unique; /**< not 0 when a key may occur just once */
} dbf_indexspec;

/**
 * Where a row lives. A row keeps its location until it is deleted or its table is cleared; then a later insert takes
 * the place for another row, and the location means that one. To be safe, keep a key rather than a location across
 * deletions.
 */
typedef struct dbf_rowid {
    uint16_t bucket; /**< number of the bucket, from 0 */
    uint16_t slot;   /**< number of the row in its bucket, from 0 */
} dbf_rowid;

/** A table; opaque. */
typedef struct dbf_table dbf_table;

/** An index of a table; opaque. */
typedef struct dbf_index dbf_index;

/** A cursor over rows of a table; opaque. */
typedef struct dbf_cursor dbf_cursor;

/**
 * Creates an empty table.
 *
 * Fields follow each other in the order of @p fieldspecs, each at its natural alignment; a row buffer handed to the
 * other functions has that layout.
 *
 * @param tablespec   initial room and rows per bucket; read during the call only
 * @param fieldspecs  at least one field, ended by a record of type DBF_END; read during the call only
 * @return the table, owned by the caller until dbf_droptable; null when one of these is not valid, or without memory
 */
DBFAST_API dbf_table* dbf_createtable(const dbf_tablespec* tablespec, const dbf_fieldspec* fieldspecs);

/**
 * Drops a table with its indexes and rows. Cursors on it must be closed before.
 * @param table  the table; may be null
 * @return DBF_OK
 */
DBFAST_API int dbf_droptable(dbf_table* table);

/**
 * Removes all rows and gives back the storage beyond the initial room; indexes stay, empty.
 * @param table  the table
 * @return DBF_OK, or DBF_FAILED when the smaller index arrays could not be had (the table is empty and usable)
 */
DBFAST_API int dbf_cleartable(dbf_table* table);

/**
 * Stores a copy of @p row in the lowest free slot.
 * @param table  the table
 * @param row    a row in the layout of the table's fields; read during the call only
 * @return DBF_OK; DBF_DUPLICATE when a unique index holds the key already; DBF_FAILED without memory or room. After a
 *         DBF_FAILED nothing stored is lost, and a later insert tries again.
 */
DBFAST_API int dbf_insert(dbf_table* table, const void* row);

/**
 * Finds the row whose key fields equal those in @p row and copies the whole row into @p row.
 * @param index  a unique index
 * @param row    the key fields are read; receives the whole row when there is one
 * @return DBF_OK, DBF_NOTFOUND, or DBF_NOTUNIQUE for an index that is not unique
 */
DBFAST_API int dbf_select(dbf_index* index, void* row);

/**
 * Overwrites the row whose key in @p index equals that of @p row, and moves it in every other index.
 * @param index  a unique index
 * @param row    the new row, with the key of the old one
 * @return DBF_OK, DBF_NOTFOUND, DBF_NOTUNIQUE; DBF_DUPLICATE when another unique index has the new key already (the row
 *         is unchanged)
 */
DBFAST_API int dbf_update(dbf_index* index, const void* row);

/**
 * Deletes the row whose key equals that of @p row; its slot is free for a later insert.
 * @param index  a unique index
 * @param row    a row buffer, of which the key fields are read
 * @return DBF_OK, DBF_NOTFOUND, or DBF_NOTUNIQUE for an index that is not unique
 */
DBFAST_API int dbf_delete(dbf_index* index, const void* row);

/**
 * Creates a hash index over the fields numbered in @p keyfields (from 0, ended by a negative number, each at most once)
 * and enters the rows that the table already holds, in the order of their locations: of rows with the same key, the one
 * with the highest location comes first.
 *
 * Rows that are there already are not compared: a unique index over rows that hold a key twice is created all the same.
 * dbf_select, dbf_update and dbf_delete then work on the first of them, and after a deletion on the next; new rows with
 * the key are refused. Search for each key first where that matters.
 * @param table      the table
 * @param indexspec  kind and uniqueness; read during the call only
 * @param keyfields  numbers of the key fields; read during the call only
 * @return the index, owned by the table; null when one of these is not valid, or without memory
 */
DBFAST_API dbf_index* dbf_createindex(dbf_table* table, const dbf_indexspec* indexspec, const int32_t* keyfields);

/**
 * Drops one index; the rows stay.
 * @param index  the index; may be null
 * @return DBF_OK
 */
DBFAST_API int dbf_dropindex(dbf_index* index);

/**
 * Finds the first row whose key fields equal those of @p keyrow, in a unique or other index.
 *
 * Rows with the same key come newest first. When the table grows, its indexes are made anew from the rows as they are
 * stored, so that those rows come in descending order of their location then, as they do in a new index; later ones
 * come in front of them. Do not rely on the order of equal keys across inserts.
 *
 * @param index   the index
 * @param keyrow  a row buffer, of which the key fields are read
 * @return the row's location, owned by the index and valid until the next insert into or clearing of the table; null
 *         when there is none
 */
DBFAST_API const dbf_rowid* dbf_findhashmatch(dbf_index* index, const void* keyrow);

/**
 * Finds the next row with the same key.
 *
 * REQUIRES: no insert, update, deletion or clearing since @p match was returned; after one the result may leave rows
 * out, or be one that is gone.
 *
 * @param index   the index
 * @param keyrow  a row buffer with the same key
 * @param match  what dbf_findhashmatch or this function returned for the same index and key
 * @return as dbf_findhashmatch
 */
DBFAST_API const dbf_rowid* dbf_findhashmatch_next(dbf_index* index, const void* keyrow, const dbf_rowid* match);

/**
 * Opens a cursor over all rows, in storage order: bucket by bucket, slot by slot.
 *
 * A cursor holds the locations of its rows as they were when it was opened. Rows inserted later are not seen, with one
 * exception: a row that took the place of one that was deleted since. The cursor fetches it as if it had been there,
 * and dbf_updatecurrent and dbf_deletecurrent overwrite and delete it. To be safe, insert nothing into a table while a
 * cursor is open that rows were deleted under, or compare the key of what was fetched.
 *
 * Close a cursor before its table is dropped.
 * @param table  the table
 * @return the cursor, owned by the caller until dbf_closecursor; null without memory
 */
DBFAST_API dbf_cursor* dbf_opencursor_all(dbf_table* table);

/**
 * Opens a cursor over the rows whose key fields equal those of @p keyrow, newest first. The index may be unique or not.
 * @param index   the index
 * @param keyrow  a row buffer, of which the key fields are read
 * @return as dbf_opencursor_all
 */
DBFAST_API dbf_cursor* dbf_opencursor(dbf_index* index, const void* keyrow);

/**
 * Goes to the next row and copies it into @p row.
 * @param cursor  the cursor
 * @param row     receives the row, in the layout of the table's fields
 * @return DBF_OK; DBF_NOTFOUND at the end, and once for a row that was deleted since (the next call goes on behind it;
 *         dbf_getcursorrowcount tells the two apart)
 */
DBFAST_API int dbf_fetch(dbf_cursor* cursor, void* row);

/**
 * Number of rows not fetched yet, deleted ones included.
 * @param cursor  the cursor
 * @return the number
 */
DBFAST_API int dbf_getcursorrowcount(dbf_cursor* cursor);

/**
 * Overwrites the row at the place of the one fetched last and moves it in every index whose key changes.
 * @param cursor  the cursor
 * @param row     the new row, in the layout of the table's fields
 * @return DBF_OK; DBF_NOTFOUND before the first fetch or when the row is gone; DBF_DUPLICATE when a unique index has
 * the new key already (nothing was changed)
 */
DBFAST_API int dbf_updatecurrent(dbf_cursor* cursor, const void* row);

/**
 * Deletes the row at the place of the one fetched last; the cursor goes on behind it.
 * @param cursor  the cursor
 * @return DBF_OK; DBF_NOTFOUND before the first fetch or when the row is gone
 */
DBFAST_API int dbf_deletecurrent(dbf_cursor* cursor);

/**
 * Closes a cursor.
 * @param cursor  the cursor; may be null
 * @return DBF_OK
 */
DBFAST_API int dbf_closecursor(dbf_cursor* cursor);

#ifdef __cplusplus
}
#endif

#endif
