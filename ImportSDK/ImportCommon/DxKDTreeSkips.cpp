#include "DxKDTreeSkips.h"

#include <cstdlib>
#include <memory>
#include <new>
#include <utility>

namespace ImportCommon {

/** What is known about the vectors that come to a node, and about the projections of nodes above it. */
struct CDxKDTree::SkipBuilder::Cell {
    struct Side {
        double high; // the largest component of the nodes that they leave on the high side
        double low;  // the smallest one of those that they leave on the low side
    };

    Side* sides; // for each axis
    double projection;
    double nearestBelow = -HUGE_VAL;
    double nearestAbove = HUGE_VAL;

    void addBound(const Skip::Bound& bound) {
        Side& side = sides[bound.axis];
        // A split that is not a number doesn't count: whatever is compared with it goes to the low side.
        (bound.isHigh ? side.high : side.low) =
            bound.isHigh ? std::fmax(side.high, bound.split) : std::fmin(side.low, bound.split);
    }
    void addProjections(double below, double above) {
        nearestBelow = std::max(nearestBelow, below);
        nearestAbove = std::min(nearestAbove, above);
    }
};

void CDxKDTree::SkipBuilder::finish(unsigned int target, const Query& query, const Way& way) {
    for (unsigned int level = 0; level < levels && way.depth % lengthOf(level) == 0; ++level) {
        Skip skip{target, level, way.depth, way.axis, nullptr, nullptr, 0, 0, 0};
        if (!addSkip(starts_[level], query, skip)) {
            return;
        }
    }
}

/** Adds a copy of a skip with its bounds. False when there is one of its level already, or without memory. */
bool CDxKDTree::SkipBuilder::addSkip(unsigned int start, const Query& query, const Skip& skip) {
    Node_s& node = tree_.nodeAt(start);
    if (node.skip != nullptr && node.skip->level >= skip.level) {
        return false;
    }
    const std::size_t dimension = tree_.dimension_;
    const auto release = [](Cell::Side* sides) { std::free(sides); };
    const std::unique_ptr<Cell::Side, decltype(release)> sides(
        static_cast<Cell::Side*>(std::malloc(2 * dimension * sizeof(Cell::Side))), release);
    if (sides == nullptr) {
        return false;
    }
    Cell atStart{sides.get(), query.projection};
    Cell atTarget{sides.get() + dimension, query.projection};
    const unsigned int startDepth = skip.depth - lengthOf(skip.level);
    std::fill_n(atStart.sides, dimension, Cell::Side{-HUGE_VAL, HUGE_VAL});
    walk(0, 0, query, startDepth, atStart);
    std::copy_n(atStart.sides, dimension, atTarget.sides);
    walk(start, startDepth, query, skip.depth, atTarget);

    std::size_t boundCount = 0;
    for (unsigned int axis = 0; axis < dimension; ++axis) {
        boundCount += atTarget.sides[axis].high > atStart.sides[axis].high ? 1 : 0;
        boundCount += atTarget.sides[axis].low < atStart.sides[axis].low ? 1 : 0;
    }
    void* memory = std::malloc(sizeof(Skip) + boundCount * sizeof(Skip::Bound));
    if (memory == nullptr) {
        return false;
    }
    Skip* added = new (memory) Skip(skip);
    added->shorter = std::exchange(node.skip, added);
    added->allocatedBefore = std::exchange(tree_.skips_, added);
    added->nearestBelow = atTarget.nearestBelow;
    added->nearestAbove = atTarget.nearestAbove;
    added->boundCount = boundCount;
    Skip::Bound* bound = added->bounds();
    for (unsigned int axis = 0; axis < dimension; ++axis) {
        if (atTarget.sides[axis].high > atStart.sides[axis].high) {
            new (bound++) Skip::Bound{atTarget.sides[axis].high, axis, true};
        }
        if (atTarget.sides[axis].low < atStart.sides[axis].low) {
            new (bound++) Skip::Bound{atTarget.sides[axis].low, axis, false};
        }
    }
    return true;
}

/** Goes from a node to one that the vector comes to, and adds what is in between to a cell. */
void CDxKDTree::SkipBuilder::walk(unsigned int start, unsigned int startDepth, const Query& query,
                                  unsigned int endDepth, Cell& cell) const {
    unsigned int id = start;
    unsigned int depth = startDepth;
    while (depth < endDepth) {
        const Node_s& node = tree_.nodeAt(id);
        Skip* skip = node.skip;
        while (skip != nullptr && (skip->depth > endDepth || !skip->isFor(query))) {
            skip = skip->shorter;
        }
        if (skip != nullptr) {
            std::for_each_n(skip->bounds(), skip->boundCount,
                            [&cell](const Skip::Bound& bound) { cell.addBound(bound); });
            cell.addProjections(skip->nearestBelow, skip->nearestAbove);
            id = skip->target;
            depth = skip->depth;
            continue;
        }
        // A projection that is not a number changes nothing: no vector that may take a skip matches its node.
        const bool isBelow = node.projection <= cell.projection;
        cell.addProjections(isBelow ? node.projection : -HUGE_VAL, isBelow ? HUGE_VAL : node.projection);
        const unsigned int axis = depth % tree_.dimension_;
        const bool isHigh = isHighSide(query.vector[axis], node.split);
        cell.addBound({node.split, axis, isHigh});
        id = isHigh ? node.high : node.low;
        ++depth;
    }
}

} // namespace ImportCommon
