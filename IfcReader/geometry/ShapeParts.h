/**
 * @file ShapeParts.h
 * Bodies as the parts of a shape.
 */
#pragma once

#include "geometry/Body.h"

#include <IfcReader/Shape.h>

#include <vector>

namespace IfcReader {

/**
 * Appends bodies to a shape, turned into the world; those that came from the same items become one part if they are
 * closed alike.
 */
void appendParts(const std::vector<Body>& bodies, const Affine& turn, Shape& shape);

} // namespace IfcReader
