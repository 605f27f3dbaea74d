/**
 * @file Overlaps.h
 * How far the loops of areas get in each other's way.
 */
#pragma once

#include "geometry/Body.h"
#include "geometry/Work.h"

namespace IfcReader {

/** What is covered more than once, is a hole where nothing is left to take away, or lies between loops that cross. */
struct Overlap {
    double width = 0.0; ///< of the widest such place, as a part of the side of a square of the same area
    double area = 0.0;  ///< of all such places together, as a part of the area
};

/**
 * What overlaps among areas in the plane z = 0, their outlines counter-clockwise. What merely touches does not. Of areas
 * with so many edges side by side that looking at them would take longer than building them only a part is looked at.
 * @throw LimitError
 */
Overlap overlapOf(const std::vector<Face>& areas, Work& work);

} // namespace IfcReader
