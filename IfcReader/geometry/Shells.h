/**
 * @file Shells.h
 * Bodies and surfaces that are given face by face.
 */
#pragma once

#include "geometry/Body.h"
#include "geometry/Item.h"

#include <string>
#include <vector>

namespace IfcReader {

/** An IfcFacetedBrep with or without voids. One that isn't closed is no solid. @throw ItemError */
Body brepOf(const Item& item);

/** A shell-based or face-based surface model: its closed pieces as solids, the rest as a surface. @throw ItemError */
std::vector<Body> surfaceModelOf(const Item& item);

} // namespace IfcReader
