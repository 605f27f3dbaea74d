#include "output/plan/Storeys.h"

#include "comparison/Displaced.h"
#include "output/plan/Outline.h"

#include <algorithm>
#include <map>

namespace {

/** What an object covers; its box where nothing else is known, and nothing for an object without extent. */
Footprint footprintOf(const ObjectRecord& record) {
    if (!record.footprint.empty()) {
        return outlineOf(record.footprint);
    }
    const Box& box = record.box;
    if (box.size(0) <= 0.0 && box.size(1) <= 0.0) {
        return {};
    }
    return {
        {{box.low[0], box.low[1]}, {box.high[0], box.low[1]}, {box.high[0], box.high[1]}, {box.low[0], box.high[1]}}};
}

/** Where an old object would be now if it had only followed the whole. */
Footprint followed(Footprint footprint, const ObjectRecord& record, const Comparison& comparison) {
    if (!comparison.displacement) {
        return footprint;
    }
    const double height = (record.box.low[2] + record.box.high[2]) / 2.0;
    for (auto& polygon : footprint) {
        for (Point& point : polygon) {
            const Vector3 place = displaced({point.x, point.y, height}, *comparison.displacement);
            point = {place[0], place[1]};
        }
    }
    return footprint;
}

std::string storeyName(const ObjectRecord& record) {
    return attributeOf(record, "Storey").value_or("");
}

/** A storey and how high its lowest object lies. */
struct Level {
    std::vector<PlanObject> objects;
    std::vector<double> heights;
};

} // namespace

bool isSpace(const ObjectRecord& record) {
    return record.className == "IFCSPACE";
}

std::vector<Storey> storeysOf(const Comparison& comparison) {
    std::map<std::string, Level> levels;
    const auto add = [&](const ObjectRecord& record, PlanObject object) {
        if (!object.now.empty() || !object.before.empty()) {
            Level& level = levels[storeyName(record)];
            level.heights.push_back(record.box.low[2]);
            level.objects.push_back(std::move(object));
        }
    };
    for (std::size_t i = 0; i < comparison.changes.size(); ++i) {
        const Change& change = comparison.changes[i];
        const ObjectRecord& record = change.record();
        if (isSpace(record)) {
            continue;
        }
        Footprint now = footprintOf(record);
        Footprint before;
        if (change.now == nullptr) {
            now = followed(std::move(now), record, comparison);
        } else if (change.has(Status::Moved) || change.has(Status::Reshaped)) {
            before = followed(footprintOf(*change.before), *change.before, comparison);
        }
        if (!before.empty() && storeyName(*change.before) != storeyName(record)) {
            add(*change.before, {i, &change, {}, std::move(before)});
            before.clear();
        }
        add(record, {i, &change, std::move(now), std::move(before)});
    }

    std::vector<std::pair<double, Storey>> sorted;
    for (auto& [name, level] : levels) {
        // One pile that goes deep does not put a storey below the cellar.
        const auto middle = level.heights.begin() + static_cast<std::ptrdiff_t>(level.heights.size() / 2);
        std::nth_element(level.heights.begin(), middle, level.heights.end());
        sorted.emplace_back(*middle, Storey{name, std::move(level.objects)});
    }
    std::stable_sort(sorted.begin(), sorted.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
    std::vector<Storey> storeys;
    for (auto& [height, storey] : sorted) {
        storeys.push_back(std::move(storey));
    }
    return storeys;
}
