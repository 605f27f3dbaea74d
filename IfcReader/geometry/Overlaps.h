/**
 * @file Overlaps.h
 * Whether the loops of areas get in each other's way.
 */
#pragma once

#include "geometry/Body.h"
#include "geometry/Work.h"

namespace IfcReader {

/**
 * Whether areas in the plane z = 0, their outlines counter-clockwise, cover a place more than once, have holes where
 * nothing is left to take away, or have loops that cross. What merely touches does not overlap, nor does what is off by
 * less than a ten-thousandth of the areas' size. @throw LimitError
 */
bool overlap(const std::vector<Face>& areas, Work& work);

} // namespace IfcReader
