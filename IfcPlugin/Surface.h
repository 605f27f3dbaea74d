/**
 * @file Surface.h
 * The polygons of one mesh, and what they enclose.
 */
#pragma once

#include "IfcModel.h"

#include <cstdint>
#include <vector>

/** Polygons over shared vertices, in metres and z up, relative to the product's origin. */
struct Surface {
    using Polygon = std::vector<std::uint32_t>;

    unsigned int material = 0;
    std::vector<Vector> vertices;
    std::vector<Polygon> polygons;
};

/** The surface of a mesh: vertices less than a tenth of a millimetre apart are joined, those at no number left out. */
Surface surfaceOf(const ProductMesh& mesh, const Matrix& orientation);

/** A volume, and its centroid times the volume. */
struct Enclosed {
    double volume = 0.0;
    Vector moment;
};

/** What the closed pieces of a surface enclose; pieces with a hole in them enclose nothing. */
Enclosed enclosedBy(const Surface& surface);
