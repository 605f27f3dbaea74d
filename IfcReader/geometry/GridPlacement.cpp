#include "geometry/GridPlacement.h"

#include "geometry/Curves.h"

#include <algorithm>
#include <optional>

namespace IfcReader {

namespace {

/** The line of an axis, moved to its left. */
Loop axisPath(const Item& axis, double offset) {
    const Item curve = axis.child(1);
    Loop path = curve.is("IFCLINE") ? Curves::path(curve, 0.0, 1.0) : Curves::path(curve);
    if (axis.word(2) == "F") {
        std::reverse(path.begin(), path.end());
    }
    if (path.size() < 2) {
        axis.fail("its line has no length");
    }
    return offset == 0.0 ? path : Curves::offset(path, offset);
}

struct Crossing {
    Vector place;
    Vector tangent; ///< of the first axis
};

/** Where two paths cross; the first and the last edge of each go on for ever. */
std::optional<Crossing> crossingOf(const Loop& a, const Loop& b) {
    constexpr double slack = 1e-9;
    const auto isOn = [](const Loop& path, std::size_t edge, double t) {
        return (t >= -slack || edge == 0) && (t <= 1.0 + slack || edge + 2 == path.size());
    };
    std::optional<Crossing> best;
    double nearest = 1e300;
    for (std::size_t i = 0; i + 1 < a.size(); ++i) {
        for (std::size_t k = 0; k + 1 < b.size(); ++k) {
            const Vector d = a[i + 1] - a[i];
            const Vector e = b[k + 1] - b[k];
            const double across = cross(d, e).z;
            if (std::abs(across) <= 1e-12 * length(d) * length(e)) {
                continue;
            }
            const double s = cross(b[k] - a[i], e).z / across;
            const double t = cross(b[k] - a[i], d).z / across;
            if (!isOn(a, i, s) || !isOn(b, k, t)) {
                continue;
            }
            // Of several crossings the one that needs the least going on counts.
            const double beyond = std::max({-s, s - 1.0, 0.0}) * length(d) + std::max({-t, t - 1.0, 0.0}) * length(e);
            if (beyond < nearest) {
                nearest = beyond;
                best = Crossing{a[i] + d * s, normalized(d)};
            }
        }
    }
    return best;
}

Crossing crossingOf(const Item& intersection) {
    if (!intersection.is("IFCVIRTUALGRIDINTERSECTION")) {
        intersection.fail("is no crossing of a grid");
    }
    const std::vector<std::uint64_t> axes = intersection.references(0);
    std::vector<double> offsets = intersection.numbers(1);
    offsets.resize(3, 0.0);
    if (axes.size() != 2) {
        intersection.fail("it needs two axes");
    }
    const double metre = intersection.items().units().metre;
    const Loop first = axisPath(intersection.items().at(axes[0]), offsets[0] * metre);
    const Loop second = axisPath(intersection.items().at(axes[1]), offsets[1] * metre);
    intersection.items().work().add(first.size() * second.size());
    std::optional<Crossing> crossing = crossingOf(first, second);
    if (!crossing) {
        intersection.fail("its axes don't meet");
    }
    crossing->place.z += offsets[2] * metre;
    return *crossing;
}

} // namespace

Affine gridPlacementOf(const Item& placement) {
    const Crossing crossing = crossingOf(placement.child(0));
    Affine map;
    map.origin = crossing.place;
    map.x = placement.given(1) ? crossingOf(placement.child(1)).place - crossing.place : crossing.tangent;
    map.x.z = 0.0;
    map.x = normalized(map.x);
    if (!(length(map.x) > 0.5)) {
        placement.fail("it has no direction");
    }
    map.y = cross(map.z, map.x);
    return map;
}

std::uint64_t gridAxisOf(const Item& placement) {
    const std::vector<std::uint64_t> axes = placement.child(0).references(0);
    return axes.empty() ? 0 : axes[0];
}

} // namespace IfcReader
