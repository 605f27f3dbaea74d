#include "comparison/Comparison.h"

#include <ImportCommon/ExternalGUIDDatabase.h>

#include <algorithm>
#include <cmath>
#include <deque>
#include <limits>
#include <unordered_map>

using namespace ImportCommon;

namespace {

/** A coordinate that differs by more is another one; the tolerance that versions use for centroids. */
constexpr double positionTolerance = 0.001;

/**
 * Openings are cut in 32-bit floats, so that the volume of a wall changes in its last digits when it is moved or written
 * anew. Versions compare volumes to the cubic centimetre, which is less than that for a large one.
 */
constexpr double volumeNoise = 1e-5;

bool bothSolid(const ObjectRecord& a, const ObjectRecord& b) {
    return a.version.getType() == ExternalVersionType_Solid && b.version.getType() == ExternalVersionType_Solid;
}

std::array<double, 3> centroidOf(const ExternalVersion& version) {
    std::array<double, 3> centroid{};
    version.getCenteroid(&centroid[0], &centroid[1], &centroid[2]);
    return centroid;
}

bool samePosition(const std::array<double, 3>& a, const std::array<double, 3>& b) {
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (std::abs(a[i] - b[i]) > positionTolerance) {
            return false;
        }
    }
    return true;
}

/** The new solid where the old one was. */
ExternalVersion movedBack(const ExternalVersion& now, const ExternalVersion& before) {
    double x = 0.0;
    double y = 0.0;
    double z = 0.0;
    double distances[8];
    now.getBoundingBox(&x, &y, &z);
    now.getDistances(distances);
    const bool sameVolume = std::abs(now.getVolume() - before.getVolume()) <= volumeNoise * before.getVolume();
    return createFromSolid(x, y, z, distances, sameVolume ? before.getVolume() : now.getVolume(),
                           centroidOf(before).data());
}

/** What became of the shape and place of an object. */
Status geometryStatusOf(const ObjectRecord& before, const ObjectRecord& now) {
    if (bothSolid(before, now)) {
        if (!(movedBack(now.version, before.version) == before.version)) {
            return Status::Reshaped;
        }
        const bool moved = !samePosition(centroidOf(now.version), centroidOf(before.version));
        return moved ? Status::Moved : Status::Unchanged;
    }
    // Without a volume a version has no centroid: whether the object was moved is told by its box.
    if (now.version == before.version) {
        return samePosition(now.position, before.position) ? Status::Unchanged : Status::Moved;
    }
    return Status::Reshaped;
}

/** Objects by runtime id. Several may have one id: the tree joins hashes that are nearly equal. */
using ObjectsById = std::unordered_map<int, std::deque<const ObjectRecord*>>;

/** Takes the first object of a kind out of those with an id; null when there is none. */
template <typename Condition>
const ObjectRecord* take(ObjectsById& objects, ExternalGUIDRuntimeID_e id, const Condition& condition) {
    const auto found = objects.find(id);
    if (id == ExternalGUIDRuntimeID_None || found == objects.end()) {
        return nullptr;
    }
    for (auto object = found->second.begin(); object != found->second.end(); ++object) {
        const ObjectRecord* result = *object;
        if (!condition(*result)) {
            continue;
        }
        found->second.erase(object);
        return result;
    }
    return nullptr;
}

/** Pairs objects by identity. A model may use an identity twice: the first goes with the first, and so on. */
void matchIdentities(ExternalGUIDDatabase& database, const std::vector<ObjectRecord>& before,
                     std::vector<Change>& changes) {
    ObjectsById known;
    for (const ObjectRecord& object : before) {
        known[database.insertGUID(object.identity)].push_back(&object);
    }
    for (Change& change : changes) {
        const ExternalGUIDRuntimeID_e id = database.findGUID(change.now->identity);
        change.before = take(known, id, [](const ObjectRecord&) { return true; });
    }
}

