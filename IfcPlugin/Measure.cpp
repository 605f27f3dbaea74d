#include "Measure.h"

#include <algorithm>
#include <cmath>

namespace {

/** A vertex this near to a plane through the centre is on it: rounding must not take it to the other side. */
constexpr double planeThickness = 1e-6;

/** Less than a cubic millimetre is no volume but the rounding of a flat surface. */
constexpr double smallestVolume = 1e-9;

std::size_t octantOf(const Vector& offset) {
    return (offset.x > planeThickness ? 1u : 0u) + (offset.y > planeThickness ? 2u : 0u) +
           (offset.z > planeThickness ? 4u : 0u);
}

} // namespace

Measurement measure(const std::vector<Surface>& surfaces) {
    Measurement result;
    result.low = result.high = surfaces.front().vertices.front();
    for (const Surface& surface : surfaces) {
        for (const Vector& v : surface.vertices) {
            result.low = Vector(std::min(result.low.x, v.x), std::min(result.low.y, v.y), std::min(result.low.z, v.z));
            result.high =
                Vector(std::max(result.high.x, v.x), std::max(result.high.y, v.y), std::max(result.high.z, v.z));
        }
    }

    const Vector centre = result.centre();
    Vector moment;
    for (const Surface& surface : surfaces) {
        for (const Vector& v : surface.vertices) {
            double& radius = result.radii[octantOf(v - centre)];
            radius = std::max(radius, (v - centre).Length());
        }
        const Enclosed enclosed = enclosedBy(surface);
        result.volume += enclosed.volume;
        moment += enclosed.moment;
    }
    if (result.volume > smallestVolume) {
        result.centroid = moment / result.volume;
    } else {
        result.volume = 0.0;
    }
    return result;
}

ImportCommon::ExternalVersion versionOf(const Measurement& measurement, const Vector& origin) {
    const Vector box = measurement.high - measurement.low;
    if (measurement.volume == 0.0) {
        return ImportCommon::createFromGeometry(box.x, box.y, box.z, measurement.radii.data());
    }

    const Vector centroid = measurement.centroid + origin;
    const double coordinates[3] = {centroid.x, centroid.y, centroid.z};
    return ImportCommon::createFromSolid(box.x, box.y, box.z, measurement.radii.data(), measurement.volume,
                                         coordinates);
}
