#include "comparison/Description.h"

#include "comparison/Congruence.h"

namespace {

constexpr double degreesPerRadian = 180.0 / 3.141592653589793;

Motion motionOf(const Body& before, const Body& now, const Rotation& turn) {
    Motion motion;
    const bool areBoxesBetter = !before.hasSurface() && before.box && now.box;
    motion.shift = areBoxesBetter ? (now.box->low + now.box->high - before.box->low - before.box->high) * 0.5
                                  : now.centre - before.centre;
    if (turn != noRotation) {
        motion.angle = angleOf(turn) * degreesPerRadian;
        motion.axis = axisOf(turn);
    }
    return motion;
}

} // namespace

void describe(Change& change, const Body& before, const Body& now) {
    if (!haveSameIdentity(*before.record, *now.record)) {
        change.changes.push_back(Status::Reidentified);
    }
    if (before.record->className != now.record->className) {
        change.changes.push_back(Status::Reclassed);
    }
    change.similarity = 1.0;
    change.distance = 0.0;
    if (!areInPlace(before, now)) {
        const std::optional<Rotation> turn = turnBetween(before, now);
        change.changes.push_back(turn ? Status::Moved : Status::Reshaped);
        change.similarity = likeness(before, now);
        change.distance = distanceBetween(before, now);
        if (turn) {
            change.move = motionOf(before, now, *turn);
        }
    }
    change.properties = differencesOf(*before.record, *now.record);
    if (!change.properties.empty()) {
        change.changes.push_back(Status::Properties);
    }
}
