/**
 * @file Cutting.h
 * Difference, union and intersection of bodies.
 */
#pragma once

#include "geometry/Body.h"
#include "geometry/Work.h"

namespace IfcReader {

enum class Operation { difference, unite, intersect };

struct CutResult {
    Body body;
    bool closed = true; ///< false: the result has a gap, where the bodies touch in a way that could not be told
};

/**
 * Combines two bodies. What is left of a surface keeps its numbers; one of @p first that is no solid only loses what
 * is cut away. The items are those of the first body.
 * @throw LimitError
 */
CutResult combine(Operation operation, const Body& first, const Body& second, Work& work);

} // namespace IfcReader
