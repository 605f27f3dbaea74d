/**
 * @file Surfaces.h
 * Planes and swept surfaces.
 */
#pragma once

#include "geometry/Body.h"
#include "geometry/Item.h"
#include "geometry/Vector.h"

namespace IfcReader {

/** The surface that a bounded surface is a part of; any other one itself. @throw ItemError */
Item basisOf(const Item& surface);

/** The normal of a surface near a point, of length 1. @throw ItemError */
Vector surfaceNormal(const Item& surface, const Vector& p);

/** Whether it is an IfcCurveBoundedPlane, or a rectangle of a plane. */
bool isBoundedPlane(const Item& surface);

/** The one face of a bounded plane, which is no solid. @throw ItemError */
Body boundedPlaneOf(const Item& surface);

} // namespace IfcReader
