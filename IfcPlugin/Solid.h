/**
 * @file Solid.h
 * Surfaces as the bytes of a solid; their form stands in ImportHost/FORMATS.md.
 */
#pragma once

#include "Surface.h"

#include <ImportCommon/ForeignObjectSolid.h>

#include <vector>

/** The faces of a product around its origin in the world. */
ForeignObjectSolid solidOf(const std::vector<Surface>& surfaces, const Vector& origin);
