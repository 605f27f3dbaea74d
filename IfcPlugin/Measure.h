/**
 * @file Measure.h
 * The numbers that make a version.
 */
#pragma once

#include "Surface.h"

#include <ImportCommon/ExternalVersion.h>

#include <array>
#include <vector>

/** Measurements of a product's surfaces, in metres and relative to the product's origin. */
struct Measurement {
    Vector low; ///< corners of the bounding box
    Vector high;
    std::array<double, 8>
        radii{};         ///< largest distance from the box's centre in each octant, numbered as in a spatial hash
    double volume = 0.0; ///< 0 when the surfaces enclose nothing
    Vector centroid;     ///< of the volume

    Vector centre() const { return (low + high) * 0.5; }
};

Measurement measure(const std::vector<Surface>& surfaces);

/** A solid version, or a geometry version of surfaces that enclose nothing. */
ImportCommon::ExternalVersion versionOf(const Measurement& measurement, const Vector& origin);
