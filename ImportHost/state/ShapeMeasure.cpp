#include "state/ShapeMeasure.h"

#include <algorithm>
#include <cmath>

using PluginKit::SolidSurface;

namespace {

/** Corners measured from a point of the object, which may be far from the origin. */
struct Triangle {
    std::array<Vector3, 3> corners;
    double area; ///< negative where a concave polygon's fan leaves the polygon
};

void addTriangles(const SolidSurface& surface, const std::uint32_t* polygon, std::size_t size, const Vector3& base,
                  std::vector<Triangle>& triangles) {
    const auto corner = [&](std::size_t i) { return surface.vertices[polygon[i]] - base; };
    const std::size_t first = triangles.size();
    Vector3 normal{};
    for (std::size_t i = 1; i + 1 < size; ++i) {
        const Vector3 a = corner(0);
        const Vector3 b = corner(i);
        const Vector3 c = corner(i + 1);
        triangles.push_back({{a, b, c}, 0.0});
        normal = normal + cross(b - a, c - a);
    }
    const double twiceArea = length(normal);
    if (twiceArea == 0.0) {
        triangles.resize(first);
        return;
    }
    for (std::size_t i = first; i < triangles.size(); ++i) {
        const auto& [a, b, c] = triangles[i].corners;
        triangles[i].area = dot(cross(b - a, c - a), normal) / twiceArea / 2.0;
    }
}

std::vector<Triangle> trianglesOf(const std::vector<SolidSurface>& surfaces, const Vector3& base) {
    std::vector<Triangle> triangles;
    for (const SolidSurface& surface : surfaces) {
        const std::uint32_t* polygon = surface.corners.data();
        for (const std::uint32_t size : surface.sizes) {
            addTriangles(surface, polygon, size, base, triangles);
            polygon += size;
        }
    }
    return triangles;
}

/** A point of a rule that integrates polynomials of the fourth degree over a triangle exactly. */
struct RulePoint {
    std::array<double, 3> coordinates; ///< barycentric
    double weight;
};

constexpr double outerPart = 0.816847572980459;
constexpr double outerRest = 0.091576213509771;
constexpr double outerWeight = 0.109951743655322;
constexpr double innerPart = 0.108103018168070;
constexpr double innerRest = 0.445948490915965;
constexpr double innerWeight = 0.223381589678011;
constexpr RulePoint rule[] = {
    {{outerPart, outerRest, outerRest}, outerWeight}, {{outerRest, outerPart, outerRest}, outerWeight},
    {{outerRest, outerRest, outerPart}, outerWeight}, {{innerPart, innerRest, innerRest}, innerWeight},
    {{innerRest, innerPart, innerRest}, innerWeight}, {{innerRest, innerRest, innerPart}, innerWeight}};

/** Adds what a piece of surface of area @p weight at @p p, measured from the centroid, contributes. */
void addPoint(Shape& shape, const Vector3& p, double weight) {
    const auto& [x, y, z] = p;
    const Vector3 first = p * weight;
    const std::array<double, Shape::secondCount> second = {first[0] * x, first[0] * y, first[0] * z,
                                                           first[1] * y, first[1] * z, first[2] * z};
    const std::array<double, Shape::thirdCount> third = {second[0] * x, second[0] * y, second[0] * z, second[3] * x,
                                                         second[1] * z, second[5] * x, second[3] * y, second[3] * z,
                                                         second[5] * y, second[5] * z};
    for (std::size_t i = 0; i < second.size(); ++i) {
        shape.second[i] += second[i];
    }
    for (std::size_t i = 0; i < third.size(); ++i) {
        shape.third[i] += third[i];
    }
    // xxxx xxxy xxxz xxyy xxyz xxzz xyyy xyyz xyzz xzzz yyyy yyyz yyzz yzzz zzzz
    const std::array<double, Shape::fourthCount> fourth = {
        third[0] * x, third[0] * y, third[0] * z, third[1] * y, third[1] * z, third[2] * z, third[3] * y, third[3] * z,
        third[5] * y, third[5] * z, third[6] * y, third[6] * z, third[7] * z, third[8] * z, third[9] * z};
    for (std::size_t i = 0; i < fourth.size(); ++i) {
        shape.fourth[i] += fourth[i];
    }
}

void divideByArea(Shape& shape) {
    for (auto& moment : shape.second) {
        moment /= shape.area;
    }
    for (auto& moment : shape.third) {
        moment /= shape.area;
    }
    for (auto& moment : shape.fourth) {
        moment /= shape.area;
    }
}

} // namespace

Shape shapeOf(const std::vector<SolidSurface>& surfaces) {
    const std::optional<Box> box = boxOf(surfaces);
    Shape shape;
    if (!box) {
        return shape;
    }
    const std::vector<Triangle> triangles = trianglesOf(surfaces, box->low);
    Vector3 centroid{};
    for (const Triangle& triangle : triangles) {
        shape.area += triangle.area;
        for (const Vector3& corner : triangle.corners) {
            centroid = centroid + corner * (triangle.area / 3.0);
        }
    }
    if (!(shape.area > 0.0)) {
        return Shape();
    }
    centroid = centroid * (1.0 / shape.area);
    for (const Triangle& triangle : triangles) {
        for (const RulePoint& point : rule) {
            const Vector3 p = triangle.corners[0] * point.coordinates[0] + triangle.corners[1] * point.coordinates[1] +
                              triangle.corners[2] * point.coordinates[2] - centroid;
            addPoint(shape, p, point.weight * triangle.area);
        }
    }
    divideByArea(shape);
    shape.centroid = box->low + centroid;
    return shape;
}

std::optional<Box> boxOf(const std::vector<SolidSurface>& surfaces) {
    std::optional<Box> box;
    for (const SolidSurface& surface : surfaces) {
        for (const std::uint32_t index : surface.corners) {
            const Vector3& vertex = surface.vertices[index];
            if (!box) {
                box = Box{vertex, vertex};
            }
            for (std::size_t k = 0; k < vertex.size(); ++k) {
                box->low[k] = std::min(box->low[k], vertex[k]);
                box->high[k] = std::max(box->high[k], vertex[k]);
            }
        }
    }
    return box;
}
