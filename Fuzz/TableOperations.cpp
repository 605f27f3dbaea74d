/**
 * @file TableOperations.cpp
 * A table, its indexes and its cursors, driven by a sequence of calls that stands in the input, against a plain model.
 */
#include "FuzzInput.h"
#include "Models/TableComparison.h"

namespace {

using TablePtr = std::unique_ptr<dbf_table, decltype(&dbf_droptable)>;
using CursorPtr = std::unique_ptr<dbf_cursor, decltype(&dbf_closecursor)>;

/** Decisions from the bytes of an input. */
struct InputChoices {
    FuzzInput& input;
    unsigned int below(std::size_t limit) {
        const unsigned int number = limit <= 256 ? input.take<std::uint8_t>() : input.take<std::uint16_t>();
        return number % static_cast<unsigned int>(limit);
    }
};

TableShape readShape(FuzzInput& input) {
    TableShape shape = {"", {}, {}, {}};
    for (unsigned int count = 1 + input.below(5); count > 0; --count) {
        const auto type = static_cast<int32_t>(input.below(9));
        const auto size = static_cast<int32_t>(1 + input.below(9));
        shape.fields.push_back({type, type == DBF_WSTRING ? 2 * size : size}); // whole wide characters
        shape.values.push_back(1 + input.take<std::uint8_t>());
    }
    for (unsigned int count = 1 + input.below(6); count > 0; --count) {
        const unsigned int chosen = input.take<std::uint8_t>();
        std::vector<int32_t> keyFields;
        for (std::size_t field = 0; field < shape.fields.size(); ++field) {
            if ((chosen >> field & 1) != 0) {
                keyFields.push_back(static_cast<int32_t>(field));
            }
        }
        if ((chosen & 0x20) != 0) {
            std::reverse(keyFields.begin(), keyFields.end());
        }
        if (!keyFields.empty()) {
            shape.indexes.emplace_back((chosen & 0x40) != 0, keyFields);
        }
    }
    if (shape.indexes.empty()) {
        shape.indexes.emplace_back(true, std::vector<int32_t>{0});
    }
    return shape;
}

void compare(FuzzInput& input) {
    const TableShape shape = readShape(input);
    const dbf_tablespec storage{static_cast<int32_t>(input.below(40)), static_cast<int32_t>(1 + input.below(40))};
    InputChoices choices{input};
    TableComparison<InputChoices> comparison(shape, storage, choices);
    for (unsigned int step = 0; step < 3000 && !input.empty(); ++step) {
        const unsigned int phase = input.below(256);
        if (phase == 255) {
            comparison.clear();
        } else {
            comparison.step(phase % 2 == 0 ? 24 : 2);
        }
    }
    comparison.compareAll();
}

/** Specifications of any numbers are accepted whole or refused, and what is accepted can be used. */
void createFromAnything(FuzzInput& input) {
    const dbf_tablespec storage{input.take<std::int16_t>(), input.take<std::int32_t>()};
    std::vector<dbf_fieldspec> specs;
    for (unsigned int count = input.below(5); count > 0; --count) {
        specs.push_back({input.take<std::int8_t>(), input.take<std::int16_t>()});
    }
    specs.push_back({static_cast<std::int32_t>(input.below(4) == 0 ? 101 : DBF_END), 0});
    specs.push_back({DBF_END, 0});
    const std::int64_t rows = storage.rowsperbucket;
    if (rows * 4 * 32768 * 2 > (1 << 30) && rows <= 65535) {
        return; // a bucket that is really too large for a quick run
    }
    const TablePtr table(dbf_createtable(&storage, specs.data()), &dbf_droptable);
    if (table == nullptr) {
        return;
    }
    const std::vector<FieldModel> fields = layoutOf({specs.begin(), specs.end() - 2});
    const Row row(fields.back().offset + fields.back().size, '\0');
    require(dbf_insert(table.get(), row.data()) == DBF_OK, "insert in a new table");
    const dbf_indexspec index{input.take<std::int8_t>(), 1};
    std::vector<std::int32_t> keys;
    for (unsigned int count = input.below(6); count > 0; --count) {
        keys.push_back(input.take<std::int8_t>());
    }
    keys.push_back(-1);
    dbf_createindex(table.get(), &index, keys.data());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzInput input(data, size);
    if (input.below(16) == 0) {
        createFromAnything(input);
    } else {
        compare(input);
    }
    return 0;
}
