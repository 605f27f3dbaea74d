/**
 * @file TableComparison.h
 * A table, its indexes and its cursors beside a plain model, through any sequence of calls: random ones in the tests, and
 * those that a fuzzer makes of its bytes.
 */
#pragma once

#include "Models/TableModel.h"
#include "Support/ExactArray.h"

#include <array>
#include <limits>

struct TableShape {
    const char* name;
    FieldSpecs fields;
    std::vector<unsigned int> values; // per field: how many different ones occur
    std::vector<std::pair<bool, std::vector<int32_t>>> indexes;
};

/** Text that differs for each number; every third one fills its capacity, without a terminator. */
template <typename Char>
std::vector<Char> textOf(unsigned int number, std::size_t capacity, unsigned int behindTerminator) {
    const auto unit = [](unsigned int digit) {
        return static_cast<Char>((sizeof(Char) == 1 ? 0xC0 : 0x1F600) + digit);
    };
    std::vector<Char> text;
    for (unsigned int rest = number; rest != 0 && text.size() < capacity; rest /= 25) {
        text.push_back(unit(rest % 25));
    }
    const bool terminated = number % 3 != 0 && text.size() < capacity;
    if (terminated) {
        text.push_back(0);
    }
    text.resize(capacity, unit(terminated ? behindTerminator : 25));
    return text;
}

/** Terminated text; there are two copies of each at different addresses. */
template <typename Char>
const Char* pooledText(unsigned int number, bool second) {
    static std::map<std::pair<unsigned int, bool>, std::vector<Char>> pool;
    auto& text = pool[{number, second}];
    if (text.empty()) {
        text = textOf<Char>(number, number % 9, 0);
        text.push_back(0);
    }
    return text.data();
}

inline double numberOf(unsigned int number) {
    const std::array<double, 3> special = {0.0, -0.0, std::numeric_limits<double>::quiet_NaN()};
    return number < special.size() ? special[number] : number * 0.25;
}

/** Drives a table and its model with the same calls; `unsigned int below(std::size_t)` of Choices decides which. */
template <typename Choices>
class TableComparison {
public:
    TableComparison(const TableShape& shape, const dbf_tablespec& storage, Choices& choices)
        : shape_(shape),
          fields_(layoutOf(shape.fields)),
          choices_(choices),
          table_(createTable(storage, shape.fields)),
          model_(storage) {
        for (const auto& [unique, keyFields] : shape.indexes) {
            addIndex(IndexModel(unique, keyFields, fields_));
        }
    }

    /** One call; inserts have a weight of @p inserts against 6 for other calls to a row. */
    void step(unsigned int inserts) {
        if (below(400) == 0) {
            exchangeIndex();
        } else if (below(3) == 0) {
            useCursor();
        } else {
            touchRow(inserts);
        }
    }

    void clear() {
        require(dbf_cleartable(table_.get()) == DBF_OK, "clear");
        model_.clear();
    }

    /** Every row is found in every way, and no other. */
    void compareAll() const {
        Cursor all = openAll();
        for (std::size_t rows = 0; rows <= model_.rows.size(); ++rows) {
            fetch(all);
        }
        for (const IndexModel& index : model_.indexes) {
            for (const auto& [position, row] : model_.rows) {
                const auto same = index.matches(row);
                if (same.empty() || same.back() == position) {
                    compareMatches(index, row);
                }
                Row found = row;
                Row expected = row;
                require(dbf_select(index.handle, found.data()) == model_.select(index, expected), "select");
                require(found == expected, "selected row");
            }
        }
    }

private:
    struct Cursor {
        std::unique_ptr<dbf_cursor, decltype(&dbf_closecursor)> handle;
        std::vector<Position> rows;
        std::size_t position;
    };

    unsigned int below(std::size_t limit) const { return choices_.below(limit); }
    IndexModel& anyIndex() { return model_.indexes[below(model_.indexes.size())]; }

    void addIndex(IndexModel index) {
        index.rebuild(model_.rows);
        index.handle = createIndex(table_, index.unique, index.keyFields);
        require(index.handle != nullptr, "index");
        model_.indexes.push_back(std::move(index));
    }

    /** Drops an index for a while; what was dropped last comes back. */
    void exchangeIndex() {
        if (!dropped_.empty()) {
            addIndex(std::move(dropped_.back()));
            return dropped_.pop_back();
        }
        if (model_.indexes.size() == 1) {
            return;
        }
        const auto index = model_.indexes.begin() + static_cast<std::ptrdiff_t>(below(model_.indexes.size()));
        require(dbf_dropindex(index->handle) == DBF_OK, "drop of an index");
        dropped_.push_back(std::move(*index));
        model_.indexes.erase(index);
    }

    void touchRow(unsigned int inserts) {
        const IndexModel& by = anyIndex();
        const unsigned int action = below(inserts + 6);
        Row row = randomRow(by, action < 6 ? 3 : 1);
        Row expected = row;
        if (action < 1) {
            require(dbf_select(by.handle, row.data()) == model_.select(by, expected), "select");
            require(row == expected, "selected row");
        } else if (action < 3) {
            require(dbf_update(by.handle, row.data()) == model_.update(by, row), "update");
        } else if (action < 6) {
            require(dbf_delete(by.handle, row.data()) == model_.remove(by, row), "delete");
        } else {
            require(dbf_insert(table_.get(), row.data()) == model_.insert(row), "insert");
        }
        compareMatches(by, row);
    }

