#include "comparison/Congruence.h"

#include "comparison/Moments.h"

#include <algorithm>
#include <cmath>
#include <complex>

using namespace ImportCommon;

namespace {

/** What stays within this, in metres, stayed in its place; numbers of few digits are off by some tenths of it. */
constexpr double placeTolerance = 0.0015;

/** How far points of a surface may be off before it counts as another one, in metres. */
constexpr double shapeTolerance = 0.0005;

/** Areas and volumes of the same shape agree to this part. */
constexpr double relativeTolerance = 1e-3;

/** Principal axes along which the surface spreads more alike than that, in metres or as a part, have no direction. */
constexpr double clearDifference = 0.005;
constexpr double clearRatio = 0.02;

bool alike(double a, double b) {
    return std::fabs(a - b) <= relativeTolerance * std::max(std::fabs(a), std::fabs(b));
}

bool sameVolume(const Body& a, const Body& b) {
    constexpr double negligible = 2e-6;
    return !a.volume || !b.volume || alike(*a.volume, *b.volume) || std::fabs(*a.volume - *b.volume) <= negligible;
}

bool sameBoxSize(const Body& a, const Body& b) {
    if (!a.box || !b.box) {
        return true;
    }
    for (std::size_t i = 0; i < 3; ++i) {
        if (std::fabs(a.box->size(i) - b.box->size(i)) > placeTolerance) {
            return false;
        }
    }
    return true;
}

/** For objects of which nothing but the version is known: the eight radii, where both have some. */
bool sameRadii(const ExternalVersion& a, const ExternalVersion& b) {
    const auto hasRadii = [](const ExternalVersion& version) {
        return version.getType() == ExternalVersionType_Solid || version.getType() == ExternalVersionType_Geometry;
    };
    if (!hasRadii(a) || !hasRadii(b)) {
        return true;
    }
    double p[8];
    double q[8];
    a.getDistances(p);
    b.getDistances(q);
    return std::equal(std::begin(p), std::end(p), std::begin(q),
                      [](double x, double y) { return std::fabs(x - y) <= placeTolerance; });
}

bool bothHaveSurface(const Body& a, const Body& b) {
    return a.hasSurface() && b.hasSurface();
}

/** Collects turns that might do, and keeps the smallest that does. */
class TurnSearch {
public:
    TurnSearch(const Body& from, const Body& to) : from_(from.shape), to_(to.shape), tolerances_(to_, shapeTolerance) {}

    std::optional<Rotation> result() {
        const Eigenvectors<3> from = principalAxes(from_);
        const Eigenvectors<3> to = principalAxes(to_);
        tryPrincipalAxes(from, to);
        for (std::size_t i = 0; i < 3; ++i) {
            if (!isClear(from.values[(i + 1) % 3], from.values[(i + 2) % 3])) {
                for (const double sign : {1.0, -1.0}) {
                    tryAboutAxis(rotationBetween(from.vectors[i], to.vectors[i] * sign), to.vectors[i]);
                }
            }
        }
        if (!isClear(from.values[0], from.values[2])) {
            for (const Vector3& axis : noRotation) { // it spreads alike in all directions, as a cube does
                tryAboutAxis(noRotation, axis);
            }
        }
        return best_;
    }

private:
    static bool isClear(double a, double b) {
        const double p = std::sqrt(std::fmax(a, 0.0));
        const double q = std::sqrt(std::fmax(b, 0.0));
        return std::fabs(p - q) > std::max(clearDifference, clearRatio * std::max(p, q));
    }

    void consider(const Rotation& rotation) {
        if (best_ && angleOf(*best_) <= angleOf(rotation)) {
            return;
        }
        if (agree(rotated(from_, rotation), to_, tolerances_)) {
            best_ = rotation;
        }
    }

    /** The four turns that take principal axes to principal axes. */
    void tryPrincipalAxes(const Eigenvectors<3>& from, const Eigenvectors<3>& to) {
        for (const double first : {1.0, -1.0}) {
            for (const double second : {1.0, -1.0}) {
                Rotation target = {to.vectors[0] * first, to.vectors[1] * second, {}};
                target[2] = cross(target[0], target[1]);
                const Rotation source = {from.vectors[0], from.vectors[1], cross(from.vectors[0], from.vectors[1])};
                consider(product(transposed(target), source));
            }
        }
    }

