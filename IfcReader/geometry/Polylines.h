/**
 * @file Polylines.h
 * Chains of corners and their parameter: a whole number is the corner's place in the chain.
 */
#pragma once

#include "geometry/Body.h"

namespace IfcReader {

constexpr double samePoint = 1e-9; ///< corners of a polyline that are nearer are one, in metres

/** Appends a point unless it is nearer than @p distance to the last one. */
void appendDistinct(Loop& path, const Vector& p, double distance);

/** What lies between two parameters, as far as the chain goes; backwards where @p from is more than @p to. */
Loop polylinePart(const Loop& corners, double from, double to);

/** The parameter of the point on a polyline that lies nearest to @p p. */
double polylineParameter(const Loop& corners, const Vector& p);

} // namespace IfcReader
