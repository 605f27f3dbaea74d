#include "geometry/HalfSpaces.h"

#include "geometry/Curves.h"
#include "geometry/Cutting.h"
#include "geometry/Fineness.h"
#include "geometry/Placements.h"
#include "geometry/Profiles.h"
#include "geometry/Surfaces.h"
#include "geometry/Sweeps.h"

#include <algorithm>

namespace IfcReader {

namespace {

/** A ball that holds all of what is cut, with something to spare. */
struct Ball {
    explicit Ball(const Box& box) : centre(box.centre()), radius(1.1 * box.radius() + 1e-3) {}

    Vector centre;
    double radius;
};

Loop square(const Vector& centre, double half) {
    return {centre + Vector{-half, -half, 0}, centre + Vector{half, -half, 0}, centre + Vector{half, half, 0},
            centre + Vector{-half, half, 0}};
}

/** What lies below a plane. */
Body belowPlane(const Item& surface, bool agrees, const Ball& ball) {
    Affine plane = placementOf(surface.child(0));
    if (!agrees) {
        plane.z = -plane.z;
        plane.y = -plane.y;
    }
    const double height = dot(ball.centre - plane.origin, plane.z);
    plane.origin = ball.centre - plane.z * height;
    Body body =
        prism({{square({}, ball.radius), {}}}, {0, 0, -(std::max(height, 0.0) + std::abs(height) + 2.0 * ball.radius)});
    transform(body, plane);
    return body;
}

/** Where the ray from @p start along @p direction leaves a circle that @p start lies in. */
Vector onCircle(const Vector& start, const Vector& direction, const Vector& centre, double radius) {
    const Vector p = start - centre;
    const double half = dot(p, direction);
    return start + direction * (std::sqrt(half * half + radius * radius - dot(p, p)) - half);
}

/** The area to the left of a path in the plane, as far as a circle around @p centre reaches. */
Face leftOf(Loop path, const Vector& centre, double radius) {
    constexpr int sides = 8;
    if (isClosed(path)) {
        path.pop_back();
        if (areaVector(path).z > 0.0) {
            return {path, {}};
        }
        Box box;
        std::for_each(path.begin(), path.end(), [&](const Vector& p) { box.add(p); });
        const double half = radius + box.radius() + length(box.centre() - centre);
        return {square(centre, half), {path}};
    }
    const double wide = 2.0 * (radius + length(path.front() - centre) + length(path.back() - centre));
    const Vector start = onCircle(path.front(), normalized(path[0] - path[1]), centre, wide);
    const Vector end = onCircle(path.back(), normalized(path.back() - path[path.size() - 2]), centre, wide);
    const double from = std::atan2(end.y - centre.y, end.x - centre.x);
    double sweep = std::atan2(start.y - centre.y, start.x - centre.x) - from;
    sweep += sweep <= 0.0 ? 2 * pi : 0.0;
    Loop loop{start};
    loop.insert(loop.end(), path.begin(), path.end());
    loop.push_back(end);
    for (int i = 1; i < sides; ++i) {
        const double t = from + sweep * i / sides;
        loop.push_back(centre + Vector{std::cos(t), std::sin(t), 0.0} * wide);
    }
    return {loop, {}};
}

/** Seen against the extrusion, what lies to the left of the line if the surface's normal looks out of it. */
Body besideExtrusion(const Item& surface, bool agrees, const Ball& ball) {
    Loop path = profilePath(surface.child(0));
    const Affine place = placementIf(surface, 1);
    Vector along = directionOf(surface.child(2));
    if (std::abs(along.z) < 1e-6 || path.size() < 2) {
        surface.fail("it can't be made a half-space");
    }
    if ((along.z < 0.0) == agrees) {
        std::reverse(path.begin(), path.end());
    }
    along = along * (1.0 / along.z);
    const Vector centre = place.inverse()(ball.centre);
    const double radius = ball.radius * length(along);
    Face area = leftOf(path, centre - along * centre.z, radius);
    transform(area, Affine{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, along * (centre.z - ball.radius)});
    Body body = prism({area}, along * (2.0 * ball.radius));
    transform(body, place);
    return body;
}

/** What lies between a line and the axis that it turns around, or what lies outside of that. */
Body besideRevolution(const Item& surface, bool agrees, const Ball& ball, Work& work) {
    const Loop path = profilePath(surface.child(0));
    const Affine place = placementIf(surface, 1);
    const Affine axis = placementOf(surface.child(2));
    const auto onAxis = [&](const Vector& p) { return axis.origin + axis.z * dot(p - axis.origin, axis.z); };
    const bool upwards = dot(path.back() - path.front(), axis.z) > 0.0;
    Loop area;
    const auto append = [&](const Vector& p) {
        if (area.empty() || length(p - area.back()) > 1e-9) {
            area.push_back(p);
        }
    };
    append(onAxis(path.front()));
    std::for_each(path.begin(), path.end(), append);
    append(onAxis(path.back()));
    if (area.size() < 3) {
        surface.fail("it can't be made a half-space");
    }
    Body body = revolution({{area, {}}}, axis.origin, axis.z, 2 * pi, work);
    transform(body, place);
    if (upwards == agrees) {
        return body;
    }
    Box box;
    box.add(body);
    const double half = ball.radius + box.radius() + length(box.centre() - ball.centre);
    const Body all = prism({{square(ball.centre + Vector{0, 0, -half}, half), {}}}, {0, 0, 2.0 * half});
    return combine(Operation::difference, all, body, work).body;
}

Body unbounded(const Item& item, const Ball& ball) {
    const Item surface = basisOf(item.child(0));
    const bool agrees = item.word(1) != "F";
    if (surface.is("IFCPLANE")) {
        return belowPlane(surface, agrees, ball);
    }
    if (surface.is("IFCSURFACEOFLINEAREXTRUSION")) {
        return besideExtrusion(surface, agrees, ball);
    }
    if (!surface.is("IFCSURFACEOFREVOLUTION")) {
        surface.fail("it can't be made a half-space");
    }
    return besideRevolution(surface, agrees, ball, item.items().work());
}

/** What lies above and below a polygon. */
Body polygonLimits(const Item& item, const Ball& ball) {
    const Affine place = placementOf(item.child(2));
    Loop polygon = Curves::loop(item.child(3));
    if (areaVector(polygon).z < 0.0) {
        std::reverse(polygon.begin(), polygon.end());
    }
    const double height = place.inverse()(ball.centre).z;
    Body limits = prism({{polygon, {}}}, {0, 0, 2.0 * ball.radius});
    transform(limits, place * Affine{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {0, 0, height - ball.radius}});
    return limits;
}

} // namespace

bool isHalfSpace(const Item& item) {
    return item.is("IFCHALFSPACESOLID") || item.is("IFCPOLYGONALBOUNDEDHALFSPACE") || item.is("IFCBOXEDHALFSPACE");
}

Body boundingBoxOf(const Item& item) {
    const double x = item.positiveLength(1);
    const double y = item.positiveLength(2);
    Body body = prism({{{{0, 0, 0}, {x, 0, 0}, {x, y, 0}, {0, y, 0}}, {}}}, {0, 0, item.positiveLength(3)});
    transform(body, Affine{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, pointOf(item.child(0))});
    return body;
}

Body halfSpaceOf(const Item& item, const Box& reach) {
    const Ball ball(reach);
    Body body = unbounded(item, ball);
    if (item.is("IFCHALFSPACESOLID")) {
        return body;
    }
    const Body limits =
        item.is("IFCPOLYGONALBOUNDEDHALFSPACE") ? polygonLimits(item, ball) : boundingBoxOf(item.child(2));
    return combine(Operation::intersect, limits, body, item.items().work()).body;
}

} // namespace IfcReader
