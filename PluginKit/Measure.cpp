#include <PluginKit/Measure.h>
#include <PluginKit/Polygons.h>

#include <algorithm>
#include <cmath>

namespace PluginKit {

namespace {

using Vector = std::array<double, 3>;

/** A vertex this near to a plane through the centre is on it: rounding must not take it to the other side. */
constexpr double planeThickness = 1e-6;

/** Less than a cubic millimetre is no volume but the rounding of a flat surface. */
constexpr double smallestVolume = 1e-9;

/** How far the sums of a closed surface may be off, as a part of the sums of their absolute values. */
constexpr double closedTolerance = 1e-6;

/**
 * Integrals over a surface with the outward normal n, relative to an origin. Those of a closed surface obey the
 * divergence theorem: the integral of n is zero, and that of x_i n_j is the volume where i = j, and else zero. Both are
 * asked for, since a tube without its ends passes the first alone.
 */
struct SurfaceIntegrals {
    Vector normal{};
    std::array<Vector, 3> positionTimesNormal{};
    Vector moment{}; ///< of the volume
    double area = 0.0;
    double extent = 0.0; ///< greatest distance from the origin

    void addTriangle(const Vector& a, const Vector& b, const Vector& c) {
        Vector cross{}; // twice the area, along the normal
        double determinant = 0.0;
        for (std::size_t k = 0; k < 3; ++k) {
            const std::size_t u = (k + 1) % 3;
            const std::size_t v = (k + 2) % 3;
            cross[k] = (b[u] - a[u]) * (c[v] - a[v]) - (b[v] - a[v]) * (c[u] - a[u]);
            determinant += a[k] * cross[k];
        }
        area += std::hypot(cross[0], cross[1], cross[2]) / 2;
        for (std::size_t i = 0; i < 3; ++i) {
            const double sum = a[i] + b[i] + c[i];
            normal[i] += cross[i] / 2;
            moment[i] += determinant / 6 * sum / 4; // centroid of the tetrahedron on the origin
            for (std::size_t j = 0; j < 3; ++j) {
                positionTimesNormal[i][j] += sum / 3 * cross[j] / 2;
            }
        }
        extent = std::max(
            {extent, std::hypot(a[0], a[1], a[2]), std::hypot(b[0], b[1], b[2]), std::hypot(c[0], c[1], c[2])});
    }

    void add(const SurfaceIntegrals& other) {
        area += other.area;
        extent = std::max(extent, other.extent);
        for (std::size_t i = 0; i < 3; ++i) {
            normal[i] += other.normal[i];
            moment[i] += other.moment[i];
            for (std::size_t j = 0; j < 3; ++j) {
                positionTimesNormal[i][j] += other.positionTimesNormal[i][j];
            }
        }
    }

    double volume() const {
        return (positionTimesNormal[0][0] + positionTimesNormal[1][1] + positionTimesNormal[2][2]) / 3;
    }

    bool isClosed() const {
        bool closed = true;
        for (std::size_t i = 0; i < 3; ++i) {
            closed = closed && std::fabs(normal[i]) <= closedTolerance * area;
            for (std::size_t j = 0; j < 3; ++j) {
                const double expected = i == j ? volume() : 0.0;
                closed = closed && std::fabs(positionTimesNormal[i][j] - expected) <= closedTolerance * area * extent;
            }
        }
        return closed;
    }
};

Vector difference(const Vector& a, const Vector& b) {
    return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}

SurfaceIntegrals integralsOf(const SolidSurface& surface, const Vector& origin) {
    std::vector<std::uint32_t> triangles;
    std::size_t first = 0;
    for (const std::uint32_t size : surface.sizes) {
        triangulate(surface.vertices, surface.corners.data() + first, size, triangles);
        first += size;
    }
    SurfaceIntegrals integrals;
    for (std::size_t i = 0; i + 2 < triangles.size(); i += 3) {
        integrals.addTriangle(difference(surface.vertices[triangles[i]], origin),
                              difference(surface.vertices[triangles[i + 1]], origin),
                              difference(surface.vertices[triangles[i + 2]], origin));
    }
    return integrals;
}

const Vector& firstVertexOf(const std::vector<SolidSurface>& surfaces) {
    return std::find_if(surfaces.begin(), surfaces.end(), [](const SolidSurface& s) { return !s.vertices.empty(); })
        ->vertices.front();
}

std::size_t octantOf(const Vector& offset) {
    return (offset[0] > planeThickness ? 1u : 0u) + (offset[1] > planeThickness ? 2u : 0u) +
           (offset[2] > planeThickness ? 4u : 0u);
}

} // namespace

std::array<double, 3> Measurement::centre() const {
    return {low[0] + (high[0] - low[0]) / 2, low[1] + (high[1] - low[1]) / 2, low[2] + (high[2] - low[2]) / 2};
}

Measurement measure(const std::vector<SolidSurface>& surfaces) {
    const Vector origin = firstVertexOf(surfaces);
    Measurement result;
    result.low = result.high = origin;
    SurfaceIntegrals all;
    SurfaceIntegrals closed;
    for (const SolidSurface& surface : surfaces) {
        for (const Vector& vertex : surface.vertices) {
            for (std::size_t axis = 0; axis < 3; ++axis) {
                result.low[axis] = std::min(result.low[axis], vertex[axis]);
                result.high[axis] = std::max(result.high[axis], vertex[axis]);
            }
        }
        const SurfaceIntegrals integrals = integralsOf(surface, origin);
        all.add(integrals);
        if (integrals.isClosed()) {
            closed.add(integrals);
        }
    }
    const SurfaceIntegrals& body = all.isClosed() ? all : closed;
    if (body.volume() > smallestVolume) {
        result.volume = body.volume();
        for (std::size_t axis = 0; axis < 3; ++axis) {
            result.centroid[axis] = origin[axis] + body.moment[axis] / result.volume;
        }
    }

    const Vector centre = result.centre();
    for (const SolidSurface& surface : surfaces) {
        for (const Vector& vertex : surface.vertices) {
            const Vector offset = difference(vertex, centre);
            double& radius = result.radii[octantOf(offset)];
            radius = std::max(radius, std::hypot(offset[0], offset[1], offset[2]));
        }
    }
    return result;
}

ImportCommon::ExternalVersion versionOf(const Measurement& measurement) {
    const Vector box = difference(measurement.high, measurement.low);
    if (measurement.volume == 0.0) {
        return ImportCommon::createFromGeometry(box[0], box[1], box[2], measurement.radii.data());
    }
    return ImportCommon::createFromSolid(box[0], box[1], box[2], measurement.radii.data(), measurement.volume,
                                         measurement.centroid.data());
}

ImportCommon::ExternalGUID spatialHashOf(const std::vector<SolidSurface>& surfaces) {
    std::vector<double> coordinates;
    for (const SolidSurface& surface : surfaces) {
        for (const Vector& vertex : surface.vertices) {
            coordinates.insert(coordinates.end(), vertex.begin(), vertex.end());
        }
    }
    return ImportCommon::ExternalGUID::spatialHashFromVertexes(static_cast<unsigned int>(coordinates.size() / 3),
                                                               coordinates.data());
}

} // namespace PluginKit
