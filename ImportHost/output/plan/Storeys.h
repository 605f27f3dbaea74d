/**
 * @file Storeys.h
 * Which objects are drawn on which plan.
 */
#pragma once

#include "comparison/Comparison.h"

#include <string>
#include <vector>

/** An object on a plan. */
struct PlanObject {
    std::size_t index; ///< of the change in the comparison
    const Change* change;
    Footprint now;    ///< where it is, or was if it is gone; empty for one that has left for another storey
    Footprint before; ///< where it was, if that is another place or shape; the displacement of the whole taken along
};

struct Storey {
    std::string name; ///< empty for objects that belong to none
    std::vector<PlanObject> objects;
};

/** Whether an object is a room or another space, which is no part of the building's fabric and is not drawn. */
bool isSpace(const ObjectRecord& record);

/**
 * The storeys with the objects that have a place on a plan, from the lowest to the highest; spaces are left out. The
 * storeys refer to the comparison.
 */
std::vector<Storey> storeysOf(const Comparison& comparison);
