/**
 * @file Profiles.h
 * Profiles as areas in the plane z = 0.
 */
#pragma once

#include "geometry/Body.h"
#include "geometry/Item.h"

namespace IfcReader {

/** The areas of an IfcProfileDef, counter-clockwise about z; several for a composite one. @throw ItemError */
std::vector<Face> profileAreas(const Item& profile);

/** The line of an open profile, or the outline of a closed one, which ends where it began. @throw ItemError */
Loop profilePath(const Item& profile);

} // namespace IfcReader
