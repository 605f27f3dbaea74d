#include "geometry/Surfaces.h"

#include "geometry/Curves.h"
#include "geometry/Placements.h"
#include "geometry/Profiles.h"

#include <algorithm>

namespace IfcReader {

namespace {

/** Direction of the edge of a path that is nearest to a point. */
Vector directionNear(const Loop& path, const Vector& p) {
    Vector direction;
    double nearest = 1e300;
    for (std::size_t i = 0; i + 1 < path.size(); ++i) {
        const Vector edge = path[i + 1] - path[i];
        const double t = std::clamp(dot(p - path[i], edge) / std::max(dot(edge, edge), 1e-300), 0.0, 1.0);
        const double distance = length(path[i] + edge * t - p);
        if (distance < nearest) {
            nearest = distance;
            direction = normalized(edge);
        }
    }
    return direction;
}

Vector extrusionNormal(const Item& surface, const Vector& p) {
    const Affine place = placementIf(surface, 1);
    const Vector along = directionOf(surface.child(2));
    if (std::abs(along.z) < 1e-9) {
        surface.fail("it is extruded within its own plane");
    }
    const Vector local = place.inverse()(p);
    const Vector tangent = directionNear(profilePath(surface.child(0)), local - along * (local.z / along.z));
    return normalized(place.turn(cross(tangent, along)));
}

Vector revolutionNormal(const Item& surface, const Vector& p) {
    const Affine place = placementIf(surface, 1);
    const Affine axis = placementOf(surface.child(2));
    const auto away = [&](const Vector& q) {
        const Vector v = q - axis.origin;
        return v - axis.z * dot(v, axis.z);
    };
    // Everything is looked at in the half-plane of distances from the axis and heights along it.
    const auto flat = [&](const Vector& q) { return Vector{length(away(q)), dot(q - axis.origin, axis.z), 0.0}; };
    Loop path = profilePath(surface.child(0));
    std::transform(path.begin(), path.end(), path.begin(), flat);
    const Vector local = place.inverse()(p);
    const Vector tangent = directionNear(path, flat(local));
    const Vector normal = normalized(away(local)) * tangent.y - axis.z * tangent.x;
    return normalized(place.turn(normal));
}

} // namespace

Item basisOf(const Item& surface) {
    const Work::Level level(surface.items().work());
    const bool bounded = surface.is("IFCCURVEBOUNDEDPLANE") || surface.is("IFCRECTANGULARTRIMMEDSURFACE");
    return bounded ? basisOf(surface.child(0)) : surface;
}

bool isBoundedPlane(const Item& surface) {
    return surface.is("IFCCURVEBOUNDEDPLANE") ||
           (surface.is("IFCRECTANGULARTRIMMEDSURFACE") && surface.child(0).is("IFCPLANE"));
}

Body boundedPlaneOf(const Item& surface) {
    const Item plane = surface.child(0);
    if (!plane.is("IFCPLANE")) {
        surface.fail("its surface is no plane");
    }
    Body body;
    body.solid = false;
    Face& face = body.faces.emplace_back();
    if (surface.is("IFCCURVEBOUNDEDPLANE")) {
        face.outer = Curves::loop(surface.child(1));
        surface.forEachReference(2,
                                 [&](std::uint64_t id) { face.holes.push_back(Curves::loop(surface.items().at(id))); });
    } else {
        const double u[] = {surface.length(1), surface.length(3)};
        const double v[] = {surface.length(2), surface.length(4)};
        face.outer = {{u[0], v[0], 0}, {u[1], v[0], 0}, {u[1], v[1], 0}, {u[0], v[1], 0}};
    }
    for (Loop& hole : face.holes) {
        if (areaVector(hole).z * areaVector(face.outer).z > 0.0) {
            std::reverse(hole.begin(), hole.end());
        }
    }
    if (areaVector(face) == Vector{}) {
        surface.fail("it has no area");
    }
    transform(body, placementOf(plane.child(0)));
    return body;
}

Vector surfaceNormal(const Item& surface, const Vector& p) {
    const Item basis = basisOf(surface);
    if (basis.is("IFCPLANE")) {
        return placementOf(basis.child(0)).z;
    }
    if (basis.is("IFCSURFACEOFLINEAREXTRUSION")) {
        return extrusionNormal(basis, p);
    }
    if (!basis.is("IFCSURFACEOFREVOLUTION")) {
        basis.fail("no surface that is known");
    }
    return revolutionNormal(basis, p);
}

} // namespace IfcReader
