#include "geometry/Curves.h"

#include "geometry/Fineness.h"
#include "geometry/Placements.h"

#include <algorithm>
#include <optional>

namespace IfcReader {

namespace {

constexpr double samePoint = 1e-9; ///< corners of a polyline that are nearer are one, in metres
constexpr double sameEnd = 1e-5;   ///< ends of segments that are nearer are joined, in metres
constexpr int chordsOfBezier = 16;

void appendDistinct(Loop& path, const Vector& p, double distance) {
    if (path.empty() || length(p - path.back()) > distance) {
        path.push_back(p);
    }
}

Loop polyline(const Item& curve) {
    Loop path;
    for (const std::uint64_t id : curve.references(0)) {
        appendDistinct(path, pointOf(curve.items().at(id)), samePoint);
    }
    return path;
}

/** A point on a polyline: whole parameters stand for its corners. */
Vector polylinePoint(const Loop& corners, double parameter) {
    const double last = static_cast<double>(corners.size() - 1);
    const double clamped = std::clamp(parameter, 0.0, last);
    const std::size_t i = std::min(static_cast<std::size_t>(clamped), corners.size() - 2);
    return corners[i] + (corners[i + 1] - corners[i]) * (clamped - static_cast<double>(i));
}

Loop polylinePart(const Loop& corners, double from, double to) {
    if (corners.size() < 2) {
        return corners;
    }
    const bool backwards = from > to;
    const double low = std::min(from, to);
    const double high = std::max(from, to);
    Loop part{polylinePoint(corners, low)};
    for (std::size_t i = 0; i < corners.size(); ++i) {
        const double at = static_cast<double>(i);
        if (at > low + 1e-9 && at < high - 1e-9) {
            part.push_back(corners[i]);
        }
    }
    appendDistinct(part, polylinePoint(corners, high), samePoint);
    if (backwards) {
        std::reverse(part.begin(), part.end());
    }
    return part;
}

/** The parameter of the point on a polyline that lies nearest to @p p. */
double polylineParameter(const Loop& corners, const Vector& p) {
    double best = 0.0;
    double nearest = 1e300;
    for (std::size_t i = 0; i + 1 < corners.size(); ++i) {
        const Vector edge = corners[i + 1] - corners[i];
        const double t = std::clamp(dot(p - corners[i], edge) / dot(edge, edge), 0.0, 1.0);
        const double distance = length(corners[i] + edge * t - p);
        if (distance < nearest) {
            nearest = distance;
            best = static_cast<double>(i) + t;
        }
    }
    return best;
}

struct Line {
    explicit Line(const Item& item) : start(pointOf(item.child(0))) {
        const Item vector = item.child(1);
        unit = directionOf(vector.child(0)) * vector.length(1);
    }
    Vector operator()(double parameter) const { return start + unit * parameter; }

    Vector start;
    Vector unit; ///< by parameter 1
};

bool isConic(const Item& item) {
    return item.is("IFCCIRCLE") || item.is("IFCELLIPSE");
}

struct Conic {
    explicit Conic(const Item& item)
        : place(placementOf(item.child(0))),
          xRadius(item.positiveLength(1)),
          yRadius(item.is("IFCELLIPSE") ? item.positiveLength(2) : xRadius) {}

    double angleOf(const Vector& point) const {
        const Vector p = place.inverse()(point);
        return std::atan2(p.y / yRadius, p.x / xRadius);
    }
    Loop arc(double from, double to) const {
        Loop points = Curves::arc(from, to, xRadius, yRadius);
        for (Vector& p : points) {
            p = place(p);
        }
        return points;
    }

    Affine place;
    double xRadius;
    double yRadius;
};

/** One end of a trimmed curve, given by parameter, by point, or both. */
struct Trim {
    Trim(const Item& curve, std::size_t argument) {
        StepArguments members = listMembers(curve.argument(argument));
        const bool preferPoint = curve.word(4) == "CARTESIAN";
        while (const auto member = members.next()) {
            if (const auto id = stepReference(*member)) {
                point = pointOf(curve.items().at(*id));
            } else {
                number = curve.checked(*member);
            }
        }
        if (!point && !number) {
            curve.fail("trimmed by nothing");
        }
        if (point && number) {
            preferPoint ? number.reset() : point.reset();
        }
    }

