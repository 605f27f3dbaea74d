/**
 * @file Comparison.h
 * What became of every object between two imports.
 */
#pragma once

#include "comparison/PropertyDifference.h"
#include "state/ObjectRecord.h"

#include <optional>
#include <string>
#include <vector>

/**
 * What may have become of an object. Of all that apply the first in this order is its status; an object to which
 * nothing applies is unchanged.
 */
enum class Status { Added, Removed, Reidentified, Reclassed, Reshaped, Moved, Properties, Unchanged };

/** All statuses, in the order in which they are counted and reported. */
constexpr Status allStatuses[] = {Status::Unchanged, Status::Properties,   Status::Moved, Status::Reshaped,
                                  Status::Reclassed, Status::Reidentified, Status::Added, Status::Removed};

const char* statusName(Status status);

/** A turn about an axis through some point, and how far it and the shift took the object. */
struct Motion {
    Vector3 shift{};                ///< of the object's centre, in metres
    double angle = 0.0;             ///< degrees, from 0 to 180
    Vector3 axis = {0.0, 0.0, 1.0}; ///< of length 1; counter-clockwise when it points at the eye
};

/** The motion that the whole model made: a turn about an axis through the origin, then a shift. */
struct Displacement {
    Vector3 shift{};                ///< metres
    double turn = 0.0;              ///< degrees; about an axis that points upwards from -180 to 180
    Vector3 axis = {0.0, 0.0, 1.0}; ///< of length 1
};

/** An object that may be another one, but not surely enough to say that it is. */
struct Hint {
    const ObjectRecord* object; ///< of the other side: removed for an added object, added for a removed one
    double confidence;          ///< from 0 to 1
};

/** An object with its records, which belong to the lists that were compared, and with all that became of it. */
struct Change {
    const ObjectRecord* before = nullptr; ///< null when the object was added
    const ObjectRecord* now = nullptr;    ///< null when it was removed

    std::vector<Status> changes = {}; ///< all that apply, in the order of Status; empty for an unchanged object
    double similarity = 0.0;          ///< of the shapes alone, from 0 to 1; NaN when there are not two to compare
    double distance = 0.0;            ///< how far it moved beside the whole, in metres; NaN likewise
    std::optional<Motion> move = {};  ///< of an object that was moved, also beside other changes
    double confidence = 1.0;          ///< that before and now are one object, from 0 to 1

    std::optional<Hint> perhaps = {};                ///< of an added or a removed object
    std::vector<PropertyDifference> properties = {}; ///< attributes and properties
    std::vector<std::string> notes = {};             ///< sentences for people, such as what it was split from

    const ObjectRecord& record() const { return now != nullptr ? *now : *before; }
    Status status() const { return changes.empty() ? Status::Unchanged : changes.front(); }
    bool has(Status status) const;
};

struct Comparison {
    std::optional<Displacement> displacement; ///< nothing when the model as a whole stayed where it was

    /** One per object: those that are there now in their order, then those that are gone in theirs. */
    std::vector<Change> changes;

    /** How many objects have a status. */
    std::size_t count(Status status) const;
};

/** Compares two imports. The result refers to the records of both lists. */
Comparison compare(const std::vector<ObjectRecord>& before, const std::vector<ObjectRecord>& now);
