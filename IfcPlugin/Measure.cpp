#include "Measure.h"

#include <algorithm>
#include <cmath>

using IfcReader::Point;
using IfcReader::Shape;
using IfcReader::ShapePart;

namespace {

/** A vertex this near to a plane through the centre is on it: rounding must not take it to the other side. */
constexpr double planeThickness = 1e-6;

/** Less than a cubic millimetre is no volume but the rounding of a flat surface. */
constexpr double smallestVolume = 1e-9;

Point operator-(const Point& a, const Point& b) {
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}

std::size_t octantOf(const Point& offset) {
    return (offset.x > planeThickness ? 1u : 0u) + (offset.y > planeThickness ? 2u : 0u) +
           (offset.z > planeThickness ? 4u : 0u);
}

/** Adds the volume of the part, and its centroid times the volume: tetrahedra from a point to all triangles. */
void addEnclosed(const ShapePart& part, const Point& from, double& volume, Point& moment) {
    const std::uint32_t* polygon = part.corners.data();
    for (const std::uint32_t size : part.sizes) {
        const Point a = part.vertices[polygon[0]] - from;
        for (std::uint32_t i = 2; i < size; ++i) {
            const Point b = part.vertices[polygon[i - 1]] - from;
            const Point c = part.vertices[polygon[i]] - from;
            const double sixth =
                (a.x * (b.y * c.z - b.z * c.y) + a.y * (b.z * c.x - b.x * c.z) + a.z * (b.x * c.y - b.y * c.x)) / 6.0;
            volume += sixth;
            moment.x += sixth * (a.x + b.x + c.x) * 0.25;
            moment.y += sixth * (a.y + b.y + c.y) * 0.25;
            moment.z += sixth * (a.z + b.z + c.z) * 0.25;
        }
        polygon += size;
    }
}

} // namespace

Measurement measure(const Shape& shape) {
    Measurement result;
    bool isFirst = true;
    for (const ShapePart& part : shape.parts) {
        for (const Point& v : part.vertices) {
            result.low =
                isFirst ? v
                        : Point{std::min(result.low.x, v.x), std::min(result.low.y, v.y), std::min(result.low.z, v.z)};
            result.high = isFirst ? v
                                  : Point{std::max(result.high.x, v.x), std::max(result.high.y, v.y),
                                          std::max(result.high.z, v.z)};
            isFirst = false;
        }
    }

    const Point centre = result.centre();
    Point moment;
    for (const ShapePart& part : shape.parts) {
        for (const Point& v : part.vertices) {
            const Point offset = v - centre;
            double& radius = result.radii[octantOf(offset)];
            radius = std::max(radius, std::hypot(offset.x, offset.y, offset.z));
        }
        if (part.closed) {
            addEnclosed(part, centre, result.volume, moment);
        }
    }
    if (result.volume > smallestVolume) {
        result.centroid = {centre.x + moment.x / result.volume, centre.y + moment.y / result.volume,
                           centre.z + moment.z / result.volume};
    } else {
        result.volume = 0.0;
    }
    return result;
}

ImportCommon::ExternalVersion versionOf(const Measurement& measurement, const Point& origin) {
    const Point box = measurement.high - measurement.low;
    if (measurement.volume == 0.0) {
        return ImportCommon::createFromGeometry(box.x, box.y, box.z, measurement.radii.data());
    }
    const double centroid[3] = {measurement.centroid.x + origin.x, measurement.centroid.y + origin.y,
                                measurement.centroid.z + origin.z};
    return ImportCommon::createFromSolid(box.x, box.y, box.z, measurement.radii.data(), measurement.volume, centroid);
}
