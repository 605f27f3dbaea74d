/**
 * @file SampleComparison.h
 * A comparison of a small building, made by hand for tests of what is written of one.
 */
#pragma once

#include "comparison/Comparison.h"

#include <deque>
#include <limits>
#include <string>

/** Objects are cubes of a metre; the records live as long as this. */
class SampleComparison {
public:
    ObjectRecord& record(const std::string& globalId, const std::string& className, const std::string& name,
                         const std::string& storey, double x, double y, double z) {
        records_.emplace_back();
        ObjectRecord& record = records_.back();
        record.identity = ImportCommon::ExternalGUID::fromIFCGlobalID(globalId.c_str());
        record.className = className;
        record.name = name;
        record.position = {x + 0.5, y + 0.5, z + 0.5};
        record.box = {{x, y, z}, {x + 1.0, y + 1.0, z + 1.0}};
        record.footprint = {{{x, y}, {x + 1.0, y}, {x + 1.0, y + 1.0}, {x, y + 1.0}}};
        record.attributes = Attributes();
        if (!storey.empty()) {
            (*record.attributes)["Storey"] = storey;
        }
        return record;
    }

    Change& add(const ObjectRecord* before, const ObjectRecord* now, std::vector<Status> changes) {
        Change change;
        change.before = before;
        change.now = now;
        change.changes = std::move(changes);
        const bool isPair = before != nullptr && now != nullptr;
        change.similarity = isPair ? 1.0 : std::numeric_limits<double>::quiet_NaN();
        change.distance = isPair ? 0.0 : std::numeric_limits<double>::quiet_NaN();
        comparison.changes.push_back(change);
        return comparison.changes.back();
    }

    Comparison comparison;

private:
    std::deque<ObjectRecord> records_;
};

/** GlobalIds, numbered. */
inline std::string sampleId(int number) {
    return "0000000000000000000" + std::to_string(100 + number);
}