    /** As many quarters of them have the key of a row that is stored. */
    Row randomRow(const IndexModel& by, unsigned int quarters) {
        Row row(fields_.back().offset + fields_.back().size, static_cast<char>(below(256))); // the padding counts too
        for (std::size_t i = 0; i < fields_.size(); ++i) {
            writeValue(fields_[i], below(shape_.values[i]), row.data() + fields_[i].offset);
        }
        const auto stored = model_.rows.lower_bound(below(model_.capacity() + 1));
        if (stored != model_.rows.end() && below(4) < quarters) {
            by.copyKey(stored->second, row);
        }
        row.shrink_to_fit();
        return row;
    }

    void writeValue(const FieldModel& field, unsigned int number, char* at) {
        const bool second = below(2) == 0;
        const auto put = [&](const auto& value) { std::memcpy(at, &value, field.size); };
        switch (field.type) {
        case DBF_FLOAT:
            return put(static_cast<float>(numberOf(number)));
        case DBF_DOUBLE:
            return put(numberOf(number));
        case DBF_STRING:
            std::memcpy(at, textOf<char>(number, field.size, below(25)).data(), field.size);
            return;
        case DBF_WSTRING:
            std::memcpy(at, textOf<wchar_t>(number, field.size / sizeof(wchar_t), below(25)).data(), field.size);
            return;
        case DBF_POINTER:
        case DBF_PSTRING:
            return put(pooledText<char>(number, second));
        case DBF_PWSTRING:
            return put(pooledText<wchar_t>(number, second));
        default:
            return put(std::array<unsigned int, 6>{number, 0, number ^ 7U, number * 31U, 0, 1});
        }
    }

    Cursor openAll() const {
        Cursor cursor{{dbf_opencursor_all(table_.get()), &dbf_closecursor}, {}, 0};
        for (const auto& stored : model_.rows) {
            cursor.rows.push_back(stored.first);
        }
        return cursor;
    }

    Cursor openByKey(const IndexModel& by, const Row& row) const {
        Cursor cursor{{dbf_opencursor(by.handle, row.data()), &dbf_closecursor}, by.matches(row), 0};
        std::reverse(cursor.rows.begin(), cursor.rows.end());
        return cursor;
    }

    void useCursor() {
        if (cursors_.size() < 6) {
            const IndexModel& by = anyIndex();
            cursors_.push_back(below(3) == 0 ? openAll() : openByKey(by, randomRow(by, 3)));
        }
        const std::size_t which = below(cursors_.size());
        Cursor& cursor = cursors_[which];
        const auto current =
            cursor.position > 0 ? model_.rows.find(cursor.rows[cursor.position - 1]) : model_.rows.end();
        const bool exists = current != model_.rows.end();
        const unsigned int action = below(20);
        if (action == 0) {
            cursors_.erase(cursors_.begin() + static_cast<std::ptrdiff_t>(which));
        } else if (action < 5) {
            Row row = randomRow(anyIndex(), 2);
            if (exists && below(2) == 0) {
                anyIndex().copyKey(current->second, row);
            }
            require(dbf_updatecurrent(cursor.handle.get(), row.data()) ==
                        (exists ? model_.updateAt(current->first, row) : DBF_NOTFOUND),
                    "update of the current row");
        } else if (action < 7) {
            require(dbf_deletecurrent(cursor.handle.get()) == (exists ? model_.removeAt(current->first) : DBF_NOTFOUND),
                    "delete of the current row");
        } else {
            fetch(cursor);
        }
    }

    void fetch(Cursor& cursor) const {
        Row row(fields_.back().offset + fields_.back().size + 8, 'z');
        Row expected = row;
        int result = DBF_NOTFOUND;
        require(dbf_getcursorrowcount(cursor.handle.get()) == static_cast<int>(cursor.rows.size() - cursor.position),
                "row count of a cursor");
        if (cursor.position < cursor.rows.size()) {
            const auto stored = model_.rows.find(cursor.rows[cursor.position++]);
            if (stored != model_.rows.end()) {
                expected.replace(0, stored->second.size(), stored->second);
                result = DBF_OK;
            }
        }
        require(dbf_fetch(cursor.handle.get(), row.data()) == result && row == expected, "fetch");
    }

    void compareMatches(const IndexModel& index, const Row& key) const {
        const auto expected = index.matches(key);
        std::vector<Position> found;
        for (const dbf_rowid* id = dbf_findhashmatch(index.handle, key.data());
             id != nullptr && found.size() <= expected.size();
             id = dbf_findhashmatch_next(index.handle, key.data(), id)) {
            found.push_back(model_.positionOf(*id));
        }
        std::reverse(found.begin(), found.end());
        require(found == expected, "rows of a key");
    }

    const TableShape& shape_;
    const std::vector<FieldModel> fields_;
    Choices& choices_;
    TablePtr table_;
    TableModel model_;
    std::vector<IndexModel> dropped_;
    std::vector<Cursor> cursors_; // closed before the table is dropped
};
