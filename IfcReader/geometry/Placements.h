/**
 * @file Placements.h
 * Points, directions, axis placements and transformation operators.
 */
#pragma once

#include "geometry/Item.h"
#include "geometry/Vector.h"

namespace IfcReader {

/** An IfcCartesianPoint in metres; in the plane it has z = 0. @throw ItemError */
Vector pointOf(const Item& item);

/** An IfcDirection, of length 1. @throw ItemError when it has none */
Vector directionOf(const Item& item);

/** An IfcAxis2Placement2D or 3D, or an IfcAxis1Placement: a rigid map. @throw ItemError */
Affine placementOf(const Item& item);

/** The placement that argument @p i refers to; the identity when it refers to none. @throw ItemError */
Affine placementIf(const Item& item, std::size_t i);

/** An IfcCartesianTransformationOperator of any kind: may scale each axis and mirror. @throw ItemError */
Affine operatorOf(const Item& item);

} // namespace IfcReader
