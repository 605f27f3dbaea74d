/**
 * @file PointMerger.h
 * Gives points numbers; those that are nearly in one place get the same.
 */
#pragma once

#include "geometry/Vector.h"

#include <cstdint>
#include <vector>

namespace IfcReader {

/** The result depends on the order of the points alone. Takes constant time for each. */
class PointMerger {
public:
    /** @param distance points at most this far apart are one, in metres. @param expected about how many come */
    PointMerger(double distance, std::size_t expected);

    std::uint32_t numberOf(const Vector& p);
    const std::vector<Vector>& points() const { return points_; }

private:
    struct Cell {
        std::int64_t x;
        std::int64_t y;
        std::int64_t z;
    };

    std::int64_t cellOf(double value) const;
    Cell cellOf(const Vector& p) const { return {cellOf(p.x), cellOf(p.y), cellOf(p.z)}; }
    std::size_t slotOf(const Cell& cell) const;
    std::uint32_t findIn(const Cell& cell, const Vector& p) const;
    std::uint32_t findNear(const Vector& p) const;
    std::uint32_t add(const Cell& cell, const Vector& p);
    void grow();

    double distance_;
    double cellsPerMetre_;
    std::vector<Vector> points_;
    std::vector<std::uint32_t> next_;  ///< of the points in one slot
    std::vector<std::uint32_t> slots_; ///< a power of two
};

} // namespace IfcReader
