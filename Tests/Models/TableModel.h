/**
 * @file TableModel.h
 * A plain model of one table and its indexes: what a caller of the table store must see, without buckets or hashing.
 */
#pragma once

#include <DbFast/dbfast.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

using TablePtr = std::unique_ptr<dbf_table, decltype(&dbf_droptable)>;
using FieldSpecs = std::vector<dbf_fieldspec>;

inline TablePtr createTable(const dbf_tablespec& spec, FieldSpecs fields, int32_t terminator = DBF_END) {
    fields.push_back({terminator, 0});
    fields.push_back({DBF_END, 0}); // a scan that passes a wrong terminator stays inside the array
    return {dbf_createtable(&spec, fields.data()), &dbf_droptable};
}

inline dbf_index* createIndex(const TablePtr& table, bool unique, std::vector<int32_t> fields, int32_t kind = 1) {
    const dbf_indexspec spec{kind, unique ? 1 : 0};
    fields.push_back(-1);
    return dbf_createindex(table.get(), &spec, fields.data());
}

struct FieldModel {
    int32_t type;
    std::size_t size;
    std::size_t offset;
};

/** Fields one after the other, each at the natural alignment of its type. */
inline std::vector<FieldModel> layoutOf(const FieldSpecs& specs) {
    std::vector<FieldModel> fields;
    std::size_t end = 0;
    for (const dbf_fieldspec& spec : specs) {
        const bool word = spec.type == DBF_INT || spec.type == DBF_FLOAT;
        const bool bytes = spec.type == DBF_STRING || spec.type == DBF_BYTES;
        const std::size_t given = static_cast<std::size_t>(spec.size) * (bytes ? 1 : 2);
        const std::size_t size = bytes || spec.type == DBF_WSTRING ? given : word ? 4 : 8;
        const std::size_t alignment = bytes ? 1 : spec.type == DBF_WSTRING ? 2 : size;
        const std::size_t offset = (end + alignment - 1) / alignment * alignment;
        fields.push_back({spec.type, size, offset});
        end = offset + size;
    }
    return fields;
}

using Position = uint32_t; // bucket number times rows per bucket plus slot
using Row = std::string;

template <typename T>
T readAs(const char* at) {
    T value;
    std::memcpy(&value, at, sizeof value);
    return value;
}

class IndexModel {
public:
    IndexModel(bool isUnique, const std::vector<int32_t>& numbers, const std::vector<FieldModel>& layout)
        : unique(isUnique), keyFields(numbers) {
        for (const int32_t number : numbers) {
            fields_.push_back(layout[static_cast<std::size_t>(number)]);
        }
    }

    bool unique;
    std::vector<int32_t> keyFields;
    dbf_index* handle = nullptr; // of the real index that this one models

    /** The rows that a search for this key must give, oldest first. */
    std::vector<Position> matches(const Row& row) const {
        const auto key = keyOf(row, true);
        const auto chain = key ? chains_.find(*key) : chains_.end();
        return chain == chains_.end() ? std::vector<Position>{} : chain->second;
    }

    bool sameKey(const Row& a, const Row& b) const {
        const auto key = keyOf(a, false);
        return key && key == keyOf(b, false);
    }

    void copyKey(const Row& from, Row& to) const {
        for (const FieldModel& field : fields_) {
            to.replace(field.offset, field.size, from, field.offset, field.size);
        }
    }

    void enter(Position position, const Row& row) {
        if (const auto key = keyOf(row, true)) {
            chains_[*key].push_back(position);
            entered_[position] = *key;
        }
    }

    void leave(Position position) {
        const auto key = entered_.find(position);
        if (key == entered_.end()) {
            return;
        }
        auto& chain = chains_[key->second];
        chain.erase(std::find(chain.begin(), chain.end(), position));
        entered_.erase(key);
    }

    void rebuild(const std::map<Position, Row>& rows) {
        chains_.clear();
        entered_.clear();
        for (const auto& [position, row] : rows) {
            enter(position, row);
        }
    }

private:
    template <typename Char>
    static void appendText(std::string& key, const char* at, std::size_t capacity) {
        Char unit = 1;
        for (std::size_t i = 0; i < capacity && unit != 0; ++i) {
            unit = readAs<Char>(at + i * sizeof(Char));
            if (unit != 0) {
                key.append(at + i * sizeof(Char), sizeof(Char));
            }
        }
        key.append(sizeof(Char), '\0');
    }

    static bool appendNumber(std::string& key, double value, bool keepSignOfZero) {
        if (value == 0 && !keepSignOfZero) {
            value = 0;
        }
        key.append(reinterpret_cast<const char*>(&value), sizeof value);
        return !std::isnan(value);
    }

