/**
 * @file BentPath.h
 * The directions of a path around its corners.
 */
#pragma once

#include "geometry/Body.h"

namespace IfcReader {

/** A path of at least two points, no two neighbours alike. One that ends where it began goes on at its start. */
class BentPath {
public:
    explicit BentPath(Loop points);

    std::size_t size() const { return points_.size(); }
    const Vector& operator[](std::size_t i) const { return points_[i]; }
    bool closed() const { return closed_; }

    /**
     * The direction in which corner @p i is reached, and that in which it is left. Where a path that was drawn as an
     * arc begins or ends, the arc is thought to go on: the mean of both is the arc's own direction there.
     */
    Vector before(std::size_t i) const;
    Vector after(std::size_t i) const;

    /** Normal of the plane that halves the bend at corner @p i. */
    Vector normal(std::size_t i) const { return normalized(before(i) + after(i)); }

private:
    Vector edge(std::size_t i) const { return normalized(points_[i + 1] - points_[i]); }

    Loop points_;
    bool closed_;
};

} // namespace IfcReader