    std::optional<Vector> point;
    std::optional<double> number;
};

/** Moves the end of an arc by whole turns, so that it is reached from the start in the wanted sense. */
double reachedAngle(double from, double to, bool forwards) {
    constexpr double near = 1e-9;
    double sweep = std::fmod(forwards ? to - from : from - to, 2 * pi);
    if (sweep <= near) {
        sweep += 2 * pi;
    }
    return forwards ? from + sweep : from - sweep;
}

Loop trimmed(const Item& curve) {
    const Item basis = curve.child(0);
    const Trim first(curve, 1);
    const Trim second(curve, 2);
    const bool forwards = curve.word(3) != "F";
    if (basis.is("IFCLINE")) {
        const Line line(basis);
        return {first.point ? *first.point : line(*first.number), second.point ? *second.point : line(*second.number)};
    }
    if (isConic(basis)) {
        const Conic conic(basis);
        const auto angle = [&](const Trim& trim) {
            return trim.point ? conic.angleOf(*trim.point) : *trim.number * curve.items().units().radian;
        };
        const double from = angle(first);
        return conic.arc(from, reachedAngle(from, angle(second), forwards));
    }
    if (basis.is("IFCPOLYLINE")) {
        const Loop corners = polyline(basis);
        const auto parameter = [&](const Trim& trim) {
            return trim.point ? polylineParameter(corners, *trim.point) : *trim.number;
        };
        return polylinePart(corners, parameter(first), parameter(second));
    }
    basis.fail("can't be trimmed");
}

Loop composite(const Item& curve) {
    Loop path;
    for (const std::uint64_t id : curve.references(0)) {
        const Item segment = curve.items().at(id);
        Loop part = Curves::path(segment.child(2));
        bool backwards = segment.word(1) == "F";
        if (!part.empty() && !path.empty()) {
            // Some programs get the sense wrong; the ends tell.
            const double ahead = length((backwards ? part.back() : part.front()) - path.back());
            const double behind = length((backwards ? part.front() : part.back()) - path.back());
            backwards ^= ahead > sameEnd && behind < sameEnd;
        }
        if (backwards) {
            std::reverse(part.begin(), part.end());
        }
        for (const Vector& p : part) {
            appendDistinct(path, p, path.empty() || &p != &part.front() ? samePoint : sameEnd);
        }
    }
    if (path.size() > 2 && length(path.front() - path.back()) < sameEnd) {
        path.back() = path.front();
    }
    return path;
}

/** De Casteljau's scheme on points that carry their weights. */
Vector bezierPoint(Loop points, std::vector<double> weights, double t) {
    for (std::size_t size = points.size() - 1; size > 0; --size) {
        for (std::size_t i = 0; i < size; ++i) {
            points[i] = points[i] * (1 - t) + points[i + 1] * t;
            weights[i] = weights[i] * (1 - t) + weights[i + 1] * t;
        }
    }
    return points[0] * (1.0 / weights[0]);
}

Loop bezier(const Item& curve) {
    const double degree = curve.number(0);
    const std::vector<std::uint64_t> ids = curve.references(1);
    if (!(degree >= 1.0 && degree <= 30.0) || ids.size() < 2) {
        curve.fail("its degree or its points are wrong");
    }
    const auto n = static_cast<std::size_t>(degree);
    if ((ids.size() - 1) % n != 0) {
        curve.fail("its points don't make whole pieces");
    }
    std::vector<double> weights(ids.size(), 1.0);
    if (curve.is("IFCRATIONALBEZIERCURVE")) {
        weights = curve.numbers(5);
    }
    if (weights.size() != ids.size() || *std::min_element(weights.begin(), weights.end()) <= 0.0) {
        curve.fail("its weights are wrong");
    }
    Loop points;
    for (std::size_t i = 0; i < ids.size(); ++i) {
        points.push_back(pointOf(curve.items().at(ids[i])) * weights[i]);
    }
    const int chords = n == 1 ? 1 : chordsOfBezier;
    Loop path{points[0] * (1.0 / weights[0])};
    for (std::size_t first = 0; first + n < points.size(); first += n) {
        const auto offset = static_cast<std::ptrdiff_t>(first);
        const auto size = static_cast<std::ptrdiff_t>(n + 1);
        const Loop piece(points.begin() + offset, points.begin() + offset + size);
        const std::vector<double> pieceWeights(weights.begin() + offset, weights.begin() + offset + size);
        curve.items().work().add(static_cast<std::size_t>(chords) * n * n);
        for (int i = 1; i <= chords; ++i) {
            path.push_back(bezierPoint(piece, pieceWeights, static_cast<double>(i) / chords));
        }
    }
    return path;
}

/** How many units of its parameter a segment of a composite curve takes. */
double parameterLength(const Item& curve, const Loop& path) {
    if (curve.is("IFCTRIMMEDCURVE")) {
        const Item basis = curve.child(0);
        if (isConic(basis)) {
            const Conic conic(basis);
            const double from = conic.angleOf(path.front());
            const double to = reachedAngle(from, conic.angleOf(path.back()), curve.word(3) != "F");
            return std::abs(to - from) / curve.items().units().radian;
        }
        if (basis.is("IFCLINE")) {
            return length(path.back() - path.front()) / length(Line(basis).unit);
        }
    }
    return static_cast<double>(path.size() - 1);
}

/** Segments follow each other; each takes as much of the parameter as its own curve does. */
Loop compositePart(const Item& curve, double from, double to) {
    Loop path;
    double before = 0.0;
    for (const std::uint64_t id : curve.references(0)) {
        const Item segment = curve.items().at(id);
        const Item parent = segment.child(2);
        Loop part = Curves::path(parent);
        if (part.size() < 2) {
            continue;
        }
        const double size = parameterLength(parent, part);
        if (segment.word(1) == "F") {
            std::reverse(part.begin(), part.end());
        }
        const double perChord = static_cast<double>(part.size() - 1) / size;
        const double low = std::max(from - before, 0.0) * perChord;
        const double high = std::min(to - before, size) * perChord;
        if (low < high) {
            for (const Vector& p : polylinePart(part, low, high)) {
                appendDistinct(path, p, sameEnd);
            }
        }
        before += size;
    }
    return path;
}

} // namespace

bool isClosed(const Loop& path) {
    return path.size() > 3 && length(path.front() - path.back()) < samePoint;
}

Loop Curves::arc(double from, double to, double xRadius, double yRadius) {
    const double sweep = to - from;
    const int chords = chordsOf(sweep, std::max(xRadius, yRadius));
    Loop path;
    for (int i = 0; i <= chords; ++i) {
        const double t = from + sweep * i / chords;
        path.push_back({xRadius * std::cos(t), yRadius * std::sin(t), 0.0});
    }
    if (std::abs(sweep) > 2 * pi - 1e-9) {
        path.back() = path.front();
    }
    return path;
}

Loop Curves::ellipse(double xRadius, double yRadius) {
    Loop points = arc(0.0, 2 * pi, xRadius, yRadius);
    points.pop_back();
    return points;
}

Loop Curves::path(const Item& curve) {
    const Work::Level level(curve.items().work());
    Loop points;
    if (curve.is("IFCPOLYLINE")) {
        points = polyline(curve);
    } else if (isConic(curve)) {
        points = Conic(curve).arc(0.0, 2 * pi);
    } else if (curve.is("IFCTRIMMEDCURVE")) {
        points = trimmed(curve);
    } else if (curve.is("IFCCOMPOSITECURVE") || curve.is("IFC2DCOMPOSITECURVE")) {
        points = composite(curve);
    } else if (curve.is("IFCBEZIERCURVE") || curve.is("IFCRATIONALBEZIERCURVE")) {
        points = bezier(curve);
    } else if (curve.is("IFCOFFSETCURVE2D")) {
        points = offset(path(curve.child(0)), curve.length(1));
    } else {
        curve.fail("no curve that is drawn");
    }
    curve.items().work().add(points.size());
    return points;
}

Loop Curves::path(const Item& curve, double from, double to) {
    // From 0 to 1 is what many programs write for a whole chain, however many segments it has.
    const bool whole = (from == 0.0 && to == 1.0) || !(from < to);
    if (isConic(curve)) {
        const double radian = curve.items().units().radian;
        return Conic(curve).arc(from * radian, from == to ? from * radian + 2 * pi : to * radian);
    }
    if (curve.is("IFCLINE")) {
        const Line line(curve);
        return {line(from), line(to)};
    }
    if (!whole && curve.is("IFCPOLYLINE")) {
        return polylinePart(polyline(curve), from, to);
    }
    if (!whole && (curve.is("IFCCOMPOSITECURVE") || curve.is("IFC2DCOMPOSITECURVE"))) {
        const Work::Level level(curve.items().work());
        Loop part = compositePart(curve, from, to);
        return part.size() > 1 ? part : path(curve);
    }
    return path(curve);
}

Loop Curves::loop(const Item& curve) {
    Loop points = path(curve);
    if (points.size() > 1 && length(points.front() - points.back()) < sameEnd) {
        points.pop_back();
    }
    if (points.size() < 3) {
        curve.fail("encloses nothing");
    }
    return points;
}

Loop Curves::offset(const Loop& path, double distance) {
    constexpr double sharpestMitre = 0.1;
    const std::size_t size = path.size();
    const bool closed = isClosed(path);
    const auto normal = [&](std::size_t i) { // of the edge behind corner i
        const Vector d = normalized(path[i + 1] - path[i]);
        return Vector{-d.y, d.x, 0.0};
    };
    Loop moved;
    for (std::size_t i = 0; i < size && size > 1; ++i) {
        const bool first = i == 0;
        const bool last = i + 1 == size;
        const Vector after = normal(last ? (closed ? 0 : size - 2) : i);
        const Vector before = normal(first ? (closed ? size - 2 : 0) : i - 1);
        const Vector middle = normalized(before + after);
        moved.push_back(path[i] + middle * (distance / std::max(sharpestMitre, dot(middle, before))));
    }
    return moved;
}

} // namespace IfcReader
