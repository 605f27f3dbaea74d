#include "geometry/Curves.h"

#include "geometry/Fineness.h"
#include "geometry/Placements.h"
#include "geometry/Polylines.h"

#include <algorithm>

namespace IfcReader {

namespace {

constexpr double sameEnd = 1e-5; ///< ends of segments that are nearer are joined, in metres
constexpr double noPart = 1e-9;  ///< parts of a curve that are shorter are none, in units of its parameter
constexpr int chordsOfBezier = 16;

/** All corners of a polyline, as they are numbered by its parameter. */
Loop cornersOf(const Item& curve) {
    Loop corners;
    for (const std::uint64_t id : curve.references(0)) {
        corners.push_back(pointOf(curve.items().at(id)));
    }
    return corners;
}

Loop polyline(const Item& curve) {
    Loop path;
    for (const Vector& p : cornersOf(curve)) {
        appendDistinct(path, p, samePoint);
    }
    return path;
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
double endAngleInSense(double from, double to, bool forwards) {
    constexpr double near = 1e-9;
    double sweep = std::fmod(forwards ? to - from : from - to, 2 * pi);
    if (sweep <= near) {
        sweep += 2 * pi;
    }
    return forwards ? from + sweep : from - sweep;
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

/** How many straight pieces stand for one unit of a Bezier curve's parameter. */
int chordsPerPiece(const Item& curve) {
    return curve.number(0) == 1.0 ? 1 : chordsOfBezier;
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
    const int chords = chordsPerPiece(curve);
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

bool isBezier(const Item& item) {
    return item.is("IFCBEZIERCURVE") || item.is("IFCRATIONALBEZIERCURVE");
}

bool isComposite(const Item& item) {
    return item.is("IFCCOMPOSITECURVE") || item.is("IFC2DCOMPOSITECURVE");
}

/** From where to where a curve goes, as its parameter counts in the file: backwards, where from is more than to. */
struct Span {
    double low() const { return std::min(from, to); }
    double high() const { return std::max(from, to); }
    bool backwards() const { return from > to; }

    double from;
    double to;
};

/** The ends of a trimmed curve. @param parameterOf  gives the parameter of a point on the basis curve */
template <typename Function>
Span endsOf(const Item& curve, Function parameterOf) {
    const Trim first(curve, 1);
    const Trim second(curve, 2);
    return {first.point ? parameterOf(*first.point) : *first.number,
            second.point ? parameterOf(*second.point) : *second.number};
}

/** The same, in parameters of the basis curve. */
Span trimmedSpan(const Item& curve) {
    const Item basis = curve.child(0);
    if (basis.is("IFCLINE")) {
        const Line line(basis);
        return endsOf(curve,
                      [&](const Vector& p) { return dot(p - line.start, line.unit) / dot(line.unit, line.unit); });
    }
    if (isConic(basis)) {
        const Conic conic(basis);
        const double radian = curve.items().units().radian;
        Span span = endsOf(curve, [&](const Vector& p) { return conic.angleOf(p) / radian; });
        span.to = endAngleInSense(span.from * radian, span.to * radian, curve.word(3) != "F") / radian;
        return span;
    }
    if (basis.is("IFCPOLYLINE")) {
        const Loop corners = cornersOf(basis);
        return endsOf(curve, [&](const Vector& p) { return polylineParameter(corners, p); });
    }
    if (isBezier(basis)) {
        const Loop points = bezier(basis);
        return endsOf(curve, [&](const Vector& p) { return polylineParameter(points, p) / chordsPerPiece(basis); });
    }
    basis.fail("it can't be trimmed");
}

/** All of a curve's parameter. */
Span spanOf(const Item& curve) {
    const Work::Level level(curve.items().work());
    if (curve.is("IFCTRIMMEDCURVE")) {
        return trimmedSpan(curve);
    }
    if (isConic(curve)) {
        return {0.0, 2 * pi / curve.items().units().radian};
    }
    if (curve.is("IFCPOLYLINE")) {
        return {0.0, static_cast<double>(curve.references(0).size()) - 1.0};
    }
    if (isBezier(curve)) {
        return {0.0, static_cast<double>(bezier(curve).size() - 1) / chordsPerPiece(curve)};
    }
    if (isComposite(curve)) {
        Span all{0.0, 0.0};
        for (const std::uint64_t id : curve.references(0)) {
            const Span segment = spanOf(curve.items().at(id).child(2));
            all.to += segment.high() - segment.low();
        }
        return all;
    }
    curve.fail("it can't be trimmed");
}

Loop partOf(const Item& curve, double from, double to);

Loop trimmed(const Item& curve) {
    const Item basis = curve.child(0);
    if (basis.is("IFCLINE")) {
        const Line line(basis);
        const Trim first(curve, 1);
        const Trim second(curve, 2);
        return {first.point ? *first.point : line(*first.number), second.point ? *second.point : line(*second.number)};
    }
    const Span span = trimmedSpan(curve);
    if (isConic(basis)) {
        const double radian = curve.items().units().radian;
        return Conic(basis).arc(span.from * radian, span.to * radian);
    }
    Loop path = partOf(basis, span.low(), span.high());
    if (span.backwards()) {
        std::reverse(path.begin(), path.end());
    }
    return path;
}

/** How many units of its parameter take a curve once around; 0 for one that doesn't turn. */
double turnOf(const Item& curve) {
    return isConic(curve) ? 2 * pi / curve.items().units().radian : 0.0;
}

/** What two trims leave of a curve; an arc may be meant a turn further on, or back, or run over its own begin. */
Loop trimmedPart(const Item& curve, double from, double to) {
    const Item basis = curve.child(0);
    const Span span = trimmedSpan(curve);
    const double turn = turnOf(basis);
    std::optional<Span> left;
    for (const double shift : {0.0, turn, -turn}) {
        const Span part{std::max(from + shift, span.low()), std::min(to + shift, span.high())};
        if (part.to - part.from > noPart) {
            const bool goesOn = left && part.from <= left->to + noPart && part.to >= left->from - noPart;
            if (goesOn) {
                left = Span{std::min(left->from, part.from), std::max(left->to, part.to)};
            } else if (!left) {
                left = part;
            }
        }
    }
    if (!left) {
        return {};
    }
    Loop path = partOf(basis, left->from, left->to);
    if (span.backwards()) {
        std::reverse(path.begin(), path.end());
    }
    return path;
}

/** Segments follow each other; each takes as much of the parameter as its own curve does. */
Loop compositePart(const Item& curve, double from, double to) {
    Loop path;
    double before = 0.0;
    for (const std::uint64_t id : curve.references(0)) {
        const Item segment = curve.items().at(id);
        const Item parent = segment.child(2);
        const Span span = spanOf(parent);
        const double size = span.high() - span.low();
        const bool reversed = segment.word(1) == "F";
        const double first = std::max(from - before, 0.0);
        const double last = std::min(to - before, size);
        if (last - first > noPart) {
            const bool downwards = reversed != span.backwards();
            const double low = downwards ? span.high() - last : span.low() + first;
            Loop part = partOf(parent, low, low + (last - first));
            if (reversed) {
                std::reverse(part.begin(), part.end());
            }
            for (const Vector& p : part) {
                appendDistinct(path, p, &p == &part.front() ? sameEnd : samePoint);
            }
        }
        before += size;
    }
    return path;
}

/** The part of a curve between two parameters, in the curve's own direction; no points where there is none. */
Loop partOf(const Item& curve, double from, double to) {
    const Work::Level level(curve.items().work());
    if (isConic(curve)) {
        const double radian = curve.items().units().radian;
        return Conic(curve).arc(from * radian, to * radian);
    }
    if (curve.is("IFCLINE")) {
        const Line line(curve);
        return {line(from), line(to)};
    }
    if (curve.is("IFCPOLYLINE")) {
        return polylinePart(cornersOf(curve), from, to);
    }
    if (isBezier(curve)) {
        const double chords = chordsPerPiece(curve);
        return polylinePart(bezier(curve), from * chords, to * chords);
    }
    if (curve.is("IFCTRIMMEDCURVE")) {
        return trimmedPart(curve, from, to);
    }
    if (isComposite(curve)) {
        return compositePart(curve, from, to);
    }
    curve.fail("it can't be trimmed");
}

/** What two ends leave of a curve; at least two points. An arc may run over the begin of its circle. */
Loop pathBetween(const Item& curve, double from, double to) {
    if (isConic(curve) && from >= to) {
        const double radian = curve.items().units().radian;
        return Conic(curve).arc(from * radian, from == to ? from * radian + 2 * pi : to * radian);
    }
    if (curve.is("IFCTRIMMEDCURVE") && from > to) {
        // An arc over the begin of its circle, or the ends in the order in which the curve runs
        if (trimmedSpan(curve).backwards()) {
            std::swap(from, to);
        } else {
            to += turnOf(curve.child(0));
        }
    }
    if (isComposite(curve)) {
        const Span all = spanOf(curve);
        if (from <= all.low() + noPart && to >= all.high() - noPart) {
            return Curves::path(curve);
        }
    }
    Loop points = from < to ? partOf(curve, from, to) : Loop{};
    if (points.size() < 2) {
        curve.fail("nothing of it lies between its trims");
    }
    curve.items().work().add(points.size());
    return points;
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
    } else if (isComposite(curve)) {
        points = composite(curve);
    } else if (isBezier(curve)) {
        points = bezier(curve);
    } else if (curve.is("IFCOFFSETCURVE2D")) {
        points = offset(path(curve.child(0)), curve.length(1));
    } else {
        curve.fail("no curve that is drawn");
    }
    curve.items().work().add(points.size());
    return points;
}

Loop Curves::path(const Item& curve, std::optional<double> from, std::optional<double> to) {
    // From 0 to 1 is what many programs write for a whole chain, however many segments it has.
    const bool isChain = isComposite(curve) || curve.is("IFCPOLYLINE");
    if (isChain && from.value_or(0.0) == 0.0 && to.value_or(1.0) == 1.0) {
        return path(curve);
    }
    if (!from || !to) {
        if (!from && !to) {
            return path(curve);
        }
        const Span all = spanOf(curve);
        return path(curve, from.value_or(all.low()), to.value_or(all.high()));
    }
    return pathBetween(curve, *from, *to);
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
