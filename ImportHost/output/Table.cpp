#include "output/Table.h"

#include "output/ChangeText.h"
#include "output/TextWidth.h"

#include <PluginKit/Text.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

namespace {

using Row = std::array<std::string, 7>;

std::string movedBy(const Change& change) {
    if (std::isnan(change.distance)) {
        return "-";
    }
    const double angle = change.move ? change.move->angle : 0.0;
    return fixedText(change.distance, 3) + " m" + (angle == 0.0 ? "" : ", " + fixedText(angle, 2) + " degrees");
}

std::string fixed(double value, int digits) {
    return std::isnan(value) ? "-" : fixedText(value, digits);
}

std::string alignedText(const std::vector<Row>& rows) {
    std::array<std::size_t, std::tuple_size<Row>::value> widths{};
    for (const Row& row : rows) {
        for (std::size_t i = 0; i < row.size(); ++i) {
            widths[i] = std::max(widths[i], columnsOf(row[i]));
        }
    }
    std::string text;
    for (const Row& row : rows) {
        std::string line;
        for (std::size_t i = 0; i < row.size(); ++i) {
            line += row[i] + std::string(widths[i] - columnsOf(row[i]) + 2, ' ');
        }
        text += line.substr(0, line.find_last_not_of(' ') + 1) + '\n';
    }
    return text;
}

std::string doubtfulText(std::size_t count) {
    if (count == 0) {
        return "";
    }
    const bool isOne = count == 1;
    return std::to_string(count) + (isOne ? " object is" : " objects are") +
           " doubtful: " + (isOne ? "its shape" : "their shapes") + " could not be built in full, or " +
           (isOne ? "is" : "are") + " open\n";
}

} // namespace

std::string tableText(const Outcome& outcome) {
    const Comparison& comparison = outcome.comparison;
    std::string text;
    std::vector<Row> rows = {{"class", "name", "id", "what happened", "similarity", "moved by", "properties"}};
    for (const Status status : allStatuses) {
        for (const Change& change : comparison.changes) {
            const ObjectRecord& record = change.record();
            if (change.status() == status && status != Status::Unchanged) {
                rows.push_back({printable(record.className), printable(record.name), printable(identityText(record)),
                                changeText(change), fixed(change.similarity, 3), movedBy(change),
                                shortText(change.properties)});
            }
        }
        char line[64];
        std::snprintf(line, sizeof line, "%-13s %6zu\n", statusName(status), comparison.count(status));
        text += line;
    }
    text += doubtfulText(outcome.doubtful.value_or(0));
    if (!outcome.previous) {
        return text + "first import: there is nothing to compare with\n";
    }
    if (comparison.displacement) {
        text += '\n' + displacementText(comparison) + '\n';
    }
    return rows.size() == 1 ? text : text + '\n' + alignedText(rows);
}
