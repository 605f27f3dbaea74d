/**
 * @file Primitives.h
 * Blocks, cylinders, cones, pyramids and spheres.
 */
#pragma once

#include "geometry/Body.h"
#include "geometry/Item.h"

namespace IfcReader {

bool isPrimitive(const Item& item);

/** An IfcCsgPrimitive3D in its place. @throw ItemError */
Body primitiveOf(const Item& item);

} // namespace IfcReader
