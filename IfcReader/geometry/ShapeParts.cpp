#include "geometry/ShapeParts.h"

#include "geometry/FlatPolygon.h"
#include "geometry/PointMerger.h"
#include "geometry/Triangulation.h"

#include <algorithm>

namespace IfcReader {

namespace {

constexpr double samePlace = 1e-5; ///< corners that are nearer are one vertex, in metres
constexpr double flatEnough = 1e-5;

/** Collects the polygons of one part. */
class PartMaker {
public:
    PartMaker(ShapePart& part, std::size_t points) : part_(part), merger_(samePlace, points) {
        part_.corners.reserve(points);
    }

    void add(const Face& face) {
        const Vector normal = areaVector(face);
        if (face.holes.empty()) {
            if (face.outer.size() == 3 || (isFlat(face.outer, normal) && isConvex(face.outer, normalized(normal)))) {
                addPolygon(face.outer.size(), [&](std::size_t i) -> const Vector& { return face.outer[i]; });
                return;
            }
        }
        std::vector<const Vector*> corners;
        forEachLoop(face, [&](const Loop& loop) {
            for (const Vector& p : loop) {
                corners.push_back(&p);
            }
        });
        for (const auto& triangle : triangulate(face, normal)) {
            addPolygon(triangle.size(), [&](std::size_t i) -> const Vector& { return *corners[triangle[i]]; });
        }
    }

    /** Turns the vertices into the world. */
    void finish(const Affine& turn) {
        part_.vertices.reserve(merger_.points().size());
        for (const Vector& p : merger_.points()) {
            const Vector v = turn.turn(p);
            part_.vertices.push_back({v.x, v.y, v.z});
        }
    }

private:
    static bool isFlat(const Loop& loop, const Vector& area) {
        const Plane plane = planeOf(loop, area);
        return std::all_of(loop.begin(), loop.end(), [&](const Vector& p) { return std::abs(plane(p)) <= flatEnough; });
    }

    /** Corners in one place become one; what has less than three of them then is left out. */
    template <typename CornerAt>
    void addPolygon(std::size_t size, CornerAt cornerAt) {
        std::vector<std::uint32_t>& corners = part_.corners;
        const std::size_t first = corners.size();
        for (std::size_t i = 0; i < size; ++i) {
            const std::uint32_t number = merger_.numberOf(cornerAt(i));
            if (corners.size() == first || corners.back() != number) {
                corners.push_back(number);
            }
        }
        while (corners.size() > first + 1 && corners[first] == corners.back()) {
            corners.pop_back();
        }
        if (corners.size() > first + 2) {
            part_.sizes.push_back(static_cast<std::uint32_t>(corners.size() - first));
        } else {
            corners.resize(first);
        }
    }

    ShapePart& part_;
    PointMerger merger_;
};

} // namespace

void appendParts(const std::vector<Body>& bodies, const Affine& turn, Shape& shape) {
    for (std::size_t begin = 0; begin < bodies.size();) {
        std::size_t end = begin;
        std::size_t points = 0;
        while (end < bodies.size() && bodies[end].items == bodies[begin].items &&
               bodies[end].solid == bodies[begin].solid) {
            points += countPoints(bodies[end].faces);
            ++end;
        }
        ShapePart part;
        part.items = bodies[begin].items;
        part.closed = bodies[begin].solid;
        PartMaker maker(part, points);
        for (; begin < end; ++begin) {
            for (const Face& face : bodies[begin].faces) {
                maker.add(face);
            }
        }
        maker.finish(turn);
        if (!part.sizes.empty()) {
            shape.parts.push_back(std::move(part));
        }
    }
}

} // namespace IfcReader
