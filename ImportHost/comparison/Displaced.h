/**
 * @file Displaced.h
 * Where the displacement of a whole model took a point.
 */
#pragma once

#include "comparison/Comparison.h"

/** Where a point of the old model is now if it only followed the whole. */
Vector3 displaced(const Vector3& point, const Displacement& whole);
