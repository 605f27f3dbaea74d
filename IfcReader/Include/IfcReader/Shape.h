/**
 * @file Shape.h
 * The shape of a product: polygons in metres, turned as in the world, around the product's own origin.
 */
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace IfcReader {

/** A place or a direction, in metres. */
struct Point {
    double x = 0.0;
    double y = 0.0;
    double z = 0.0;
};

/** What one item of the product's representation became. */
struct ShapePart {
    /** Numbers of the instances it came from: the item of the representation first, the innermost solid last. */
    std::vector<std::uint64_t> items;
    /** Relative to the shape's origin; no two are at one place. */
    std::vector<Point> vertices;
    /**
     * Of each polygon, the number of its corners. Polygons are flat and convex, counter-clockwise seen from outside; one
     * may have corners in the middle of its neighbours' edges.
     */
    std::vector<std::uint32_t> sizes;
    /** Of all polygons, one after the other, as numbers of vertices. */
    std::vector<std::uint32_t> corners;
    bool closed = false; ///< the polygons enclose a volume
};

/** A product's shape in its place. */
struct Shape {
    Point origin; ///< where the product's placement stands in the world
    std::vector<ShapePart> parts;
    std::vector<std::string> doubts; ///< what could not be built or isn't closed: kind of item and reason, in English
};

} // namespace IfcReader
