#include "output/Listing.h"

#include <DbFast/dbfast.h>

#include <PluginKit/Text.h>

#include <cstdint>
#include <cstdio>
#include <memory>
#include <new>

namespace {

constexpr int identitySize = 16 + 2 * 88; ///< of the longest text of an identity, a spatial hash's

/** A row as the table stores it; of a longer identity it holds the beginning. */
struct Row {
    std::int32_t number;
    char identity[identitySize];
};

constexpr dbf_tablespec tableSpec = {0, 1000};
constexpr dbf_fieldspec fieldSpecs[] = {{DBF_INT, 0}, {DBF_STRING, identitySize}, {DBF_END, 0}};

struct TableCloser {
    void operator()(dbf_table* table) const { dbf_droptable(table); }
};

struct CursorCloser {
    void operator()(dbf_cursor* cursor) const { dbf_closecursor(cursor); }
};

} // namespace

std::string listingText(const std::vector<ObjectRecord>& objects) {
    const std::unique_ptr<dbf_table, TableCloser> table(dbf_createtable(&tableSpec, fieldSpecs));
    if (!table) {
        throw std::bad_alloc();
    }
    for (std::size_t i = 0; i < objects.size(); ++i) {
        Row row{};
        row.number = static_cast<std::int32_t>(i);
        std::snprintf(row.identity, sizeof row.identity, "%s", identityText(objects[i]).c_str());
        if (dbf_insert(table.get(), &row) != DBF_OK) {
            throw std::bad_alloc();
        }
    }

    const std::unique_ptr<dbf_cursor, CursorCloser> cursor(dbf_opencursor_all(table.get()));
    if (!cursor) {
        throw std::bad_alloc();
    }
    std::string text;
    for (Row row; dbf_fetch(cursor.get(), &row) == DBF_OK;) {
        const ObjectRecord& object = objects[static_cast<std::size_t>(row.number)];
        text += identityText(object) + "  " + printable(object.className) + "  " + printable(object.name) + '\n';
    }
    return text + std::to_string(objects.size()) + (objects.size() == 1 ? " object\n" : " objects\n");
}
