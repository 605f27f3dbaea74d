#include "geometry/FlatPolygon.h"

#include "geometry/Triangulation.h"

#include <algorithm>

namespace IfcReader {

namespace {

constexpr double noArea = 1e-12; ///< in square metres

bool isFlat(const Loop& loop, const Plane& plane, double thickness) {
    for (const Vector& p : loop) {
        if (std::abs(plane(p)) > thickness) {
            return false;
        }
    }
    return true;
}

} // namespace

Plane planeOf(const Loop& loop, const Vector& area) {
    Plane plane;
    plane.normal = normalized(area);
    Vector middle;
    for (const Vector& p : loop) {
        middle += (p - loop[0]) * (1.0 / static_cast<double>(loop.size()));
    }
    plane.distance = dot(plane.normal, loop[0] + middle);
    return plane;
}

Side sideOf(const FlatPolygon& polygon, const Plane& plane, double thickness) {
    unsigned side = onPlane;
    for (const Vector& p : polygon.points) {
        const double distance = plane(p);
        side |= distance > thickness ? inFront : distance < -thickness ? behind : onPlane;
    }
    return static_cast<Side>(side);
}

void split(const FlatPolygon& polygon, const Plane& plane, double thickness, FlatPolygon& front, FlatPolygon& back) {
    front.plane = back.plane = polygon.plane;
    const std::size_t size = polygon.points.size();
    constexpr std::size_t mostReserved = 8; // a polygon of many corners may be cut into many that have few
    front.points.reserve(std::min(size + 1, mostReserved));
    back.points.reserve(std::min(size + 1, mostReserved));
    for (std::size_t i = 0; i < size; ++i) {
        const Vector& v = polygon.points[i];
        const Vector& w = polygon.points[(i + 1) % size];
        const double dv = plane(v);
        const double dw = plane(w);
        if (dv >= -thickness) {
            front.points.push_back(v);
        }
        if (dv <= thickness) {
            back.points.push_back(v);
        }
        if ((dv > thickness && dw < -thickness) || (dv < -thickness && dw > thickness)) {
            const Vector x = v + (w - v) * (dv / (dv - dw));
            front.points.push_back(x);
            back.points.push_back(x);
        }
    }
}

bool isConvex(const Loop& loop, const Vector& normal) {
    const std::size_t size = loop.size();
    for (std::size_t i = 0; i < size; ++i) {
        const Vector& p = loop[(i + 1) % size];
        if (dot(cross(p - loop[i], loop[(i + 2) % size] - p), normal) < -1e-12) {
            return false;
        }
    }
    return true;
}

std::vector<FlatPolygon> flatPolygonsOf(const Face& face, double thickness) {
    const Vector area = areaVector(face);
    if (length(area) < noArea) {
        return {};
    }
    if (face.holes.empty()) {
        const Plane plane = face.plane.isKnown() ? face.plane : planeOf(face.outer);
        if (isFlat(face.outer, plane, thickness) && isConvex(face.outer, plane.normal)) {
            return {{face.outer, plane}};
        }
    }
    const Plane whole = planeOf(face.outer);
    bool flat = true;
    forEachLoop(face, [&](const Loop& loop) { flat = flat && isFlat(loop, whole, thickness); });
    std::vector<FlatPolygon> polygons;
    for (Loop& triangle : trianglesOf(face, area)) {
        if (length(areaVector(triangle)) > noArea) {
            const Plane plane = flat ? whole : planeOf(triangle);
            polygons.push_back({std::move(triangle), plane});
        }
    }
    return polygons;
}

Box boxOf(const FlatPolygon& polygon) {
    Box box;
    for (const Vector& p : polygon.points) {
        box.add(p);
    }
    return box;
}

Box boxOf(const std::vector<FlatPolygon>& polygons) {
    Box box;
    for (const FlatPolygon& polygon : polygons) {
        for (const Vector& p : polygon.points) {
            box.add(p);
        }
    }
    return box;
}

} // namespace IfcReader
