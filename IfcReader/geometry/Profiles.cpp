#include "geometry/Profiles.h"

#include "geometry/Curves.h"
#include "geometry/ParameterizedProfiles.h"
#include "geometry/Placements.h"

#include <algorithm>

namespace IfcReader {

namespace {

/** A line with a thickness: a strip, or a ring where the line is closed. */
Face centreLine(const Item& profile) {
    const Loop path = Curves::path(profile.child(2));
    const double half = profile.positiveLength(3) / 2.0;
    if (path.size() < 2) {
        profile.fail("its line has no length");
    }
    Loop left = Curves::offset(path, half);
    Loop right = Curves::offset(path, -half);
    if (isClosed(path)) {
        left.pop_back();
        right.pop_back();
        const bool leftIsInside = areaVector(left).z > 0.0;
        return leftIsInside ? Face{right, {left}} : Face{left, {right}};
    }
    left.insert(left.end(), right.rbegin(), right.rend());
    return {left, {}};
}

std::vector<Face> unorientedAreas(const Item& profile) {
    if (profile.is("IFCARBITRARYCLOSEDPROFILEDEF")) {
        return {{Curves::loop(profile.child(2)), {}}};
    }
    if (profile.is("IFCARBITRARYPROFILEDEFWITHVOIDS")) {
        Face area{Curves::loop(profile.child(2)), {}};
        for (const std::uint64_t id : profile.references(3)) {
            area.holes.push_back(Curves::loop(profile.items().at(id)));
        }
        return {area};
    }
    if (profile.is("IFCCOMPOSITEPROFILEDEF")) {
        std::vector<Face> areas;
        for (const std::uint64_t id : profile.references(2)) {
            for (Face& area : profileAreas(profile.items().at(id))) {
                areas.push_back(std::move(area));
            }
        }
        return areas;
    }
    if (profile.is("IFCDERIVEDPROFILEDEF")) {
        std::vector<Face> areas = profileAreas(profile.child(2));
        const Affine map = operatorOf(profile.child(3));
        for (Face& area : areas) {
            transform(area, map);
        }
        return areas;
    }
    if (profile.is("IFCCENTERLINEPROFILEDEF")) {
        return {centreLine(profile)};
    }
    Face area = parameterizedArea(profile);
    transform(area, placementIf(profile, 2));
    return {area};
}

} // namespace

std::vector<Face> profileAreas(const Item& profile) {
    const Work::Level level(profile.items().work());
    std::vector<Face> areas = unorientedAreas(profile);
    profile.items().work().add(countPoints(areas));
    for (Face& area : areas) {
        if (!isWithinReach(area)) {
            profile.fail(beyondReach);
        }
        bool outer = true;
        forEachLoop(area, [&](Loop& loop) {
            if ((areaVector(loop).z < 0.0) == outer) {
                std::reverse(loop.begin(), loop.end());
            }
            outer = false;
        });
        if (!(areaVector(area.outer).z > 0.0)) {
            profile.fail("it has no area");
        }
    }
    return areas;
}

Loop profilePath(const Item& profile) {
    if (profile.is("IFCARBITRARYOPENPROFILEDEF")) {
        return Curves::path(profile.child(2));
    }
    Loop loop = profileAreas(profile).front().outer;
    loop.push_back(loop.front());
    return loop;
}

} // namespace IfcReader
