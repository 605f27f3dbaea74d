/**
 * @file ProductTree.h
 * The products of a file in the order of its tree.
 */
#pragma once

#include "products/Relations.h"
#include "step/StepFile.h"

#include <limits>
#include <vector>

namespace IfcReader {

/** A product in its place in the tree. */
struct TreeNode {
    static constexpr std::uint32_t none = std::numeric_limits<std::uint32_t>::max();

    std::uint32_t instance; ///< place in the file's index
    std::uint32_t parent;   ///< place in the list of nodes
    std::uint32_t storey;   ///< place in the list of the storey above, else of the nearest other place of the building
    bool isShown;           ///< its shape stands for a thing
};

/**
 * All products, wherever they hang: first what the project holds, each after what holds it - what it contains, then its
 * openings, then its parts - and then those that it does not hold. Throws IfcError without a project, and for a product
 * whose placement or shape is something else.
 */
std::vector<TreeNode> productTree(const StepFile& file, const Relations& relations);

} // namespace IfcReader
