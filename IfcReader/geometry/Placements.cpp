#include "geometry/Placements.h"

namespace IfcReader {

namespace {

bool endsWith(std::string_view text, std::string_view end) {
    return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

/** The x axis of a placement whose z axis is given: @p wanted as far as it is at a right angle, else some other. */
Vector axisBeside(const Vector& z, const Vector& wanted) {
    const Vector x = wanted - z * dot(wanted, z);
    return length(x) > 1e-9 ? normalized(x) : perpendicular(z);
}

/** The x axis where a file names none. */
Vector usualAxisBeside(const Vector& z) {
    return axisBeside(z, std::abs(z.x) < 0.9999999 ? Vector{1, 0, 0} : Vector{0, 1, 0});
}

double scale(const Item& item, std::size_t i, double otherwise) {
    const double value = item.given(i) ? item.number(i) : otherwise;
    if (value == 0.0) {
        item.fail("scaled to nothing");
    }
    return value;
}

Affine plane2D(const Item& item) {
    Affine map;
    if (item.given(1)) {
        map.x = directionOf(item.child(1));
    }
    map.y = {-map.x.y, map.x.x, 0.0};
    map.origin = pointOf(item.child(0));
    return map;
}

} // namespace

Vector pointOf(const Item& item) {
    if (!item.is("IFCCARTESIANPOINT")) {
        item.fail("is no point");
    }
    const auto c = item.coordinates(0, 2);
    const double metre = item.items().units().metre;
    return {c[0] * metre, c[1] * metre, c[2] * metre};
}

Vector directionOf(const Item& item) {
    if (!item.is("IFCDIRECTION")) {
        item.fail("is no direction");
    }
    const auto c = item.coordinates(0, 2);
    const Vector direction = normalized({c[0], c[1], c[2]});
    if (!(length(direction) > 0.5)) {
        item.fail("has no length");
    }
    return direction;
}

Affine placementOf(const Item& item) {
    if (item.is("IFCAXIS2PLACEMENT2D")) {
        return plane2D(item);
    }
    const bool axisOnly = item.is("IFCAXIS1PLACEMENT");
    if (!item.is("IFCAXIS2PLACEMENT3D") && !axisOnly) {
        item.fail("is no placement");
    }
    Affine map;
    if (item.given(1)) {
        map.z = directionOf(item.child(1));
    }
    map.x = !axisOnly && item.given(2) ? axisBeside(map.z, directionOf(item.child(2))) : usualAxisBeside(map.z);
    map.y = cross(map.z, map.x);
    map.origin = pointOf(item.child(0));
    return map;
}

Affine placementIf(const Item& item, std::size_t i) {
    return item.given(i) ? placementOf(item.child(i)) : Affine{};
}

Affine operatorOf(const Item& item) {
    if (item.keyword().substr(0, 34) != "IFCCARTESIANTRANSFORMATIONOPERATOR") {
        item.fail("is no transformation");
    }
    const bool is3D = item.keyword().find("3D") != std::string_view::npos;
    Affine map;
    if (is3D && item.given(4)) {
        map.z = directionOf(item.child(4));
    }
    if (item.given(0)) {
        map.x = axisBeside(map.z, directionOf(item.child(0)));
    } else if (item.given(1)) {
        const Vector y = directionOf(item.child(1));
        map.x = axisBeside(map.z, is3D ? cross(y, map.z) : Vector{y.y, -y.x, 0.0});
    } else {
        map.x = usualAxisBeside(map.z);
    }
    map.y = cross(map.z, map.x);
    // In space the second axis that a file leaves out is (0, 1, 0), even where that mirrors.
    const bool hasSecond = item.given(1) || is3D;
    const Vector second = item.given(1) ? directionOf(item.child(1)) : Vector{0, 1, 0};
    if (hasSecond && dot(second, map.y) < -1e-9) {
        map.y = -map.y;
    }
    map.origin = pointOf(item.child(2));
    const double all = scale(item, 3, 1.0);
    const bool uneven = endsWith(item.keyword(), "NONUNIFORM");
    const std::size_t further = is3D ? 5 : 4;
    map.x = map.x * all;
    map.y = map.y * (uneven ? scale(item, further, all) : all);
    map.z = map.z * (uneven && is3D ? scale(item, further + 1, all) : all);
    return map;
}

} // namespace IfcReader