    /** Turns about an axis after a first turn, so that what is not round about it comes to lie alike. */
    void tryAboutAxis(const Rotation& first, const Vector3& axis) {
        consider(first);
        const Rotation upright = rotationBetween(axis, {0.0, 0.0, 1.0});
        const std::vector<Harmonic> a = harmonicsOf(rotated(from_, product(upright, first)), shapeTolerance);
        const std::vector<Harmonic> b = harmonicsOf(rotated(to_, upright), shapeTolerance);
        std::size_t clearest = 0;
        double clearness = 0.0;
        for (std::size_t i = 0; i < a.size(); ++i) {
            const double value = std::min(std::abs(a[i].value), std::abs(b[i].value)) / a[i].tolerance * a[i].order;
            if (value > clearness) {
                clearness = value;
                clearest = i;
            }
        }
        constexpr double noise = 2.0;
        if (clearness <= noise) {
            return; // it is round
        }
        constexpr double fullTurn = 2.0 * 3.141592653589793;
        const int order = a[clearest].order;
        const double angle = std::arg(b[clearest].value) - std::arg(a[clearest].value);
        for (int i = 0; i < order; ++i) {
            consider(product(rotationAbout(axis, (angle + fullTurn * i) / order), first));
        }
    }

    const Shape& from_;
    const Shape& to_;
    MomentTolerances tolerances_;
    std::optional<Rotation> best_;
};

} // namespace

bool measureAlike(const Body& a, const Body& b) {
    if (!sameVolume(a, b)) {
        return false;
    }
    if (!bothHaveSurface(a, b)) {
        return sameBoxSize(a, b) && sameRadii(a.record->version, b.record->version);
    }
    return alike(a.shape.area, b.shape.area) && largestPart(a.spread - b.spread) <= shapeTolerance;
}

bool lieAlike(const Body& a, const Body& b) {
    return measureAlike(a, b) && sameBoxSize(a, b) &&
           (!bothHaveSurface(a, b) || agree(a.shape, b.shape, MomentTolerances(b.shape, shapeTolerance)));
}

bool areInPlace(const Body& a, const Body& b) {
    if (bothHaveSurface(a, b) && largestPart(a.centre - b.centre) > placeTolerance) {
        return false;
    }
    if (a.box && b.box &&
        (largestPart(a.box->low - b.box->low) > placeTolerance ||
         largestPart(a.box->high - b.box->high) > placeTolerance)) {
        return false;
    }
    return lieAlike(a, b);
}

std::optional<Rotation> turnBetween(const Body& from, const Body& to) {
    if (lieAlike(from, to)) {
        return noRotation;
    }
    if (!measureAlike(from, to) || !bothHaveSurface(from, to)) {
        return std::nullopt;
    }
    return TurnSearch(from, to).result();
}

double likeness(const Body& a, const Body& b) {
    if (turnBetween(a, b)) {
        return 1.0;
    }
    constexpr double thinnest = 0.001; // a sheet is as much like another as they are large
    constexpr double mostForOthers = 0.999;
    double result = 1.0;
    for (std::size_t i = 0; i < a.spread.size(); ++i) {
        const double p = a.spread[i] + thinnest;
        const double q = b.spread[i] + thinnest;
        result *= std::min(p, q) / std::max(p, q);
    }
    if (bothHaveSurface(a, b)) {
        result *= std::min(a.shape.area, b.shape.area) / std::max(a.shape.area, b.shape.area);
    }
    return std::min(std::sqrt(result), mostForOthers);
}

double distanceBetween(const Body& a, const Body& b) {
    if (bothHaveSurface(a, b) || !a.box || !b.box) {
        return length(a.centre - b.centre);
    }
    return length((a.box->low + a.box->high - b.box->low - b.box->high) * 0.5);
}
