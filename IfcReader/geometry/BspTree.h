/**
 * @file BspTree.h
 * A body as a tree of planes, which tells what of a polygon lies inside of it.
 */
#pragma once

#include "geometry/FlatPolygon.h"
#include "geometry/Work.h"

#include <cstdint>

namespace IfcReader {

/** What is kept of a polygon. */
struct Keep {
    enum class OnSurface {
        innerSide, ///< where it lies on the body's surface, its side turned away from its normal decides
        outerSide, ///< the side that its normal points to decides
        bothSides  ///< both sides have to be kept
    };

    bool inside = false; ///< what lies inside the body, else what lies outside
    OnSurface onSurface = OnSurface::bothSides;
};

class BspTree {
public:
    /** @param polygons those of a body, or of a body's part in some convex region. @throw LimitError */
    BspTree(std::vector<FlatPolygon> polygons, double thickness, Work& work);

    /**
     * Appends what is kept of @p polygon: whether that is all of it, which is then appended as it is.
     * REQUIRES: the tree was made of some polygon. @throw LimitError
     */
    bool clip(const FlatPolygon& polygon, const Keep& keep, std::vector<FlatPolygon>& kept) const {
        return clip(root_, polygon, keep, kept);
    }

private:
    using Index = std::int32_t;
    static constexpr Index nothing = -1;
    /** The recursion follows the tree; one this deep still fits any thread's stack. */
    static constexpr int deepest = 4000;

    struct Node {
        Plane plane;
        bool halves = false; ///< it only parts space between the polygons; no face lies in it
        Index front = nothing;
        Index back = nothing;
    };

    Index build(std::vector<FlatPolygon> polygons, int depth);
    Plane halvingPlane(const std::vector<FlatPolygon>& polygons) const;
    std::size_t bestOf(const std::vector<FlatPolygon>& polygons) const;
    bool clip(Index node, const FlatPolygon& polygon, const Keep& keep, std::vector<FlatPolygon>& kept) const;
    bool clipBeside(Index node, bool front, const FlatPolygon& polygon, const Keep& keep,
                    std::vector<FlatPolygon>& kept) const;

    double thickness_;
    Work& work_;
    std::vector<Node> nodes_;
    Index root_ = nothing;
};

} // namespace IfcReader
