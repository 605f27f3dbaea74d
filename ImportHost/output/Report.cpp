#include "output/Report.h"

#include <PluginKit/Text.h>

#include <algorithm>
#include <cmath>

namespace {

std::string jsonString(std::string_view text) {
    std::string result = "\"";
    for (const char c : validUtf8(text)) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '"' || c == '\\') {
            result += std::string("\\") + c;
        } else if (byte < 0x20 || byte == 0x7F) {
            result += "\\u00" + toHex(&c, 1);
        } else {
            result += c;
        }
    }
    return result + '"';
}

std::string jsonNumber(double value) {
    return std::isfinite(value) ? numberText(value) : "null";
}

std::string jsonValue(const std::optional<std::string>& value) {
    if (!value) {
        return "null";
    }
    if (value->compare(0, 1, "'") == 0) {
        return jsonString(value->substr(1));
    }
    return *value == "unknown" ? jsonString(*value) : *value;
}

std::string jsonProperties(const std::vector<PropertyDifference>& differences) {
    std::string text;
    for (const PropertyDifference& difference : differences) {
        text += (text.empty() ? "{\"set\": " : ", {\"set\": ") + jsonString(difference.set) +
                ", \"name\": " + jsonString(difference.name) + ", \"old\": " + jsonValue(difference.before) +
                ", \"new\": " + jsonValue(difference.now) + '}';
    }
    return '[' + text + ']';
}

std::string jsonObject(const Change& change) {
    const ObjectRecord& record = change.record();
    std::string text =
        "{\"identity\": " + jsonString(identityText(record.identity)) + ", \"class\": " + jsonString(record.className) +
        ", \"name\": " + jsonString(record.name) + ", \"status\": " + jsonString(statusName(change.status)) +
        ", \"similarity\": " + jsonNumber(similarityOf(change)) + ", \"distance\": " + jsonNumber(distanceOf(change));
    if (change.status == Status::Reidentified) {
        text += ", \"previousIdentity\": " + jsonString(identityText(change.before->identity));
    }
    if (change.status == Status::Reclassed) {
        text += ", \"previousClass\": " + jsonString(change.before->className);
    }
    if (!change.properties.empty()) {
        text += ", \"properties\": " + jsonProperties(change.properties);
    }
    return text + '}';
}

} // namespace

std::string reportText(const std::string& model, const std::vector<Change>& changes) {
    std::string text = "{\n\"model\": " + jsonString(model) + ",\n\"counts\": {";
    for (const Status status : allStatuses) {
        const auto count = std::count_if(changes.begin(), changes.end(),
                                         [&](const Change& change) { return change.status == status; });
        text += (status == allStatuses[0] ? "" : ", ") + jsonString(statusName(status)) + ": " + std::to_string(count);
    }
    text += "},\n\"objects\": [";
    for (const Change& change : changes) {
        text += (&change == &changes.front() ? "\n" : ",\n") + jsonObject(change);
    }
    return text + "\n]\n}\n";
}
