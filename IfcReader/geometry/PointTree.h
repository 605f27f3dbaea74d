/**
 * @file PointTree.h
 * Finds the points that lie on an edge.
 */
#pragma once

#include "geometry/Vector.h"

#include <cstdint>
#include <vector>

namespace IfcReader {

/** Some of the points in an array, as a tree: each part is halved along its longest side. */
class PointTree {
public:
    /** @param points outlives this. @param chosen the numbers of those that can be found */
    PointTree(const std::vector<Vector>& points, std::vector<std::uint32_t> chosen);

    /**
     * Calls @p visit with the number of each point that may lie within @p distance of the edge from @p a to @p b: all
     * that do, and some that don't.
     */
    template <typename Visitor>
    void forEachNear(const Vector& a, const Vector& b, double distance, Visitor visit) const {
        visitRange(0, chosen_.size(), a, b, distance, visit);
    }

private:
    static double coordinate(const Vector& p, int axis) { return axis == 0 ? p.x : axis == 1 ? p.y : p.z; }
    int longestSide(std::size_t begin, std::size_t end) const;
    void sort(std::size_t begin, std::size_t end);

    template <typename Visitor>
    void visitRange(std::size_t begin, std::size_t end, Vector a, Vector b, double distance, Visitor& visit) const {
        while (begin < end) {
            const std::size_t middle = begin + (end - begin) / 2;
            const int axis = axes_[middle];
            const double value = coordinate(points_[chosen_[middle]], axis);
            const double from = coordinate(a, axis);
            const double to = coordinate(b, axis);
            const bool low = from <= value + distance || to <= value + distance;
            const bool high = from >= value - distance || to >= value - distance;
            if (low && high) {
                visit(chosen_[middle]);
                // Each half only has to be searched along its own part of the edge.
                const double wide = distance * 2.0;
                Vector lowA = a;
                Vector lowB = b;
                clip(lowA, lowB, axis, value + wide, false);
                visitRange(begin, middle, lowA, lowB, distance, visit);
                clip(a, b, axis, value - wide, true);
                begin = middle + 1;
            } else {
                begin = low ? begin : middle + 1;
                end = low ? middle : end;
            }
        }
    }
    static void clip(Vector& a, Vector& b, int axis, double value, bool above);

    const std::vector<Vector>& points_;
    std::vector<std::uint32_t> chosen_;
    std::vector<std::uint8_t> axes_; ///< along which a part is halved, at its middle
};

} // namespace IfcReader
