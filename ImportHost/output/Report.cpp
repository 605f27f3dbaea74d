#include "output/Report.h"

#include "output/JsonText.h"

#include <PluginKit/Text.h>

#include <cmath>

namespace {

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

std::string jsonText(const std::optional<std::string>& text) {
    return text ? jsonString(*text) : "null";
}

/** Without the digits that only tell how it was calculated. */
std::string jsonLength(double metres) {
    return jsonNumber(std::round(metres * 1e6) / 1e6 + 0.0);
}

/** A vector of lengths. */
std::string jsonVector(const Vector3& vector) {
    return '[' + jsonLength(vector[0]) + ", " + jsonLength(vector[1]) + ", " + jsonLength(vector[2]) + ']';
}

std::string jsonBox(const Box& box) {
    return '[' + jsonVector(box.low) + ", " + jsonVector(box.high) + ']';
}

std::string jsonVolume(const ObjectRecord& record) {
    const std::optional<double> volume = volumeOf(record);
    return volume ? jsonNumber(std::round(*volume * 1e9) / 1e9) : "null";
}

/** Members of an object, one after another. */
class Members {
public:
    void add(const char* name, const std::string& value) {
        text_ += (text_.empty() ? "" : ", ") + jsonString(name) + ": " + value;
    }

    bool isEmpty() const { return text_.empty(); }

    std::string object() const { return '{' + text_ + '}'; }

private:
    std::string text_;
};

std::string jsonChanges(const Change& change) {
    std::string text;
    for (const Status status : change.changes) {
        text += (text.empty() ? "" : ", ") + jsonString(statusName(status));
    }
    return '[' + text + ']';
}

std::string jsonMove(const Motion& motion) {
    Members members;
    members.add("dx", jsonLength(motion.shift[0]));
    members.add("dy", jsonLength(motion.shift[1]));
    members.add("dz", jsonLength(motion.shift[2]));
    members.add("angle", jsonNumber(motion.angle));
    if (motion.angle != 0.0) {
        members.add("axis", jsonVector(motion.axis));
    }
    return members.object();
}

std::string jsonHint(const Hint& hint) {
    Members members;
    members.add("identity", jsonString(identityText(*hint.object)));
    members.add("class", jsonString(hint.object->className));
    members.add("name", jsonString(hint.object->name));
    members.add("confidence", jsonNumber(hint.confidence));
    return members.object();
}

std::string jsonNotes(const std::vector<std::string>& notes) {
    std::string text;
    for (const std::string& note : notes) {
        text += (text.empty() ? "" : ", ") + jsonString(note);
    }
    return '[' + text + ']';
}

/** What was otherwise before. */
Members membersBefore(const ObjectRecord& before, const ObjectRecord& now) {
    Members members;
    if (before.className != now.className) {
        members.add("class", jsonString(before.className));
    }
    if (before.name != now.name) {
        members.add("name", jsonString(before.name));
    }
    const bool areStoreysKnown = before.attributes && now.attributes;
    if (areStoreysKnown && attributeOf(before, "Storey") != attributeOf(now, "Storey")) {
        members.add("storey", jsonText(attributeOf(before, "Storey")));
    }
    // What is written the same did not differ.
    if (jsonBox(before.box) != jsonBox(now.box)) {
        members.add("box", jsonBox(before.box));
    }
    if (jsonVolume(before) != jsonVolume(now)) {
        members.add("volume", jsonVolume(before));
    }
    return members;
}

std::string jsonObject(const Change& change) {
    const ObjectRecord& record = change.record();
    Members members;
    members.add("identity", jsonString(identityText(record)));
    members.add("class", jsonString(record.className));
    members.add("name", jsonString(record.name));
    members.add("tag", jsonText(attributeOf(record, "Tag")));
    members.add("storey", jsonText(attributeOf(record, "Storey")));
    members.add("status", jsonString(statusName(change.status())));
    members.add("changes", jsonChanges(change));
    members.add("similarity", jsonNumber(change.similarity));
    members.add("distance", jsonLength(change.distance));
    if (change.move) {
        members.add("move", jsonMove(*change.move));
    }
    if (change.has(Status::Reidentified)) {
        members.add("confidence", jsonNumber(change.confidence));
        members.add("previousIdentity", jsonString(identityText(*change.before)));
    }
    if (change.perhaps) {
        members.add("perhaps", jsonHint(*change.perhaps));
    }
    if (!change.properties.empty()) {
        members.add("properties", jsonProperties(change.properties));
    }
    if (!change.notes.empty()) {
        members.add("notes", jsonNotes(change.notes));
    }
    members.add("box", jsonBox(record.box));
    members.add("volume", jsonVolume(record));
    if (change.before != nullptr && change.now != nullptr) {
        const Members before = membersBefore(*change.before, *change.now);
        if (!before.isEmpty()) {
            members.add("before", before.object());
        }
    }
    return members.object();
}

std::string jsonPrevious(const std::optional<ImportedModel>& previous) {
    if (!previous) {
        return "null";
    }
    const auto known = [](const std::string& text) { return text.empty() ? "null" : jsonString(text); };
    return "{\"model\": " + known(previous->name) + ", \"time\": " + known(previous->time) + '}';
}

std::string jsonDisplacement(const std::optional<Displacement>& displacement) {
    if (!displacement) {
        return "null";
    }
    Members members;
    members.add("shift", jsonVector(displacement->shift));
    members.add("turn", jsonNumber(displacement->turn));
    if (displacement->axis != Vector3{0.0, 0.0, 1.0}) {
        members.add("axis", jsonVector(displacement->axis));
    }
    return members.object();
}

std::string jsonCounts(const Comparison& comparison) {
    Members members;
    for (const Status status : allStatuses) {
        members.add(statusName(status), std::to_string(comparison.count(status)));
    }
    return members.object();
}

} // namespace

std::string reportText(const Outcome& outcome) {
    const Comparison& comparison = outcome.comparison;
    const std::string doubtful = outcome.doubtful ? std::to_string(*outcome.doubtful) : "null";
    std::string text = "{\n\"format\": " + std::to_string(reportFormat) +
                       ",\n\"model\": " + jsonString(outcome.model.name) +
                       ",\n\"previous\": " + jsonPrevious(outcome.previous) + ",\n\"doubtful\": " + doubtful +
                       ",\n\"displacement\": " + jsonDisplacement(comparison.displacement) +
                       ",\n\"counts\": " + jsonCounts(comparison) + ",\n\"objects\": [";
    for (const Change& change : comparison.changes) {
        text += (&change == &comparison.changes.front() ? "\n" : ",\n") + jsonObject(change);
    }
    return text + "\n]\n}\n";
}
