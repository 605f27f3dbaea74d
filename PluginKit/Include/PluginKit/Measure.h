/**
 * @file Measure.h
 * The numbers of a shape that make its version and its spatial hash.
 */
#pragma once

#include <ImportCommon/ExternalGUID.h>
#include <ImportCommon/ExternalVersion.h>

#include <PluginKit/Solids.h>

#include <array>
#include <vector>

namespace PluginKit {

/** In metres, in the world. */
struct Measurement {
    std::array<double, 3> low{}; ///< corners of the bounding box
    std::array<double, 3> high{};
    std::array<double, 8> radii{};    ///< greatest distance from the box's centre in each octant
    double volume = 0.0;              ///< 0 where the surfaces enclose nothing
    std::array<double, 3> centroid{}; ///< of the volume

    std::array<double, 3> centre() const;
};

/**
 * Measures the surfaces of one object. The volume is what all of them enclose together or, where something is open, what
 * those enclose that are closed by themselves. Numbers are relative to the first vertex while they are computed, so an
 * object far from the origin loses nothing.
 *
 * REQUIRES: at least one vertex.
 */
Measurement measure(const std::vector<SolidSurface>& surfaces);

/** A solid version, or a geometry version of surfaces that enclose nothing. */
ImportCommon::ExternalVersion versionOf(const Measurement& measurement);

/** The identity of a place and shape. REQUIRES: at least one vertex. */
ImportCommon::ExternalGUID spatialHashOf(const std::vector<SolidSurface>& surfaces);

} // namespace PluginKit
