/**
 * @file Surfaces.h
 * Planes and swept surfaces.
 */
#pragma once

#include "geometry/Item.h"
#include "geometry/Vector.h"

namespace IfcReader {

/** The surface that a bounded surface is a part of; any other one itself. @throw ItemError */
Item basisOf(const Item& surface);

/** The normal of a surface near a point, of length 1. @throw ItemError */
Vector surfaceNormal(const Item& surface, const Vector& p);

} // namespace IfcReader
