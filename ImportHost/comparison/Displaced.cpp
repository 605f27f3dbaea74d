#include "comparison/Displaced.h"

#include "comparison/Rotation.h"

Vector3 displaced(const Vector3& point, const Displacement& whole) {
    constexpr double radiansPerDegree = 3.141592653589793 / 180.0;
    return rotated(point, rotationAbout(whole.axis, whole.turn * radiansPerDegree)) + whole.shift;
}
