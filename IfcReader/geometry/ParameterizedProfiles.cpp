#include "geometry/ParameterizedProfiles.h"

#include "geometry/Curves.h"
#include "geometry/Fineness.h"

#include <algorithm>
#include <utility>

namespace IfcReader {

namespace {

/** A corner of an outline in the plane, and the radius it is rounded with. */
struct Corner {
    double x = 0.0;
    double y = 0.0;
    double radius = 0.0;
};
using Outline = std::vector<Corner>;

Vector pointOf(const Corner& corner) {
    return {corner.x, corner.y, 0.0};
}

/** Angle between the edges of corner @p i. */
double angleAt(const Outline& outline, std::size_t i) {
    const std::size_t size = outline.size();
    const Vector corner = pointOf(outline[i]);
    const Vector in = normalized(pointOf(outline[(i + size - 1) % size]) - corner);
    const Vector out = normalized(pointOf(outline[(i + 1) % size]) - corner);
    return std::acos(std::clamp(dot(in, out), -1.0, 1.0));
}

/** How much of its edges each rounded corner takes: no more than there is. */
std::vector<double> tangents(const Outline& outline) {
    const std::size_t size = outline.size();
    std::vector<double> wanted(size, 0.0);
    for (std::size_t i = 0; i < size; ++i) {
        const double angle = angleAt(outline, i);
        if (outline[i].radius > 1e-9 && angle > 1e-6 && angle < pi - 1e-6) {
            wanted[i] = outline[i].radius / std::tan(angle / 2.0);
        }
    }
    std::vector<double> taken = wanted;
    for (std::size_t i = 0; i < size; ++i) {
        const std::size_t next = (i + 1) % size;
        const double there = length(pointOf(outline[next]) - pointOf(outline[i]));
        const double both = wanted[i] + wanted[next];
        if (both > there) {
            taken[i] = std::min(taken[i], wanted[i] * there / both);
            taken[next] = std::min(taken[next], wanted[next] * there / both);
        }
    }
    return taken;
}

/** Appends the arc that a corner becomes. */
void appendRounded(const Outline& outline, std::size_t i, double tangent, Loop& loop) {
    const std::size_t size = outline.size();
    const Vector corner = pointOf(outline[i]);
    const Vector in = normalized(pointOf(outline[(i + size - 1) % size]) - corner);
    const Vector out = normalized(pointOf(outline[(i + 1) % size]) - corner);
    const double angle = angleAt(outline, i);
    const double radius = tangent * std::tan(angle / 2.0);
    const Vector centre = corner + normalized(in + out) * (radius / std::sin(angle / 2.0));
    const Vector from = corner + in * tangent - centre;
    const double sweep = (cross(in, out).z > 0.0 ? -1.0 : 1.0) * (pi - angle);
    const int chords = chordsOf(sweep, radius);
    for (int k = 0; k <= chords; ++k) {
        const double c = std::cos(sweep * k / chords);
        const double s = std::sin(sweep * k / chords);
        loop.push_back(centre + Vector{from.x * c - from.y * s, from.x * s + from.y * c, 0.0});
    }
}

Loop rounded(const Outline& outline) {
    const std::vector<double> taken = tangents(outline);
    Loop all;
    for (std::size_t i = 0; i < outline.size(); ++i) {
        if (taken[i] > 1e-9) {
            appendRounded(outline, i, taken[i], all);
        } else {
            all.push_back(pointOf(outline[i]));
        }
    }
    Loop loop;
    for (const Vector& p : all) {
        if (loop.empty() || (length(p - loop.back()) > 1e-9 && length(p - all.front()) > 1e-9)) {
            loop.push_back(p);
        }
    }
    return loop;
}

Loop rectangle(double xSize, double ySize, double radius) {
    const double x = xSize / 2.0;
    const double y = ySize / 2.0;
    return rounded({{-x, -y, radius}, {x, -y, radius}, {x, y, radius}, {-x, y, radius}});
}

/** An outline that is the same on both sides of the y axis, from its right half. */
Loop mirrored(Outline right) {
    for (std::size_t i = right.size(); i-- > 0;) {
        const Corner corner = right[i];
        right.push_back({-corner.x, corner.y, corner.radius});
    }
    return rounded(right);
}

double slopeOf(const Item& profile, std::size_t i) {
    return std::tan(profile.angleOr(i, 0.0));
}

Face hollowRectangle(const Item& p) {
    const double x = p.positiveLength(3);
    const double y = p.positiveLength(4);
    const double wall = p.positiveLength(5);
    if (2.0 * wall >= std::min(x, y)) {
        p.fail("its wall is too thick");
    }
    return {rectangle(x, y, p.lengthOr(7, 0.0)), {rectangle(x - 2.0 * wall, y - 2.0 * wall, p.lengthOr(6, 0.0))}};
}

Face hollowCircle(const Item& p) {
    const double radius = p.positiveLength(3);
    const double inner = radius - p.positiveLength(4);
    if (!(inner > 0.0)) {
        p.fail("its wall is too thick");
    }
    return {Curves::ellipse(radius, radius), {Curves::ellipse(inner, inner)}};
}

Face trapezium(const Item& p) {
    const double x = p.positiveLength(3) / 2.0;
    const double top = p.positiveLength(4);
    const double y = p.positiveLength(5) / 2.0;
    const double offset = p.length(6);
    return {{{-x, -y, 0}, {x, -y, 0}, {-x + offset + top, y, 0}, {-x + offset, y, 0}}, {}};
}

Face iShape(const Item& p) {
    const bool uneven = p.is("IFCASYMMETRICISHAPEPROFILEDEF");
    const double bottom = p.positiveLength(3) / 2.0;
    const double d = p.positiveLength(4) / 2.0;
    const double web = p.positiveLength(5) / 2.0;
    const double flange = p.positiveLength(6);
    const double fillet = p.lengthOr(7, 0.0);
    const double top = uneven ? p.positiveLength(8) / 2.0 : bottom;
    const double topFlange = uneven ? p.lengthOr(9, flange) : flange;
    const double topFillet = uneven ? p.lengthOr(10, 0.0) : fillet;
    if (web > std::min(bottom, top) || flange + topFlange > 2.0 * d) {
        p.fail("its sizes contradict each other");
    }
    return {mirrored({{bottom, -d},
                      {bottom, -d + flange},
                      {web, -d + flange, fillet},
                      {web, d - topFlange, topFillet},
                      {top, d - topFlange},
                      {top, d}}),
            {}};
}

/** Depth, width, thickness, fillet, edge, slope: a sloped leg has its thickness in the middle of its length. */
Face lShape(const Item& p) {
    const double d = p.positiveLength(3) / 2.0;
    const double w = p.given(4) ? p.positiveLength(4) / 2.0 : d;
    const double t = p.positiveLength(5);
    const double edge = p.lengthOr(7, 0.0);
    const double s = slopeOf(p, 8);
    if (t >= 2.0 * std::min(d, w) || s * s >= 0.5) {
        p.fail("its sizes contradict each other");
    }
    const double xInner = (t - w - s * (t - d)) / (1.0 - s * s);
    const double yInner = (t - d - s * (t - w)) / (1.0 - s * s);
    return {rounded({{-w, -d},
                     {w, -d},
                     {w, -d + t - s * w, edge},
                     {xInner, yInner, p.lengthOr(6, 0.0)},
                     {-w + t - s * d, d, edge},
                     {-w, d}}),
            {}};
}

/** Depth, flange width, web, flange, fillet, edge, slope: the flange has its thickness in the middle of its width. */
Face uShape(const Item& p) {
    const double d = p.positiveLength(3) / 2.0;
    const double w = p.positiveLength(4) / 2.0;
    const double web = p.positiveLength(5);
    const double flange = p.positiveLength(6);
    const double fillet = p.lengthOr(7, 0.0);
    const double edge = p.lengthOr(8, 0.0);
    const double s = slopeOf(p, 9);
    const double outer = flange - s * w;
    const double inner = flange + s * (w - web);
    if (web >= 2.0 * w || inner >= d || outer <= 0.0) {
        p.fail("its sizes contradict each other");
    }
    return {rounded({{-w, -d},
                     {w, -d},
                     {w, -d + outer, edge},
                     {-w + web, -d + inner, fillet},
                     {-w + web, d - inner, fillet},
                     {w, d - outer, edge},
                     {w, d},
                     {-w, d}}),
            {}};
}

/**
 * Depth, flange width, web, flange, fillet, flange edge, web edge, web slope, flange slope. The web has its thickness
 * in the middle of the depth, each half of the flange in the middle of its width.
 */
Face tShape(const Item& p) {
    const double d = p.positiveLength(3) / 2.0;
    const double w = p.positiveLength(4) / 2.0;
    const double web = p.positiveLength(5) / 2.0;
    const double flange = p.positiveLength(6);
    const double webSlope = slopeOf(p, 10);
    const double flangeSlope = slopeOf(p, 11);
    const double yInner = (d - flange - flangeSlope * (w / 2.0 - web)) / (1.0 - flangeSlope * webSlope);
    const double xInner = web + webSlope * yInner;
    const double bottom = web - webSlope * d;
    const double outer = flange - flangeSlope * w / 2.0;
    if (web >= w || yInner <= -d || bottom <= 0.0 || outer <= 0.0) {
        p.fail("its sizes contradict each other");
    }
    return {mirrored({{bottom, -d, p.lengthOr(9, 0.0)},
                      {xInner, yInner, p.lengthOr(7, 0.0)},
                      {w, d - outer, p.lengthOr(8, 0.0)},
                      {w, d}}),
            {}};
}

/** Depth, width, wall, girth, inner radius. */
Face cShape(const Item& p) {
    const double d = p.positiveLength(3) / 2.0;
    const double w = p.positiveLength(4) / 2.0;
    const double t = p.positiveLength(5);
    const double girth = p.positiveLength(6);
    const double inner = p.lengthOr(7, 0.0);
    const double outer = inner > 0.0 ? inner + t : 0.0;
    if (t >= std::min(d, w) || girth > d) {
        p.fail("its sizes contradict each other");
    }
    return {rounded({{-w, -d, outer},
                     {w, -d, outer},
                     {w, -d + girth},
                     {w - t, -d + girth},
                     {w - t, -d + t, inner},
                     {-w + t, -d + t, inner},
                     {-w + t, d - t, inner},
                     {w - t, d - t, inner},
                     {w - t, d - girth},
                     {w, d - girth},
                     {w, d, outer},
                     {-w, d, outer}}),
            {}};
}

/** Depth, flange width, web, flange, fillet, edge. */
Face zShape(const Item& p) {
    const double d = p.positiveLength(3) / 2.0;
    const double w = p.positiveLength(4);
    const double t = p.positiveLength(5) / 2.0;
    const double flange = p.positiveLength(6);
    const double fillet = p.lengthOr(7, 0.0);
    const double edge = p.lengthOr(8, 0.0);
    if (2.0 * t >= w || flange >= d) {
        p.fail("its sizes contradict each other");
    }
    return {rounded({{-t, -d},
                     {w - t, -d},
                     {w - t, -d + flange, edge},
                     {t, -d + flange, fillet},
                     {t, d},
                     {-w + t, d},
                     {-w + t, d - flange, edge},
                     {-t, d - flange, fillet}}),
            {}};
}

/** Height, base width, radius, head width, head depths, web, width of the base's top, three base depths. */
Face craneRailA(const Item& p) {
    const double h = p.positiveLength(3) / 2.0;
    const double web = p.positiveLength(9) / 2.0;
    const double head = p.positiveLength(6) / 2.0;
    return {mirrored({{p.positiveLength(4) / 2.0, -h},
                      {p.positiveLength(4) / 2.0, -h + p.positiveLength(11)},
                      {p.positiveLength(10) / 2.0, -h + p.positiveLength(12)},
                      {web, -h + p.positiveLength(13)},
                      {web, h - p.positiveLength(8)},
                      {head, h - p.positiveLength(7)},
                      {head, h, p.lengthOr(5, 0.0)}}),
            {}};
}

/** Height, head width, radius, head depths, web, base depths: the base is as wide as the head. */
Face craneRailF(const Item& p) {
    const double h = p.positiveLength(3) / 2.0;
    const double head = p.positiveLength(4) / 2.0;
    const double web = p.positiveLength(8) / 2.0;
    return {mirrored({{head, -h},
                      {head, -h + p.positiveLength(9)},
                      {web, -h + p.positiveLength(10)},
                      {web, h - p.positiveLength(7)},
                      {head, h - p.positiveLength(6)},
                      {head, h, p.lengthOr(5, 0.0)}}),
            {}};
}

} // namespace

Face parameterizedArea(const Item& profile) {
    using Maker = Face (*)(const Item&);
    static constexpr std::pair<std::string_view, Maker> makers[] = {
        {"IFCRECTANGLEPROFILEDEF",
         [](const Item& p) {
             return Face{rectangle(p.positiveLength(3), p.positiveLength(4), 0.0), {}};
         }},
        {"IFCROUNDEDRECTANGLEPROFILEDEF",
         [](const Item& p) {
             return Face{rectangle(p.positiveLength(3), p.positiveLength(4), p.length(5)), {}};
         }},
        {"IFCCIRCLEPROFILEDEF",
         [](const Item& p) {
             return Face{Curves::ellipse(p.positiveLength(3), p.positiveLength(3)), {}};
         }},
        {"IFCELLIPSEPROFILEDEF",
         [](const Item& p) {
             return Face{Curves::ellipse(p.positiveLength(3), p.positiveLength(4)), {}};
         }},
        {"IFCRECTANGLEHOLLOWPROFILEDEF", hollowRectangle},
        {"IFCCIRCLEHOLLOWPROFILEDEF", hollowCircle},
        {"IFCTRAPEZIUMPROFILEDEF", trapezium},
        {"IFCISHAPEPROFILEDEF", iShape},
        {"IFCASYMMETRICISHAPEPROFILEDEF", iShape},
        {"IFCLSHAPEPROFILEDEF", lShape},
        {"IFCUSHAPEPROFILEDEF", uShape},
        {"IFCTSHAPEPROFILEDEF", tShape},
        {"IFCCSHAPEPROFILEDEF", cShape},
        {"IFCZSHAPEPROFILEDEF", zShape},
        {"IFCCRANERAILASHAPEPROFILEDEF", craneRailA},
        {"IFCCRANERAILFSHAPEPROFILEDEF", craneRailF}};
    for (const auto& [keyword, make] : makers) {
        if (profile.is(keyword)) {
            return make(profile);
        }
    }
    profile.fail("no profile that is known");
}

} // namespace IfcReader
