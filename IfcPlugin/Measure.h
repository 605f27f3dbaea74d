/**
 * @file Measure.h
 * The numbers that make a version.
 */
#pragma once

#include <ImportCommon/ExternalVersion.h>

#include <IfcReader/Shape.h>

#include <array>

/** Measurements of a shape, in metres and relative to its origin. */
struct Measurement {
    IfcReader::Point low; ///< corners of the bounding box
    IfcReader::Point high;
    std::array<double, 8>
        radii{};               ///< largest distance from the box's centre in each octant, numbered as in a spatial hash
    double volume = 0.0;       ///< of the closed parts; 0 when there are none
    IfcReader::Point centroid; ///< of the volume

    IfcReader::Point centre() const { return {(low.x + high.x) * 0.5, (low.y + high.y) * 0.5, (low.z + high.z) * 0.5}; }
};

/** Measures a shape; one without vertices is a point in its origin. */
Measurement measure(const IfcReader::Shape& shape);

/** A solid version, or a geometry version of a shape that encloses nothing. */
ImportCommon::ExternalVersion versionOf(const Measurement& measurement, const IfcReader::Point& origin);