/** Pairs objects that are new with objects that are gone by what lies where: only the identity was changed. */
void matchSpatialHashes(ExternalGUIDDatabase& database, const std::vector<const ObjectRecord*>& gone,
                        std::vector<Change>& changes) {
    ObjectsById known;
    for (const ObjectRecord* object : gone) {
        known[database.insertGUID(object->spatialHash)].push_back(object);
    }
    for (const bool sameName : {true, false}) {
        for (Change& change : changes) {
            if (change.before != nullptr) {
                continue;
            }
            const ExternalGUIDRuntimeID_e id = database.findGUID(change.now->spatialHash);
            change.before = take(known, id, [&](const ObjectRecord& object) {
                return object.className == change.now->className && (!sameName || object.name == change.now->name);
            });
        }
    }
}

Vector3 centreOf(const Change& change, const ObjectRecord& record) {
    return bothSolid(*change.before, *change.now) ? centroidOf(record.version) : record.position;
}

/** What applies to an object that is there before and now. */
void describe(Change& change) {
    const ObjectRecord& before = *change.before;
    const ObjectRecord& now = *change.now;
    if (identityText(before) != identityText(now)) {
        change.changes.push_back(Status::Reidentified);
    }
    if (before.className != now.className) {
        change.changes.push_back(Status::Reclassed);
    }
    const Status geometry = geometryStatusOf(before, now);
    if (geometry != Status::Unchanged) {
        change.changes.push_back(geometry);
    }
    change.properties = differencesOf(before, now);
    if (!change.properties.empty()) {
        change.changes.push_back(Status::Properties);
    }

    Motion motion;
    const Vector3 from = centreOf(change, before);
    const Vector3 to = centreOf(change, now);
    for (std::size_t k = 0; k < from.size(); ++k) {
        motion.shift[k] = to[k] - from[k];
    }
    change.similarity = now.version.similarity(before.version);
    change.distance = std::hypot(motion.shift[0], motion.shift[1], motion.shift[2]);
    if (geometry == Status::Moved) {
        change.move = motion;
    }
}

/** The objects that no change has taken up. */
std::vector<const ObjectRecord*> goneObjects(const std::vector<ObjectRecord>& before,
                                             const std::vector<Change>& changes) {
    std::vector<bool> taken(before.size(), false);
    for (const Change& change : changes) {
        if (change.before != nullptr) {
            taken[static_cast<std::size_t>(change.before - before.data())] = true;
        }
    }
    std::vector<const ObjectRecord*> gone;
    for (std::size_t i = 0; i < before.size(); ++i) {
        if (!taken[i]) {
            gone.push_back(&before[i]);
        }
    }
    return gone;
}

} // namespace

const char* statusName(Status status) {
    switch (status) {
    case Status::Unchanged:
        return "unchanged";
    case Status::Properties:
        return "properties";
    case Status::Moved:
        return "moved";
    case Status::Reshaped:
        return "reshaped";
    case Status::Reclassed:
        return "reclassed";
    case Status::Reidentified:
        return "reidentified";
    case Status::Added:
        return "added";
    case Status::Removed:
        return "removed";
    }
    return "";
}

bool Change::has(Status status) const {
    return std::find(changes.begin(), changes.end(), status) != changes.end();
}

std::size_t Comparison::count(Status status) const {
    return static_cast<std::size_t>(
        std::count_if(changes.begin(), changes.end(), [&](const Change& change) { return change.status() == status; }));
}

Comparison compare(const std::vector<ObjectRecord>& before, const std::vector<ObjectRecord>& now) {
    Comparison comparison;
    std::vector<Change>& changes = comparison.changes;
    changes.resize(now.size());
    for (std::size_t i = 0; i < now.size(); ++i) {
        changes[i].now = &now[i];
    }

    ExternalGUIDDatabase database;
    matchIdentities(database, before, changes);
    matchSpatialHashes(database, goneObjects(before, changes), changes);
    for (const ObjectRecord* object : goneObjects(before, changes)) {
        changes.emplace_back().before = object;
    }
    for (Change& change : changes) {
        if (change.before != nullptr && change.now != nullptr) {
            describe(change);
            continue;
        }
        change.changes = {change.before == nullptr ? Status::Added : Status::Removed};
        change.similarity = std::numeric_limits<double>::quiet_NaN();
        change.distance = std::numeric_limits<double>::quiet_NaN();
    }
    return comparison;
}
