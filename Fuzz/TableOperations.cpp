/**
 * @file TableOperations.cpp
 * A table, its indexes and its cursors, driven by a sequence of calls that stands in the input, against a plain model.
 */
#include "../Tests/TableModel.h"
#include "FuzzInput.h"

#include <array>
#include <memory>

namespace {

using TablePtr = std::unique_ptr<dbf_table, decltype(&dbf_droptable)>;
using CursorPtr = std::unique_ptr<dbf_cursor, decltype(&dbf_closecursor)>;

constexpr const char* texts[] = {"", "a", "b", "ab", "a longer text", "\xFF"};
constexpr const wchar_t* wideTexts[] = {L"", L"a", L"b", L"ab", L"a longer text", L"\U0001F600"};

class Driver {
public:
    explicit Driver(FuzzInput& input)
        : input_(input),
          storage_{static_cast<int32_t>(input.below(40)), static_cast<int32_t>(1 + input.below(40))},
          specs_(readFields()),
          fields_(layoutOf({specs_.begin(), specs_.end() - 1})),
          table_(dbf_createtable(&storage_, specs_.data()), &dbf_droptable),
          model_(storage_) {
        require(table_ != nullptr, "table");
        // Only the model has an index by serial number, to act on the row at a location.
        model_.indexes.emplace_back(true, std::vector<int32_t>{0}, fields_);
        model_.indexes.back().handle = nullptr;
    }

    void run() {
        for (unsigned int step = 0; step < 3000 && !input_.empty(); ++step)
            act();
        check(openAll());
        for (std::size_t i = 1; i < model_.indexes.size(); ++i)
            for (const auto& stored : model_.rows) {
                const std::vector<Position> matches = model_.indexes[i].matches(stored.second);
                if (matches.empty() || matches.back() == stored.first)
                    check(openByKey(model_.indexes[i], stored.second));
            }
    }

private:
    struct Cursor {
        CursorPtr handle;
        std::vector<Position> rows;
        std::size_t position;
    };

    std::vector<dbf_fieldspec> readFields() {
        std::vector<dbf_fieldspec> specs = {{DBF_INT, 0}};
        for (unsigned int count = 1 + input_.below(4); count > 0; --count) {
            const auto type = static_cast<int32_t>(input_.below(9));
            const auto size = static_cast<int32_t>(1 + input_.below(9));
            specs.push_back({type, type == DBF_WSTRING ? 2 * size : size}); // whole wide characters
        }
        specs.push_back({DBF_END, 0});
        return specs;
    }

    /** Values that repeat often, and once in a while any bytes. */
    Row readRow(int32_t serial) {
        Row row(fields_.back().offset + fields_.back().size, '\0');
        std::memcpy(row.data(), &serial, sizeof serial);
        for (std::size_t i = 1; i < fields_.size(); ++i) {
            const FieldModel& field = fields_[i];
            const unsigned int value = input_.take<std::uint8_t>();
            std::string bytes;
            if (field.type == DBF_PSTRING || field.type == DBF_PWSTRING) {
                const void* const text = field.type == DBF_PSTRING ? static_cast<const void*>(texts[value % 6])
                                                                   : static_cast<const void*>(wideTexts[value % 6]);
                bytes.assign(reinterpret_cast<const char*>(&text), sizeof text);
            } else if (value < 0xE0) {
                bytes.assign(1, static_cast<char>(value % 16));
            } else {
                bytes = input_.bytes(field.size);
            }
            row.replace(field.offset, std::min(bytes.size(), field.size), bytes, 0, field.size);
        }
        return row;
    }

    IndexModel& bySerial() { return model_.indexes.front(); }
    bool hasIndex() const { return model_.indexes.size() > 1; }
    IndexModel& anyIndex() {
        return model_.indexes[1 + input_.below(static_cast<unsigned int>(model_.indexes.size() - 1))];
    }

    void addIndex() {
        if (model_.indexes.size() > 6)
            return;
        std::vector<int32_t> keyFields;
        const unsigned int chosen = input_.take<std::uint8_t>();
        for (std::size_t field = 1; field < fields_.size(); ++field)
            if ((chosen >> field & 1) != 0)
                keyFields.push_back(static_cast<int32_t>(field));
        if ((chosen & 0x20) != 0)
            std::reverse(keyFields.begin(), keyFields.end());
        // A unique index over rows whose keys repeat is the caller's mistake; the model would not know which one is found.
        const bool unique = (chosen & 1) != 0 && model_.rows.empty();
        const dbf_indexspec spec{1, unique ? 1 : 0};
        std::vector<int32_t> list = keyFields;
        list.push_back(-1);
        dbf_index* const handle = dbf_createindex(table_.get(), &spec, list.data());
        require((handle != nullptr) == !keyFields.empty(), "index");
        if (handle == nullptr)
            return;
        model_.indexes.emplace_back(unique, keyFields, fields_);
        model_.indexes.back().handle = handle;
        model_.indexes.back().rebuild(model_.rows);
    }

    void dropIndex() {
        const std::size_t which = 1 + input_.below(static_cast<unsigned int>(model_.indexes.size() - 1));
        require(dbf_dropindex(model_.indexes[which].handle) == DBF_OK, "drop of an index");
        model_.indexes.erase(model_.indexes.begin() + static_cast<std::ptrdiff_t>(which));
    }

    Cursor openAll() {
        Cursor cursor{{dbf_opencursor_all(table_.get()), &dbf_closecursor}, {}, 0};
        for (const auto& stored : model_.rows)
            cursor.rows.push_back(stored.first);
        return cursor;
    }

    Cursor openByKey(const IndexModel& index, const Row& row) {
        Cursor cursor{{dbf_opencursor(index.handle, row.data()), &dbf_closecursor}, index.matches(row), 0};
        std::reverse(cursor.rows.begin(), cursor.rows.end());
        return cursor;
    }

