/**
 * @file DxKDTreeDescent.h
 * The nodes of a k-d tree and the way down through them. Private to the tree and to the test of its internals.
 *
 * Invariant: every node but the root is the child of the node where the descent of its vector ended when it was inserted.
 * A descent gives what the plain one would, which compares the whole vector at each node:
 * - A node is left out of the comparison only when its projection proves that it is no match.
 * - A skip is taken only when the plain descent would come to its target and match no node before.
 */
#pragma once

#include <ImportCommon/DxKDTree.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>

namespace ImportCommon {

constexpr double matchTolerance = 0.01;

/** A vector that is below a node by no more than this still goes to the node's high side. Stored ids depend on it. */
constexpr double highSideSlack = 0.04;

/** What is not a number goes to the low side. */
inline bool isHighSide(double component, double nodeComponent) {
    return component - nodeComponent >= -highSideSlack;
}

/** What a descent needs of a node that doesn't match, in half a cache line; the vector stands elsewhere. */
struct CDxKDTree::Node_s {
    double split;      // the vector's component on the axis of the node's depth
    double projection; // of the vector
    unsigned int high; // the children's ids; 0 for none, since the root is nobody's child
    unsigned int low;
    Skip* skip; // the longest one from here
};

struct CDxKDTree::Block {
    static constexpr unsigned int nodeCount = 1024;

    void* memory;
    Node_s* nodes;   // they begin at the start of a cache line
    double* vectors; // of the nodes, in their order
};

/**
 * A vector that is looked for, and its projection on a line.
 *
 * All weights of the projection are at most 1, so two projections differ by no more than the vectors' distance: nodes
 * whose projection is further away than the tolerance can't match. Rounding is allowed for in the reach; with components
 * that aren't finite, or so large that their sum isn't, it is not a number, and no comparison with it proves anything.
 */
struct CDxKDTree::Query {
    const double* vector;
    double projection = 0;
    double reach; // how far the projection of a match may be away

    Query(const double* wanted, unsigned int dimension) : vector(wanted) {
        constexpr double weightRatio =
            0.8955344; // nothing special: equal objects in a lattice get different projections
        double size = 1;
        for (unsigned int i = dimension; i-- > 0;) {
            projection = projection * weightRatio + vector[i];
            size += std::fabs(vector[i]);
        }
        const double rounding = 4 * (dimension + 1.0) * std::numeric_limits<double>::epsilon() * size;
        reach = std::isfinite(size) ? matchTolerance + rounding : std::numeric_limits<double>::quiet_NaN();
    }

    bool isApartFrom(double otherProjection) const { return std::fabs(projection - otherProjection) >= reach; }
};

/**
 * A short cut from a node to one that is 16, 256, ... levels below it. The bounds, which stand behind it, tell which of
 * the vectors that come to the node go all the way. Nodes neither move nor change sides, so a skip stays valid.
 */
struct alignas(double) CDxKDTree::Skip {
    /** The outermost of the nodes that split on one axis and that the way leaves on the same side. */
    struct Bound {
        double split;
        unsigned int axis;
        bool isHigh; // the side
    };

    unsigned int target;
    unsigned int level; // it leads over 16 skips of the level below, at level 0 over 16 nodes
    unsigned int depth; // of the target
    unsigned int axis;  // of the target
    Skip* shorter;      // the next shorter one from the same node
    Skip* allocatedBefore;
    double nearestBelow; // projections of nodes on the way: none lies between these two
    double nearestAbove;
    std::size_t boundCount;

    Bound* bounds() { return reinterpret_cast<Bound*>(this + 1); }

    bool isFor(const Query& query) {
        if (!(query.projection - nearestBelow >= query.reach && nearestAbove - query.projection >= query.reach)) {
            return false;
        }
        // Subtraction is monotonic, rounded or not: the outermost node speaks for all.
        return std::all_of(bounds(), bounds() + boundCount, [&query](const Bound& bound) {
            return isHighSide(query.vector[bound.axis], bound.split) == bound.isHigh;
        });
    }
};

/** Where a descent ended: at a match, or at a missing child. */
struct CDxKDTree::Way {
    unsigned int match; // or NotFound
    unsigned int* place = nullptr;
    unsigned int depth = 0; // of the missing child
    unsigned int axis = 0;
};

inline CDxKDTree::Node_s& CDxKDTree::nodeAt(unsigned int id) const {
    return blocks_[id / Block::nodeCount].nodes[id % Block::nodeCount];
}

inline double* CDxKDTree::vectorAt(unsigned int id) const {
    return blocks_[id / Block::nodeCount].vectors + static_cast<std::size_t>(id % Block::nodeCount) * dimension_;
}

inline bool CDxKDTree::matches(unsigned int id, const Query& query) const {
    const double* stored = vectorAt(id);
    double distance = 0;
    // No term is negative, so once the sum has reached the tolerance (or is not a number) it stays there.
    for (unsigned int i = 0; i < dimension_ && distance < matchTolerance; ++i) {
        distance += std::fabs(stored[i] - query.vector[i]);
    }
    return distance < matchTolerance;
}

/**
 * Goes down from the root, which must be there. A loop, since sorted input makes the tree one long chain.
 * @param observer  is told of each node on the way, with its depth, and of each skip that is taken
 */
template <typename Observer>
CDxKDTree::Way CDxKDTree::descend(const Query& query, Observer& observer) const {
    unsigned int id = 0;
    Way way{NotFound};
    do {
        Node_s& node = nodeAt(id);
        observer.onNode(id, way.depth);
        Skip* skip = node.skip;
        while (skip != nullptr && !skip->isFor(query)) {
            skip = skip->shorter;
        }
        if (skip != nullptr) {
            observer.onSkip(skip->level);
            id = skip->target;
            way.depth = skip->depth;
            way.axis = skip->axis;
            continue;
        }
        if (!query.isApartFrom(node.projection) && matches(id, query)) {
            way.match = id;
            return way;
        }
        if (__builtin_expect(isHighSide(query.vector[way.axis], node.split), 1)) {
            way.place = &node.high;
            id = node.high;
        } else {
            way.place = &node.low;
            id = node.low;
        }
        ++way.depth;
        way.axis = way.axis + 1 == dimension_ ? 0 : way.axis + 1;
    } while (id != 0);
    return way;
}

} // namespace ImportCommon
