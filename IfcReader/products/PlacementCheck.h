/**
 * @file PlacementCheck.h
 * Placements that can't be meant are damage, not places.
 */
#pragma once

#include "products/ProductTree.h"

namespace IfcReader {

/**
 * Throws IfcError unless each point in the placements of products has its three coordinates, each a number of the size
 * that places have, and each direction at least two numbers.
 */
void checkPlacements(const StepFile& file, const std::vector<TreeNode>& products);

} // namespace IfcReader
