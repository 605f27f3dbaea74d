#include "DxKDTreeSkips.h"

#include <cstdlib>
#include <new>

namespace ImportCommon {

void CDxKDTree::SkipBuilder::finish(unsigned int target, const Way& way) {
    for (unsigned int level = 0; level < levels && way.depth % lengthOf(level) == 0; ++level) {
        if (!addSkip(starts_[level], target, level, way)) {
            return; // a longer one would lead over this one
        }
    }
}

/** False when there is one of that level already, when it would be of no use, or without memory. */
bool CDxKDTree::SkipBuilder::addSkip(unsigned int start, unsigned int target, unsigned int level, const Way& way) {
    Node_s& node = tree_.nodeAt(start);
    if (node.skip != nullptr && node.skip->level >= level) {
        return false;
    }
    const unsigned int dimension = tree_.dimension_;
    void* memory = std::malloc(sizeof(Skip) + 2 * sizeof(double) * dimension);
    if (memory == nullptr) {
        return false;
    }
    Skip* skip = new (memory) Skip{target, level, way.depth, way.axis, node.skip, tree_.skips_, -HUGE_VAL, HUGE_VAL};
    std::fill_n(skip->highest(), dimension, -HUGE_VAL);
    std::fill_n(skip->lowest(dimension), dimension, HUGE_VAL);
    if (!(level == 0 ? coverNodes(*skip, start) : coverSkips(*skip, start))) {
        std::free(memory);
        return false;
    }
    node.skip = skip;
    tree_.skips_ = skip;
    return true;
}

/** Takes over the nodes from the start to the target, which are those that the target's vector meets. */
bool CDxKDTree::SkipBuilder::coverNodes(Skip& skip, unsigned int start) const {
    const double* vector = tree_.vectorAt(skip.target);
    const double projection = tree_.nodeAt(skip.target).projection;
    unsigned int axis = (skip.depth - stepCount) % tree_.dimension_;
    for (unsigned int id = start; id != skip.target; axis = (axis + 1) % tree_.dimension_) {
        const Node_s& node = tree_.nodeAt(id);
        const bool isBelow = node.projection <= projection;
        if (!keepApart(skip, isBelow ? node.projection : -HUGE_VAL, isBelow ? HUGE_VAL : node.projection)) {
            return false;
        }
        // A component that is not a number doesn't count: whatever is compared with it goes to the low side.
        if (isHighSide(vector[axis], node.split)) {
            skip.highest()[axis] = std::fmax(skip.highest()[axis], node.split);
            id = node.high;
        } else {
            double& lowest = skip.lowest(tree_.dimension_)[axis];
            lowest = std::fmin(lowest, node.split);
            id = node.low;
        }
    }
    return true;
}

/** Takes over the skips of the level below if they lead from the start to the target. */
bool CDxKDTree::SkipBuilder::coverSkips(Skip& skip, unsigned int start) const {
    unsigned int id = start;
    for (unsigned int step = 0; step < stepCount; ++step) {
        Skip* part = tree_.nodeAt(id).skip;
        if (part == nullptr || part->level != skip.level - 1 ||
            !keepApart(skip, part->nearestBelow, part->nearestAbove)) {
            return false;
        }
        for (unsigned int axis = 0; axis < tree_.dimension_; ++axis) {
            double& lowest = skip.lowest(tree_.dimension_)[axis];
            skip.highest()[axis] = std::max(skip.highest()[axis], part->highest()[axis]);
            lowest = std::min(lowest, part->lowest(tree_.dimension_)[axis]);
        }
        id = part->target;
    }
    return id == skip.target;
}

/** Narrows the gap between projections around that of the target; false when it isn't between the two. */
bool CDxKDTree::SkipBuilder::keepApart(Skip& skip, double below, double above) const {
    const double projection = tree_.nodeAt(skip.target).projection;
    skip.nearestBelow = std::max(skip.nearestBelow, below);
    skip.nearestAbove = std::min(skip.nearestAbove, above);
    return below <= projection && projection < above;
}

} // namespace ImportCommon
