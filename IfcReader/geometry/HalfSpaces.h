/**
 * @file HalfSpaces.h
 * Half-spaces, as far as what they are combined with reaches.
 */
#pragma once

#include "geometry/Body.h"
#include "geometry/Item.h"

namespace IfcReader {

bool isHalfSpace(const Item& item);

/**
 * The part of a half-space that holds everything of it within @p reach: of planes, of extruded and of revolved
 * surfaces; bounded by a polygon or a box, where the item says so. @throw ItemError
 */
Body halfSpaceOf(const Item& item, const Box& reach);

/** An IfcBoundingBox as a body. @throw ItemError */
Body boundingBoxOf(const Item& item);

} // namespace IfcReader
