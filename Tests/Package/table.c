/* The table store from C: counts how many of the numbers are different. */
#include <DbFast/dbfast.h>

int countDifferent(const int32_t* numbers, int count);

int countDifferent(const int32_t* numbers, int count) {
    const dbf_fieldspec fields[] = {{DBF_INT, 0}, {DBF_END, 0}};
    const dbf_tablespec room = {0, 16};
    const dbf_indexspec unique = {1, 1};
    const int32_t key[] = {0, -1};
    dbf_table* const table = dbf_createtable(&room, fields);
    int different = 0;
    if (table == 0 || dbf_createindex(table, &unique, key) == 0) {
        dbf_droptable(table);
        return -1;
    }
    for (int i = 0; i < count; ++i) {
        if (dbf_insert(table, &numbers[i]) == DBF_OK) {
            ++different;
        }
    }
    dbf_droptable(table);
    return different;
}
