/**
 * @file Geometry.h
 * The reader stores 32-bit floats; everything computed from them is computed in double precision.
 */
#pragma once

#include <assimp/matrix4x4.h>
#include <assimp/vector3.h>

using Vector = aiVector3t<double>;
using Matrix = aiMatrix4x4t<double>;

inline Matrix toDouble(const aiMatrix4x4& m) {
    return Matrix(m.a1, m.a2, m.a3, m.a4, m.b1, m.b2, m.b3, m.b4, m.c1, m.c2, m.c3, m.c4, m.d1, m.d2, m.d3, m.d4);
}

inline Vector toDouble(const aiVector3D& v) {
    return Vector(v.x, v.y, v.z);
}
