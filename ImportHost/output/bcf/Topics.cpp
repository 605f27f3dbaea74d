#include "output/bcf/Topics.h"

#include "comparison/Displaced.h"
#include "output/ChangeText.h"

#include <PluginKit/Text.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <tuple>

namespace {

/** The box of an object where it is now, or of one that is gone where it would be. */
Box presentBox(const Change& change, const Comparison& comparison) {
    const Box& box = change.record().box;
    if (change.now != nullptr || !comparison.displacement) {
        return box;
    }
    Box result;
    for (unsigned corner = 0; corner < 8; ++corner) {
        const Vector3 point =
            displaced({(corner & 1u) != 0 ? box.high[0] : box.low[0], (corner & 2u) != 0 ? box.high[1] : box.low[1],
                       (corner & 4u) != 0 ? box.high[2] : box.low[2]},
                      *comparison.displacement);
        for (std::size_t i = 0; i < 3; ++i) {
            result.low[i] = corner == 0 ? point[i] : std::min(result.low[i], point[i]);
            result.high[i] = corner == 0 ? point[i] : std::max(result.high[i], point[i]);
        }
    }
    return result;
}

void extend(Box& box, const Box& other) {
    for (std::size_t i = 0; i < 3; ++i) {
        box.low[i] = std::min(box.low[i], other.low[i]);
        box.high[i] = std::max(box.high[i], other.high[i]);
    }
}

std::string nameOf(const ObjectRecord& record) {
    return record.name.empty() ? identityText(record) : record.name;
}

/** Everything about one object, a line for each finding. */
std::string descriptionOf(const Change& change) {
    const ObjectRecord& record = change.record();
    std::string text = record.className + ' ' + identityText(record) + ": " + changeText(change);
    if (const auto storey = attributeOf(record, "Storey")) {
        text += "\nStorey: " + *storey;
    }
    if (change.move) {
        text += "\nMoved by " + moveText(change);
    }
    if (change.has(Status::Reidentified)) {
        text += "\nConfidence: " + fixedText(change.confidence, 2);
    }
    for (const PropertyDifference& difference : change.properties) {
        const auto value = [](const std::optional<std::string>& v) { return v ? valueText(v) : "(none)"; };
        text += '\n' + difference.set + '.' + difference.name + ": " + value(difference.before) + " -> " +
                value(difference.now);
    }
    return text;
}

/** Texts that together stand for two models of the same names. */
std::string modelsKey(const Outcome& outcome) {
    const auto fileName = [](const std::string& path) { return std::filesystem::path(path).filename().string(); };
    return (outcome.previous ? fileName(outcome.previous->name) : "") + '\n' + fileName(outcome.model.name) + '\n';
}

std::vector<const Change*> changedObjects(const Comparison& comparison) {
    std::vector<const Change*> changed;
    for (const Change& change : comparison.changes) {
        if (change.status() != Status::Unchanged) {
            changed.push_back(&change);
        }
    }
    return changed;
}

BcfTopic topicOf(const Change& change, const Outcome& outcome, std::size_t sameBefore) {
    const ObjectRecord& record = change.record();
    const std::string key = modelsKey(outcome) + identityText(record) + '\n' + std::to_string(sameBefore);
    return {uuidOf(key),
            std::string(statusName(change.status())) + ": " + nameOf(record),
            descriptionOf(change),
            {&change},
            presentBox(change, outcome.comparison)};
}

std::vector<BcfTopic> groupTopics(const std::vector<const Change*>& changed, const Outcome& outcome) {
    using Key = std::tuple<std::size_t, std::string, std::string>; // status, storey, class
    std::map<Key, std::vector<const Change*>> groups;
    for (const Change* const change : changed) {
        const ObjectRecord& record = change->record();
        groups[{static_cast<std::size_t>(change->status()), attributeOf(record, "Storey").value_or(""),
                record.className}]
            .push_back(change);
    }
    std::vector<BcfTopic> topics;
    for (const auto& [key, changes] : groups) {
        const auto& [status, storey, className] = key;
        const std::string what = std::string(statusName(changes.front()->status())) + ": " +
                                 std::to_string(changes.size()) + ' ' + className +
                                 (storey.empty() ? "" : ", " + storey);
        BcfTopic topic = {uuidOf(modelsKey(outcome) + std::to_string(status) + '\n' + storey + '\n' + className), what,
                          "", changes, presentBox(*changes.front(), outcome.comparison)};
        for (const Change* const change : changes) {
            extend(topic.box, presentBox(*change, outcome.comparison));
            topic.description += (topic.description.empty() ? "" : "\n\n") + descriptionOf(*change);
        }
        topics.push_back(std::move(topic));
    }
    return topics;
}

} // namespace

std::string uuidOf(const std::string& text) {
    std::string digits = checksum("1\n" + text) + checksum("2\n" + text);
    std::transform(digits.begin(), digits.end(), digits.begin(),
                   [](char c) { return c >= 'A' && c <= 'F' ? static_cast<char>(c - 'A' + 'a') : c; });
    digits[12] = '8';                                                // of a kind that is the writer's own,
    digits[16] = "89ab"[static_cast<unsigned char>(digits[16]) % 4]; // as the standard of UUIDs has it
    return digits.substr(0, 8) + '-' + digits.substr(8, 4) + '-' + digits.substr(12, 4) + '-' + digits.substr(16, 4) +
           '-' + digits.substr(20);
}

std::vector<BcfTopic> topicsOf(const Outcome& outcome, std::size_t limit) {
    const std::vector<const Change*> changed = changedObjects(outcome.comparison);
    if (changed.size() > limit) {
        return groupTopics(changed, outcome);
    }
    std::vector<BcfTopic> topics;
    std::map<std::string, std::size_t> used; // a model may use an identity twice
    for (const Change* const change : changed) {
        topics.push_back(topicOf(*change, outcome, used[identityText(change->record())]++));
    }
    return topics;
}
