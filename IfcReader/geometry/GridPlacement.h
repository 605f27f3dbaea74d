/**
 * @file GridPlacement.h
 * Places at the crossing of two axes of a grid.
 */
#pragma once

#include "geometry/Item.h"
#include "geometry/Vector.h"

namespace IfcReader {

/** An IfcGridPlacement in the coordinates of its grid. @throw ItemError */
Affine gridPlacementOf(const Item& placement);

/** The number of the first axis that it names. @throw ItemError */
std::uint64_t gridAxisOf(const Item& placement);

} // namespace IfcReader