    void fetch(Cursor& cursor) {
        Row expected(bytesOfRow() + 8, 'z');
        Row row = expected;
        int result = DBF_NOTFOUND;
        if (cursor.position < cursor.rows.size()) {
            const auto stored = model_.rows.find(cursor.rows[cursor.position++]);
            if (stored != model_.rows.end()) {
                expected.replace(0, stored->second.size(), stored->second);
                result = DBF_OK;
            }
        }
        require(dbf_fetch(cursor.handle.get(), row.data()) == result && row == expected, "fetch");
        require(dbf_getcursorrowcount(cursor.handle.get()) == static_cast<int>(cursor.rows.size() - cursor.position),
                "row count of a cursor");
    }

    void check(Cursor cursor) {
        while (cursor.position < cursor.rows.size())
            fetch(cursor);
        fetch(cursor);
    }

    void useCursor() {
        const std::size_t which = input_.below(static_cast<unsigned int>(cursors_.size()));
        Cursor& cursor = cursors_[which];
        const auto current =
            cursor.position > 0 ? model_.rows.find(cursor.rows[cursor.position - 1]) : model_.rows.end();
        const bool exists = current != model_.rows.end();
        switch (input_.below(8)) {
        case 0:
            cursors_.erase(cursors_.begin() + static_cast<std::ptrdiff_t>(which));
            break;
        case 1: {
            const Row row = readRow(exists ? readAs<int32_t>(current->second.data()) : 0);
            require(dbf_updatecurrent(cursor.handle.get(), row.data()) ==
                        (exists ? model_.update(bySerial(), row) : DBF_NOTFOUND),
                    "update of the current row");
            break;
        }
        case 2:
            require(dbf_deletecurrent(cursor.handle.get()) ==
                        (exists ? model_.remove(bySerial(), Row(current->second)) : DBF_NOTFOUND),
                    "delete of the current row");
            break;
        default:
            fetch(cursor);
        }
    }

    void act() {
        switch (input_.below(16)) {
        case 0:
            return addIndex();
        case 1:
            if (hasIndex())
                dropIndex();
            return;
        case 2:
            require(dbf_cleartable(table_.get()) == DBF_OK, "clear");
            return model_.clear();
        case 3:
            if (cursors_.size() < 4)
                cursors_.push_back(openAll());
            return;
        case 4:
            if (cursors_.size() < 4 && hasIndex()) {
                const IndexModel& by = anyIndex();
                cursors_.push_back(openByKey(by, readRow(0)));
            }
            return;
        case 5:
        case 6:
        case 7:
            if (!cursors_.empty())
                useCursor();
            return;
        case 8:
        case 9:
            return changeByKey();
        default: {
            const Row row = readRow(++serial_);
            require(dbf_insert(table_.get(), row.data()) == model_.insert(row), "insert");
        }
        }
    }

    void changeByKey() {
        if (!hasIndex())
            return;
        const IndexModel& by = anyIndex();
        Row row = readRow(0);
        Row expected = row;
        switch (input_.below(3)) {
        case 0: {
            const int result = model_.select(by, expected);
            require(dbf_select(by.handle, row.data()) == result && row == expected, "select");
            break;
        }
        case 1: {
            Row known = row;
            const int32_t serial = model_.select(by, known) == DBF_OK ? readAs<int32_t>(known.data()) : 0;
            std::memcpy(row.data(), &serial, sizeof serial);
            require(dbf_update(by.handle, row.data()) == model_.update(by, row), "update");
            break;
        }
        default:
            require(dbf_delete(by.handle, row.data()) == model_.remove(by, row), "delete");
        }
    }

    std::size_t bytesOfRow() const { return fields_.back().offset + fields_.back().size; }

    FuzzInput& input_;
    dbf_tablespec storage_;
    std::vector<dbf_fieldspec> specs_;
    std::vector<FieldModel> fields_;
    TablePtr table_;
    TableModel model_;
    std::vector<Cursor> cursors_; // closed before the table is dropped
    int32_t serial_ = 0;
};

/** Specifications of any numbers are accepted whole or refused, and what is accepted can be used. */
void createFromAnything(FuzzInput& input) {
    const dbf_tablespec storage{input.take<std::int16_t>(), input.take<std::int32_t>()};
    std::vector<dbf_fieldspec> specs;
    for (unsigned int count = input.below(5); count > 0; --count)
        specs.push_back({input.take<std::int8_t>(), input.take<std::int16_t>()});
    specs.push_back({static_cast<std::int32_t>(input.below(4) == 0 ? 101 : DBF_END), 0});
    specs.push_back({DBF_END, 0});
    const std::int64_t rows = storage.rowsperbucket;
    if (rows * 4 * 32768 * 2 > (1 << 30) && rows <= 65535)
        return; // a bucket that is really too large for a quick run
    const TablePtr table(dbf_createtable(&storage, specs.data()), &dbf_droptable);
    if (table == nullptr)
        return;
    const std::vector<FieldModel> fields = layoutOf({specs.begin(), specs.end() - 2});
    const Row row(fields.back().offset + fields.back().size, '\0');
    require(dbf_insert(table.get(), row.data()) == DBF_OK, "insert in a new table");
    const dbf_indexspec index{input.take<std::int8_t>(), 1};
    std::vector<std::int32_t> keys;
    for (unsigned int count = input.below(6); count > 0; --count)
        keys.push_back(input.take<std::int8_t>());
    keys.push_back(-1);
    dbf_createindex(table.get(), &index, keys.data());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzInput input(data, size);
    if (input.below(16) == 0)
        createFromAnything(input);
    else
        Driver(input).run();
    return 0;
}
