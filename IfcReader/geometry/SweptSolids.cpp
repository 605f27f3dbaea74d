#include "geometry/SweptSolids.h"

#include "geometry/Curves.h"
#include "geometry/Placements.h"
#include "geometry/Profiles.h"
#include "geometry/Surfaces.h"
#include "geometry/Sweeps.h"

#include <algorithm>

namespace IfcReader {

namespace {

Body extruded(const Item& item) {
    const Item profile = item.child(0);
    const Vector along = directionOf(item.child(2)) * item.length(3);
    if (length(along) == 0.0) {
        item.fail("its depth is 0");
    }
    if (profile.is("IFCARBITRARYOPENPROFILEDEF")) {
        return strip(profilePath(profile), along);
    }
    if (std::abs(along.z) < 1e-9 * length(along)) {
        item.fail("it is extruded within its own plane");
    }
    return prism(profileAreas(profile), along);
}

Body revolved(const Item& item) {
    const Affine axis = placementOf(item.child(2));
    const double angle = item.angle(3);
    if (angle == 0.0) {
        item.fail("its angle is 0");
    }
    const std::vector<Face> areas = profileAreas(item.child(0));
    return revolution(areas, axis.origin, axis.z, angle, item.items().work());
}

/** The path of a solid that is swept along a curve, the ends of which may stand in two arguments. */
Loop directrix(const Item& item, std::size_t curve, std::size_t start) {
    const auto end = [&](std::size_t i) { return item.given(i) ? std::optional(item.number(i)) : std::nullopt; };
    Loop path = Curves::path(item.child(curve), end(start), end(start + 1));
    path.erase(std::unique(path.begin(), path.end()), path.end());
    if (path.size() < 2) {
        item.fail("its path has no length");
    }
    return path;
}

Body sweptDisk(const Item& item) {
    const Loop path = directrix(item, 0, 3);
    const double radius = item.positiveLength(1);
    Face ring{Curves::ellipse(radius, radius), {}};
    if (item.given(2)) {
        const double inner = item.positiveLength(2);
        if (inner >= radius) {
            item.fail("its hole is wider than itself");
        }
        const Loop hole = Curves::ellipse(inner, inner);
        ring.holes.emplace_back(hole.rbegin(), hole.rend());
    }
    return alongPath({ring}, BentPath(path), item.items().work());
}

/** Where a section stands in the plane that halves a bend; it is stretched across the bend. */
Affine sectionPlace(const BentPath& path, std::size_t i, const Vector& normal) {
    constexpr double sharpestBend = 0.05;
    const Vector before = path.before(i);
    const Vector after = path.after(i);
    Affine place;
    place.z = normalized(before + after);
    place.x = normalized(normal - place.z * dot(normal, place.z));
    place.y = cross(place.z, place.x);
    place.origin = path[i];
    const Vector outwards = normalized(after - before);
    const double stretch = 1.0 / std::max(sharpestBend, length(before + after) / 2.0) - 1.0;
    place.x += outwards * (dot(place.x, outwards) * stretch);
    place.y += outwards * (dot(place.y, outwards) * stretch);
    return place;
}

/** The profile's x axis is the normal of the surface, its z axis the direction of the curve. */
Body sweptOnSurface(const Item& item) {
    const BentPath bent(directrix(item, 2, 3));
    const Item surface = item.child(5);
    const std::vector<Face> areas = profileAreas(item.child(0));
    item.items().work().add(countPoints(areas) * bent.size() * Work::kept);
    std::vector<std::vector<Face>> sections;
    for (std::size_t i = 0; i + (bent.closed() ? 1 : 0) < bent.size(); ++i) {
        const Affine place = sectionPlace(bent, i, surfaceNormal(surface, bent[i]));
        if (!(length(place.x) > 0.5)) {
            item.fail("its path leaves the surface");
        }
        sections.push_back(areas);
        for (Face& face : sections.back()) {
            transform(face, place);
        }
    }
    return loft(sections, bent.closed());
}

bool haveSameCorners(const std::vector<Face>& a, const std::vector<Face>& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](const Face& f, const Face& g) {
        return f.outer.size() == g.outer.size() &&
               std::equal(f.holes.begin(), f.holes.end(), g.holes.begin(), g.holes.end(),
                          [](const Loop& l, const Loop& m) { return l.size() == m.size(); });
    });
}

/** Sections at places of their own, each joined to the next by straight lines. */
Body sectionedSpine(const Item& item) {
    const std::vector<std::uint64_t> profiles = item.references(1);
    const std::vector<std::uint64_t> places = item.references(2);
    if (profiles.size() < 2 || profiles.size() != places.size()) {
        item.fail("its sections and places don't match");
    }
    std::vector<std::vector<Face>> sections;
    for (std::size_t i = 0; i < profiles.size(); ++i) {
        std::vector<Face> areas = profileAreas(item.items().at(profiles[i]));
        const Affine place = placementOf(item.items().at(places[i]));
        for (Face& area : areas) {
            transform(area, place);
        }
        sections.push_back(std::move(areas));
        if (!haveSameCorners(sections.front(), sections.back())) {
            item.fail("its sections have different numbers of corners");
        }
    }
    return loft(sections, false);
}

} // namespace

bool isSweptSolid(const Item& item) {
    return item.is("IFCEXTRUDEDAREASOLID") || item.is("IFCREVOLVEDAREASOLID") || item.is("IFCSWEPTDISKSOLID") ||
           item.is("IFCSURFACECURVESWEPTAREASOLID") || item.is("IFCSECTIONEDSPINE");
}

Body sweptSolidOf(const Item& item) {
    Body body;
    if (item.is("IFCEXTRUDEDAREASOLID")) {
        body = extruded(item);
    } else if (item.is("IFCREVOLVEDAREASOLID")) {
        body = revolved(item);
    } else if (item.is("IFCSURFACECURVESWEPTAREASOLID")) {
        body = sweptOnSurface(item);
    } else {
        body = item.is("IFCSWEPTDISKSOLID") ? sweptDisk(item) : sectionedSpine(item);
        item.items().work().add(countPoints(body.faces));
        return body; // they have no placement of their own
    }
    item.items().work().add(countPoints(body.faces));
    transform(body, placementIf(item, 1));
    return body;
}

} // namespace IfcReader
