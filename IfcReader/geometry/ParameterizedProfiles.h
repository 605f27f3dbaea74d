/**
 * @file ParameterizedProfiles.h
 * The areas of profiles that are given by their sizes.
 */
#pragma once

#include "geometry/Body.h"
#include "geometry/Item.h"

namespace IfcReader {

/** The area of an IfcParameterizedProfileDef around its own origin. @throw ItemError */
Face parameterizedArea(const Item& profile);

} // namespace IfcReader