    /**
     * The key as bytes; none when it holds a NaN, which equals nothing. +0 and -0 are equal, but their hashes differ
     * in the top bit, which is shifted out unless the field is the key's last: `hashed` tells them apart there.
     */
    std::optional<std::string> keyOf(const Row& row, bool hashed) const {
        std::string key;
        bool comparable = true;
        for (const FieldModel& field : fields_) {
            const char* const at = row.data() + field.offset;
            const bool keepSign = hashed && &field == &fields_.back();
            switch (field.type) {
            case DBF_FLOAT:
                comparable &= appendNumber(key, static_cast<double>(readAs<float>(at)), keepSign);
                break;
            case DBF_DOUBLE:
                comparable &= appendNumber(key, readAs<double>(at), keepSign);
                break;
            case DBF_STRING:
                appendText<char>(key, at, field.size);
                break;
            case DBF_WSTRING:
                appendText<wchar_t>(key, at, field.size / sizeof(wchar_t));
                break;
            case DBF_PSTRING:
                appendText<char>(key, readAs<const char*>(at), SIZE_MAX);
                break;
            case DBF_PWSTRING:
                appendText<wchar_t>(key, readAs<const char*>(at), SIZE_MAX);
                break;
            default:
                key.append(at, field.size);
            }
        }
        return comparable ? std::optional<std::string>(key) : std::nullopt;
    }

    std::vector<FieldModel> fields_;
    std::unordered_map<std::string, std::vector<Position>> chains_;
    std::unordered_map<Position, std::string> entered_; // a row stays where its key of that time put it
};

class TableModel {
public:
    explicit TableModel(const dbf_tablespec& spec)
        : initialRows_(spec.initialrows), rowsPerBucket_(static_cast<Position>(spec.rowsperbucket)) {
        do {
            grow();
        } while (buckets_ * rowsPerBucket_ < static_cast<Position>(initialRows_));
    }

    std::map<Position, Row> rows;
    std::vector<IndexModel> indexes;

    Position capacity() const { return buckets_ * rowsPerBucket_; }
    Position positionOf(const dbf_rowid& id) const { return id.bucket * rowsPerBucket_ + id.slot; }

    int insert(const Row& row) {
        for (const IndexModel& index : indexes) {
            if (index.unique && !index.matches(row).empty()) {
                return DBF_DUPLICATE;
            }
        }
        if (free_.empty()) {
            grow();
        }
        const Position position = free_.extract(free_.begin()).value();
        rows[position] = row;
        for (IndexModel& index : indexes) {
            index.enter(position, row);
        }
        return DBF_OK;
    }

    int select(const IndexModel& by, Row& row) const {
        Position at = 0;
        const int result = find(by, row, at);
        if (result == DBF_OK) {
            row = rows.at(at);
        }
        return result;
    }

    int update(const IndexModel& by, const Row& row) {
        Position at = 0;
        const int result = find(by, row, at);
        return result == DBF_OK ? updateAt(at, row, &by) : result;
    }

    /** An index that the row was found by stays as it is. */
    int updateAt(Position at, const Row& row, const IndexModel* by = nullptr) {
        Row& stored = rows[at];
        std::vector<IndexModel*> changed;
        for (IndexModel& index : indexes) {
            if (&index == by || index.sameKey(stored, row)) {
                continue;
            }
            if (index.unique && !index.matches(row).empty()) {
                return DBF_DUPLICATE;
            }
            changed.push_back(&index);
        }
        stored = row;
        for (IndexModel* const index : changed) {
            index->leave(at);
            index->enter(at, row);
        }
        return DBF_OK;
    }

    int remove(const IndexModel& by, const Row& row) {
        Position at = 0;
        const int result = find(by, row, at);
        return result == DBF_OK ? removeAt(at) : result;
    }

    int removeAt(Position at) {
        for (IndexModel& index : indexes) {
            index.leave(at);
        }
        rows.erase(at);
        free_.insert(at);
        return DBF_OK;
    }

    void clear() {
        rows.clear();
        free_.clear();
        buckets_ = static_cast<Position>((initialRows_ - 1) / static_cast<int>(rowsPerBucket_) + 1);
        for (Position position = 0; position < capacity(); ++position) {
            free_.insert(free_.end(), position);
        }
        hashSize_ = 0;
        resize();
    }

private:
    static int find(const IndexModel& by, const Row& row, Position& newest) {
        const auto found = by.matches(row);
        if (!by.unique || found.empty()) {
            return by.unique ? DBF_NOTFOUND : DBF_NOTUNIQUE;
        }
        newest = found.back();
        return DBF_OK;
    }

    void grow() {
        for (Position slot = 0; slot < rowsPerBucket_; ++slot) {
            free_.insert(free_.end(), capacity() + slot);
        }
        ++buckets_;
        if (hashSize_ < capacity()) {
            resize();
        }
    }

    /** Re-enters the rows in storage order, which turns duplicates round. */
    void resize() {
        for (hashSize_ = 16; hashSize_ < 2 * capacity();) {
            hashSize_ *= 2;
        }
        for (IndexModel& index : indexes) {
            index.rebuild(rows);
        }
    }

    int initialRows_;
    Position rowsPerBucket_;
    Position buckets_ = 0;
    Position hashSize_ = 0;
    std::set<Position> free_;
};
