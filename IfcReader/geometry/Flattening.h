/**
 * @file Flattening.h
 * Faces seen along the axis that they face most: nothing is rounded, what coincides still does.
 */
#pragma once

#include "geometry/Vector.h"

#include <cmath>

namespace IfcReader {

struct Flat {
    double x = 0.0;
    double y = 0.0;

    bool operator==(const Flat& b) const { return x == b.x && y == b.y; }
};

/** Twice the area of a triangle; positive when it runs counter-clockwise. */
inline double turn(const Flat& a, const Flat& b, const Flat& c) {
    return (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
}

/** Leaves out the coordinate in which @p normal is longest; what is counter-clockwise around it stays so. */
class Flattening {
public:
    explicit Flattening(const Vector& normal) {
        const double x = std::abs(normal.x);
        const double y = std::abs(normal.y);
        const double z = std::abs(normal.z);
        axis_ = z >= x && z >= y ? 2 : (y >= x ? 1 : 0);
        mirrored_ = (axis_ == 2 ? normal.z : axis_ == 1 ? normal.y : normal.x) < 0.0;
    }
    Flat operator()(const Vector& p) const {
        const Flat flat = axis_ == 2 ? Flat{p.x, p.y} : axis_ == 1 ? Flat{p.z, p.x} : Flat{p.y, p.z};
        return mirrored_ ? Flat{flat.y, flat.x} : flat;
    }

private:
    int axis_;
    bool mirrored_;
};

} // namespace IfcReader
