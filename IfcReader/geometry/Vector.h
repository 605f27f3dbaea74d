/**
 * @file Vector.h
 * Points, directions and affine maps in double precision.
 */
#pragma once

#include <cmath>

namespace IfcReader {

struct Vector {
    double x = 0.0;
    double y = 0.0;
    double z = 0.0;

    Vector operator+(const Vector& b) const { return {x + b.x, y + b.y, z + b.z}; }
    Vector operator-(const Vector& b) const { return {x - b.x, y - b.y, z - b.z}; }
    Vector operator-() const { return {-x, -y, -z}; }
    Vector operator*(double factor) const { return {x * factor, y * factor, z * factor}; }
    Vector& operator+=(const Vector& b) { return *this = *this + b; }
    bool operator==(const Vector& b) const { return x == b.x && y == b.y && z == b.z; }
};

inline double dot(const Vector& a, const Vector& b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

inline Vector cross(const Vector& a, const Vector& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

inline double length(const Vector& a) {
    return std::sqrt(dot(a, a));
}

/** The direction of @p a; a null vector stays one. */
inline Vector normalized(const Vector& a) {
    const double size = length(a);
    return size > 0.0 ? a * (1.0 / size) : a;
}

/** Some direction at a right angle to @p direction, which has length 1. */
inline Vector perpendicular(const Vector& direction) {
    return normalized(cross(direction, std::abs(direction.x) < 0.7 ? Vector{1, 0, 0} : Vector{0, 1, 0}));
}

/** How far from an origin anything may stand, in metres: beyond, neither places nor volumes mean anything. */
constexpr double farthestPlace = 1e9;

/** Whether anything may stand at @p p; false for what isn't finite. */
inline bool isWithinReach(const Vector& p) {
    return std::abs(p.x) <= farthestPlace && std::abs(p.y) <= farthestPlace && std::abs(p.z) <= farthestPlace;
}

/** An affine map: what becomes of the three axes and of the origin. */
struct Affine {
    Vector x{1, 0, 0};
    Vector y{0, 1, 0};
    Vector z{0, 0, 1};
    Vector origin;

    Vector turn(const Vector& v) const { return x * v.x + y * v.y + z * v.z; }
    Vector operator()(const Vector& p) const { return turn(p) + origin; }
    /** First @p b, then this. */
    Affine operator*(const Affine& b) const { return {turn(b.x), turn(b.y), turn(b.z), (*this)(b.origin)}; }
    double determinant() const { return dot(cross(x, y), z); }
    bool isIdentity() const {
        return x == Vector{1, 0, 0} && y == Vector{0, 1, 0} && z == Vector{0, 0, 1} && origin == Vector{};
    }
    /** REQUIRES: determinant() is not 0. */
    Affine inverse() const;
};

inline Affine Affine::inverse() const {
    const double factor = 1.0 / determinant();
    const Vector a = cross(y, z) * factor;
    const Vector b = cross(z, x) * factor;
    const Vector c = cross(x, y) * factor;
    Affine result{{a.x, b.x, c.x}, {a.y, b.y, c.y}, {a.z, b.z, c.z}, {}};
    result.origin = -result.turn(origin);
    return result;
}

} // namespace IfcReader
