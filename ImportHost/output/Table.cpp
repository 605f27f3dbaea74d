#include "output/Table.h"

#include <PluginKit/Text.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

namespace {

using Row = std::array<std::string, 7>;

/** Characters that UTF-8 text takes on the screen. */
std::size_t width(const std::string& text) {
    return static_cast<std::size_t>(
        std::count_if(text.begin(), text.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }));
}

std::string fixed(double value, int digits, const char* unit) {
    if (std::isnan(value)) {
        return "-";
    }
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, "%.*f%s", digits, value, unit);
    return buffer;
}

std::string whatHappened(const Change& change) {
    std::string text = change.changes.empty() ? statusName(Status::Unchanged) : "";
    for (const Status status : change.changes) {
        text += (text.empty() ? "" : ", ") + std::string(statusName(status));
        if (status == Status::Reclassed) {
            text += " (was " + printable(change.before->className) + ')';
        } else if (status == Status::Reidentified) {
            text += " (was " + printable(identityText(*change.before)) + ')';
        }
    }
    if (change.perhaps) {
        text += std::string(change.now != nullptr ? ", perhaps was " : ", perhaps is ") +
                printable(identityText(*change.perhaps->object));
    }
    for (const std::string& note : change.notes) {
        text += ", " + printable(note);
    }
    return text;
}

std::string alignedText(const std::vector<Row>& rows) {
    std::array<std::size_t, std::tuple_size<Row>::value> widths{};
    for (const Row& row : rows) {
        for (std::size_t i = 0; i < row.size(); ++i) {
            widths[i] = std::max(widths[i], width(row[i]));
        }
    }
    std::string text;
    for (const Row& row : rows) {
        std::string line;
        for (std::size_t i = 0; i < row.size(); ++i) {
            line += row[i] + std::string(widths[i] - width(row[i]) + 2, ' ');
        }
        text += line.substr(0, line.find_last_not_of(' ') + 1) + '\n';
    }
    return text;
}

} // namespace

std::string tableText(const Comparison& comparison, bool firstImport) {
    std::string text;
    std::vector<Row> rows = {{"class", "name", "id", "what happened", "similarity", "moved by", "properties"}};
    for (const Status status : allStatuses) {
        for (const Change& change : comparison.changes) {
            const ObjectRecord& record = change.record();
            if (change.status() == status && status != Status::Unchanged) {
                rows.push_back({printable(record.className), printable(record.name), printable(identityText(record)),
                                whatHappened(change), fixed(change.similarity, 3, ""), fixed(change.distance, 3, " m"),
                                shortText(change.properties)});
            }
        }
        char line[64];
        std::snprintf(line, sizeof line, "%-13s %6zu\n", statusName(status), comparison.count(status));
        text += line;
    }
    if (firstImport) {
        return text + "first import: there is nothing to compare with\n";
    }
    return rows.size() == 1 ? text : text + '\n' + alignedText(rows);
}
