/**
 * @file SweptSolids.h
 * Extrusions, revolutions, swept disks, areas swept along curves on surfaces, and sectioned spines.
 */
#pragma once

#include "geometry/Body.h"
#include "geometry/Item.h"

#include <string>

namespace IfcReader {

bool isSweptSolid(const Item& item);

/** A body in its place; where it is not quite what was meant, why it isn't, and the body is no solid. */
struct SweptSolid {
    Body body;
    std::string doubt; ///< empty for none
};

/** @throw ItemError, LimitError */
SweptSolid sweptSolidOf(const Item& item);

} // namespace IfcReader
