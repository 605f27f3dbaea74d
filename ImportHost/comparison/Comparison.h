/**
 * @file Comparison.h
 * What became of every object between two imports.
 */
#pragma once

#include "state/ObjectRecord.h"

#include <vector>

enum class Status { Unchanged, Properties, Moved, Reshaped, Reclassed, Reidentified, Added, Removed };

/** All statuses, in the order in which they are counted and reported. */
constexpr Status allStatuses[] = {Status::Unchanged, Status::Properties,   Status::Moved, Status::Reshaped,
                                  Status::Reclassed, Status::Reidentified, Status::Added, Status::Removed};

const char* statusName(Status status);

/** An object's status and changed properties with its records, which belong to the lists that were compared. */
struct Change {
    Status status;
    const ObjectRecord* before; ///< null when the object was added
    const ObjectRecord* now;    ///< null when it was removed

    std::vector<PropertyDifference> properties = {}; ///< whatever else happened to the object

    const ObjectRecord& record() const { return now != nullptr ? *now : *before; }
};

/** How alike the versions are, from 0 to 1; NaN when there are not two to compare. */
double similarityOf(const Change& change);

/** How far the object moved, in metres; NaN when it is not there before and now. */
double distanceOf(const Change& change);

/** One change per object: those that are there now in their order, then those that are gone in theirs. */
std::vector<Change> compare(const std::vector<ObjectRecord>& before, const std::vector<ObjectRecord>& now);
