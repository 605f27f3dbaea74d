#include "geometry/BspTree.h"

#include <algorithm>

namespace IfcReader {

BspTree::BspTree(std::vector<FlatPolygon> polygons, double thickness, Work& work) : thickness_(thickness), work_(work) {
    root_ = build(std::move(polygons), 0);
}

/** Of some polygons, the one whose plane cuts few others and has about as many on either side. */
std::size_t BspTree::bestOf(const std::vector<FlatPolygon>& polygons) const {
    constexpr std::size_t mostTries = 7;
    const std::size_t tries = std::min(polygons.size(), mostTries);
    std::size_t best = 0;
    std::size_t leastCost = SIZE_MAX;
    for (std::size_t t = 0; t < tries; ++t) {
        const std::size_t i = t * polygons.size() / tries;
        std::size_t cost = 0;
        std::size_t front = 0;
        std::size_t back = 0;
        for (const FlatPolygon& polygon : polygons) {
            const Side side = sideOf(polygon, polygons[i].plane, thickness_);
            cost += side == across ? 4 : 0;
            front += side == inFront ? 1 : 0;
            back += side == behind ? 1 : 0;
        }
        cost += std::max(front, back) - std::min(front, back);
        if (cost < leastCost) {
            leastCost = cost;
            best = i;
        }
    }
    return best;
}

/**
 * A plane at a right angle to an axis that has about as many polygons on either side and goes through no corner; none
 * for few polygons, or where most lie across. A round body has no face whose plane others lie in front of: without such
 * planes its tree would be one long chain.
 */
Plane BspTree::halvingPlane(const std::vector<FlatPolygon>& polygons) const {
    constexpr std::size_t fewPolygons = 48;
    if (polygons.size() < fewPolygons) {
        return {};
    }
    Plane best;
    std::size_t leastCost = polygons.size() * 3 / 4;
    for (const Vector& axis : {Vector{1, 0, 0}, Vector{0, 1, 0}, Vector{0, 0, 1}}) {
        std::vector<double> corners;
        for (const FlatPolygon& polygon : polygons) {
            for (const Vector& p : polygon.points) {
                corners.push_back(dot(axis, p));
            }
        }
        std::sort(corners.begin(), corners.end());
        std::size_t widest = corners.size() / 3;
        for (std::size_t i = widest; i < corners.size() * 2 / 3; ++i) {
            widest = corners[i + 1] - corners[i] > corners[widest + 1] - corners[widest] ? i : widest;
        }
        const Plane plane{axis, (corners[widest] + corners[widest + 1]) / 2.0};
        std::size_t front = 0;
        std::size_t back = 0;
        for (const FlatPolygon& polygon : polygons) {
            const Side side = sideOf(polygon, plane, thickness_);
            front += (side & inFront) != 0 ? 1 : 0;
            back += (side & behind) != 0 ? 1 : 0;
        }
        const bool isClear = corners[widest + 1] - corners[widest] > 4.0 * thickness_;
        if (isClear && front > 0 && back > 0 && std::max(front, back) < leastCost) {
            leastCost = std::max(front, back);
            best = plane;
        }
    }
    return best;
}

BspTree::Index BspTree::build(std::vector<FlatPolygon> polygons, int depth) {
    if (polygons.empty()) {
        return nothing;
    }
    if (depth > deepest) {
        throw LimitError("a body with too many faces to be cut");
    }
    work_.add(polygons.size() * 8);
    Plane plane = halvingPlane(polygons);
    const bool halves = plane.isKnown();
    const std::size_t best = halves ? polygons.size() : bestOf(polygons);
    plane = halves ? plane : polygons[best].plane;
    const Index index = static_cast<Index>(nodes_.size());
    nodes_.push_back({plane, halves});
    std::vector<FlatPolygon> front;
    std::vector<FlatPolygon> back;
    for (std::size_t i = 0; i < polygons.size(); ++i) {
        const Side side = i == best ? onPlane : sideOf(polygons[i], plane, thickness_);
        if (side == inFront) {
            front.push_back(std::move(polygons[i]));
        } else if (side == behind) {
            back.push_back(std::move(polygons[i]));
        } else if (side == across) {
            front.emplace_back();
            back.emplace_back();
            split(polygons[i], plane, thickness_, front.back(), back.back());
        }
    }
    std::vector<FlatPolygon>().swap(polygons);
    const Index frontNode = build(std::move(front), depth + 1);
    const Index backNode = build(std::move(back), depth + 1);
    nodes_[static_cast<std::size_t>(index)].front = frontNode;
    nodes_[static_cast<std::size_t>(index)].back = backNode;
    return index;
}

/** Both say whether the polygon was kept whole. */
bool BspTree::clipBeside(Index node, bool front, const FlatPolygon& polygon, const Keep& keep,
                         std::vector<FlatPolygon>& kept) const {
    const Node& parent = nodes_[static_cast<std::size_t>(node)];
    const Index child = front ? parent.front : parent.back;
    if (child != nothing) {
        return clip(child, polygon, keep, kept);
    }
    if (keep.inside == front) {
        return false;
    }
    kept.push_back(polygon);
    return true;
}

bool BspTree::clip(Index node, const FlatPolygon& polygon, const Keep& keep, std::vector<FlatPolygon>& kept) const {
    work_.add(polygon.points.size());
    const Plane& plane = nodes_[static_cast<std::size_t>(node)].plane;
    const Side side = sideOf(polygon, plane, thickness_);
    if (side == onPlane && nodes_[static_cast<std::size_t>(node)].halves) {
        return clipBeside(node, true, polygon, keep, kept); // what is on either side of the plane is the same there
    }
    if (side == onPlane) {
        const bool alike = dot(polygon.plane.normal, plane.normal) > 0.0;
        if (keep.onSurface != Keep::OnSurface::bothSides) {
            const bool front = (keep.onSurface == Keep::OnSurface::outerSide) == alike;
            return clipBeside(node, front, polygon, keep, kept);
        }
        std::vector<FlatPolygon> keptInFront;
        bool whole = clipBeside(node, true, polygon, keep, keptInFront);
        for (const FlatPolygon& part : keptInFront) {
            whole &= clipBeside(node, false, part, keep, kept);
        }
        return whole;
    }
    if (side != across) {
        return clipBeside(node, side == inFront, polygon, keep, kept);
    }
    FlatPolygon front;
    FlatPolygon back;
    split(polygon, plane, thickness_, front, back);
    const std::size_t before = kept.size();
    const bool frontWhole = clipBeside(node, true, front, keep, kept);
    const bool backWhole = clipBeside(node, false, back, keep, kept);
    if (!frontWhole || !backWhole) {
        return false;
    }
    kept.resize(before);
    kept.push_back(polygon);
    return true;
}

} // namespace IfcReader
