/**
 * @file ShapeMeasure.h
 * Measures the surfaces of an object.
 */
#pragma once

#include "state/Shape.h"

#include <PluginKit/Solids.h>

#include <optional>
#include <vector>

/** The shape of all surfaces together; its area is 0 where there is none. */
Shape shapeOf(const std::vector<PluginKit::SolidSurface>& surfaces);

/** The box around the vertices of all polygons; nothing where there is none. */
std::optional<Box> boxOf(const std::vector<PluginKit::SolidSurface>& surfaces);
