/**
 * @file SweptSolids.h
 * Extrusions, revolutions, swept disks, areas swept along curves on surfaces, and sectioned spines.
 */
#pragma once

#include "geometry/Body.h"
#include "geometry/Item.h"

namespace IfcReader {

bool isSweptSolid(const Item& item);

/** A swept solid in its place. @throw ItemError */
Body sweptSolidOf(const Item& item);

} // namespace IfcReader
