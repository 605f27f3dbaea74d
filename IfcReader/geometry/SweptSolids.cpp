#include "geometry/SweptSolids.h"

#include "geometry/Curves.h"
#include "geometry/Cutting.h"
#include "geometry/Overlaps.h"
#include "geometry/Placements.h"
#include "geometry/Profiles.h"
#include "geometry/Surfaces.h"
#include "geometry/Sweeps.h"

#include <algorithm>

namespace IfcReader {

namespace {

constexpr const char* crossesItself = "its profile crosses itself";

/** Loops that overlap by no more than that are built as they are. */
bool overlap(const std::vector<Face>& areas, Work& work) {
    constexpr double unseen = 1e-4;
    return overlapOf(areas, work).width > unseen;
}

/** Whether a loop crosses itself so that it makes a difference: small hooks at corners, which happen, do not. */
bool crosses(const Loop& loop, Work& work) {
    constexpr double negligible = 1e-4;
    return overlapOf({{loop, {}}}, work).area > negligible;
}

SweptSolid doubtful(Body&& body, const char* doubt) {
    body.solid = false;
    return {std::move(body), doubt};
}

/** Moves the holes that lie inside of their outline and away from all others to the front. @return the first other one */
std::size_t sortOutPlainHoles(Face& area, Work& work) {
    std::vector<Box> boxes(area.holes.size());
    for (std::size_t i = 0; i < boxes.size(); ++i) {
        std::for_each(area.holes[i].begin(), area.holes[i].end(), [&](const Vector& p) { boxes[i].add(p); });
    }
    constexpr std::size_t boxesPerPoint = 32; // that are looked at in the time that a point takes
    work.add(boxes.size() * boxes.size() / boxesPerPoint);
    std::size_t plain = 0;
    for (std::size_t i = 0; i < boxes.size(); ++i) {
        bool isAlone = true;
        for (std::size_t k = 0; k < boxes.size() && isAlone; ++k) {
            isAlone = k == i || !boxes[i].meets(boxes[k], 1e-5);
        }
        if (isAlone && !overlap({{area.outer, {area.holes[i]}}}, work)) {
            std::swap(area.holes[i], area.holes[plain]);
            std::swap(boxes[i], boxes[plain]);
            ++plain;
        }
    }
    return plain;
}

/** Outline by outline, each swept with the holes that are in nobody's way, and the others swept alone. */
template <typename Sweep>
SweptSolid sweptApart(std::vector<Face> areas, Work& work, Sweep sweep) {
    Body whole;
    bool closed = true;
    const auto take = [&](Operation operation, Body& body, const Body& other) {
        CutResult result = combine(operation, body, other, work);
        closed = closed && result.closed;
        body = std::move(result.body);
    };
    for (Face& area : areas) {
        const auto others = area.holes.begin() + static_cast<std::ptrdiff_t>(sortOutPlainHoles(area, work));
        Body body = sweep({{area.outer, {area.holes.begin(), others}}});
        for (auto hole = others; hole != area.holes.end(); ++hole) {
            take(Operation::difference, body, sweep({{Loop(hole->rbegin(), hole->rend()), {}}}));
        }
        if (whole.faces.empty()) {
            whole = std::move(body);
        } else {
            take(Operation::unite, whole, body);
        }
    }
    return closed ? SweptSolid{std::move(whole), {}}
                  : doubtful(std::move(whole), "its profile overlaps itself so that it can't be told what is left");
}

/** The body that @p sweep makes of the areas of a profile, whether or not they overlap. */
template <typename Sweep>
SweptSolid sweptProfile(const Item& profile, Sweep sweep) {
    Work& work = profile.items().work();
    const std::vector<Face> areas = profileAreas(profile);
    if (!overlap(areas, work)) {
        return {sweep(areas), {}};
    }
    bool loopsCross = false;
    for (const Face& area : areas) {
        loopsCross = loopsCross || crosses(area.outer, work);
        for (const Loop& hole : area.holes) {
            loopsCross = loopsCross || crosses(Loop(hole.rbegin(), hole.rend()), work);
        }
    }
    if (loopsCross) {
        return doubtful(sweep(areas), crossesItself);
    }
    const bool isOneLoop = areas.size() == 1 && areas[0].holes.empty();
    return isOneLoop ? SweptSolid{sweep(areas), {}} : sweptApart(areas, work, sweep);
}

SweptSolid extruded(const Item& item) {
    const Item profile = item.child(0);
    const Vector along = directionOf(item.child(2)) * item.length(3);
    if (length(along) == 0.0) {
        item.fail("its depth is 0");
    }
    if (profile.is("IFCARBITRARYOPENPROFILEDEF")) {
        return {strip(profilePath(profile), along), {}};
    }
    if (std::abs(along.z) < 1e-9 * length(along)) {
        item.fail("it is extruded within its own plane");
    }
    return sweptProfile(profile, [&](const std::vector<Face>& areas) { return prism(areas, along); });
}

/** Whether a profile lies on both sides of an axis in its plane, by more than its corners may be off. */
bool crosses(const Affine& axis, const std::vector<Face>& areas) {
    const Vector across = cross(axis.z, {0, 0, 1});
    double low = 0.0;
    double high = 0.0;
    for (const Face& area : areas) {
        for (const Vector& p : area.outer) {
            low = std::min(low, dot(p - axis.origin, across));
            high = std::max(high, dot(p - axis.origin, across));
        }
    }
    return std::min(-low, high) > 1e-3 * (high - low);
}

SweptSolid revolved(const Item& item) {
    const Affine axis = placementOf(item.child(2));
    const double angle = item.angle(3);
    if (angle == 0.0) {
        item.fail("its angle is 0");
    }
    bool crossesAxis = false;
    SweptSolid result = sweptProfile(item.child(0), [&](const std::vector<Face>& areas) {
        crossesAxis = crossesAxis || crosses(axis, areas);
        return revolution(areas, axis.origin, axis.z, angle, item.items().work());
    });
    return crossesAxis ? doubtful(std::move(result.body), "its profile crosses the axis") : std::move(result);
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

SweptSolid sweptDisk(const Item& item) {
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
    return {alongPath({ring}, BentPath(path), item.items().work()), {}};
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
SweptSolid sweptOnSurface(const Item& item) {
    const BentPath bent(directrix(item, 2, 3));
    const Item surface = item.child(5);
    std::vector<Affine> places;
    for (std::size_t i = 0; i + (bent.closed() ? 1 : 0) < bent.size(); ++i) {
        const Affine place = sectionPlace(bent, i, surfaceNormal(surface, bent[i]));
        if (!(length(place.x) > 0.5)) {
            item.fail("its path leaves the surface");
        }
        places.push_back(place);
    }
    return sweptProfile(item.child(0), [&](const std::vector<Face>& areas) {
        item.items().work().add(countPoints(areas) * bent.size() * Work::kept);
        std::vector<std::vector<Face>> sections;
        for (const Affine& place : places) {
            sections.push_back(areas);
            for (Face& face : sections.back()) {
                transform(face, place);
            }
        }
        return loft(sections, bent.closed());
    });
}

bool haveSameCorners(const std::vector<Face>& a, const std::vector<Face>& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](const Face& f, const Face& g) {
        return f.outer.size() == g.outer.size() &&
               std::equal(f.holes.begin(), f.holes.end(), g.holes.begin(), g.holes.end(),
                          [](const Loop& l, const Loop& m) { return l.size() == m.size(); });
    });
}

/** Sections at places of their own, each joined to the next by straight lines. */
SweptSolid sectionedSpine(const Item& item) {
    const std::vector<std::uint64_t> profiles = item.references(1);
    const std::vector<std::uint64_t> places = item.references(2);
    if (profiles.size() < 2 || profiles.size() != places.size()) {
        item.fail("its sections and places don't match");
    }
    bool overlaps = false;
    std::vector<std::vector<Face>> sections;
    for (std::size_t i = 0; i < profiles.size(); ++i) {
        std::vector<Face> areas = profileAreas(item.items().at(profiles[i]));
        for (const Face& area : areas) {
            overlaps = overlaps || crosses(area.outer, item.items().work());
        }
        const Affine place = placementOf(item.items().at(places[i]));
        for (Face& area : areas) {
            transform(area, place);
        }
        sections.push_back(std::move(areas));
        if (!haveSameCorners(sections.front(), sections.back())) {
            item.fail("its sections have different numbers of corners");
        }
    }
    Body body = loft(sections, false);
    return overlaps ? doubtful(std::move(body), crossesItself) : SweptSolid{std::move(body), {}};
}

} // namespace

bool isSweptSolid(const Item& item) {
    return item.is("IFCEXTRUDEDAREASOLID") || item.is("IFCREVOLVEDAREASOLID") || item.is("IFCSWEPTDISKSOLID") ||
           item.is("IFCSURFACECURVESWEPTAREASOLID") || item.is("IFCSECTIONEDSPINE");
}

SweptSolid sweptSolidOf(const Item& item) {
    SweptSolid swept;
    bool placed = true;
    if (item.is("IFCEXTRUDEDAREASOLID")) {
        swept = extruded(item);
    } else if (item.is("IFCREVOLVEDAREASOLID")) {
        swept = revolved(item);
    } else if (item.is("IFCSURFACECURVESWEPTAREASOLID")) {
        swept = sweptOnSurface(item);
    } else {
        swept = item.is("IFCSWEPTDISKSOLID") ? sweptDisk(item) : sectionedSpine(item);
        placed = false; // they have no placement of their own
    }
    item.items().work().add(countPoints(swept.body.faces));
    if (placed) {
        transform(swept.body, placementIf(item, 1));
    }
    return swept;
}

} // namespace IfcReader
