#include "geometry/Sweeps.h"

#include "geometry/Curves.h"
#include "geometry/Fineness.h"

#include <algorithm>

namespace IfcReader {

namespace {

using Section = std::vector<Face>;

/** Two triangles, since the four corners need not lie in a plane; none where they have no area. */
void appendQuad(Body& body, const Vector& a, const Vector& b, const Vector& c, const Vector& d) {
    constexpr double noArea = 1e-14;
    if (length(cross(b - a, c - a)) > noArea) {
        body.faces.push_back({{a, b, c}, {}});
    }
    if (length(cross(c - a, d - a)) > noArea) {
        body.faces.push_back({{a, c, d}, {}});
    }
}

void appendSides(Body& body, const Loop& from, const Loop& to) {
    for (std::size_t i = 0; i < from.size(); ++i) {
        const std::size_t next = (i + 1) % from.size();
        appendQuad(body, from[i], from[next], to[next], to[i]);
    }
}

template <typename Map>
Section moved(const Section& section, const Map& map) {
    Section result = section;
    for (Face& face : result) {
        forEachLoop(face, [&](Loop& loop) {
            for (Vector& p : loop) {
                p = map(p);
            }
        });
    }
    return result;
}

} // namespace

Body prism(const std::vector<Face>& areas, const Vector& along) {
    Body body;
    for (const Face& area : areas) {
        Face bottom = area;
        flip(bottom);
        Face top = area;
        transform(top, Affine{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, along});
        body.faces.push_back(std::move(bottom));
        body.faces.push_back(std::move(top));
        forEachLoop(area, [&](const Loop& loop) {
            for (std::size_t i = 0; i < loop.size(); ++i) {
                const Vector& p = loop[i];
                const Vector& q = loop[(i + 1) % loop.size()];
                body.faces.push_back({{p, q, q + along, p + along}, {}});
            }
        });
    }
    turnOutwards(body);
    return body;
}

Body strip(const Loop& path, const Vector& along) {
    Body body;
    body.solid = false;
    for (std::size_t i = 0; i + 1 < path.size(); ++i) {
        body.faces.push_back({{path[i], path[i + 1], path[i + 1] + along, path[i] + along}, {}});
    }
    return body;
}

Body pyramid(const Loop& base, const Vector& tip) {
    Body body;
    body.faces.push_back({Loop(base.rbegin(), base.rend()), {}});
    for (std::size_t i = 0; i < base.size(); ++i) {
        body.faces.push_back({{base[i], base[(i + 1) % base.size()], tip}, {}});
    }
    return body;
}

Body loft(const std::vector<Section>& sections, bool closed) {
    Body body;
    const std::size_t size = sections.size();
    for (std::size_t s = 0; s + (closed ? 0 : 1) < size; ++s) {
        const Section& from = sections[s];
        const Section& to = sections[(s + 1) % size];
        for (std::size_t k = 0; k < from.size(); ++k) {
            appendSides(body, from[k].outer, to[k].outer);
            for (std::size_t h = 0; h < from[k].holes.size(); ++h) {
                appendSides(body, from[k].holes[h], to[k].holes[h]);
            }
        }
    }
    if (!closed) {
        for (Face face : sections.front()) {
            flip(face);
            body.faces.push_back(std::move(face));
        }
        body.faces.insert(body.faces.end(), sections.back().begin(), sections.back().end());
    }
    turnOutwards(body);
    return body;
}

Body revolution(const std::vector<Face>& areas, const Vector& origin, const Vector& axis, double angle, Work& work) {
    const bool whole = std::abs(angle) > 2 * pi - 1e-9;
    angle = whole ? 2 * pi : angle;
    double radius = 0.0;
    for (const Face& area : areas) {
        for (const Vector& p : area.outer) {
            radius = std::max(radius, length(cross(axis, p - origin)));
        }
    }
    const int chords = chordsOf(angle, radius);
    work.add(countPoints(areas) * static_cast<std::size_t>(chords) * Work::kept);
    std::vector<Section> sections;
    for (int s = 0; s < chords + (whole ? 0 : 1); ++s) {
        const double t = angle * s / chords;
        sections.push_back(moved(areas, [&](const Vector& p) {
            const Vector v = p - origin;
            const Vector along = axis * dot(axis, v);
            const Vector away = v - along;
            // A point on the axis stays exactly where it is, so that what it touches is joined there.
            return length(away) < 1e-9 ? origin + along
                                       : origin + along + away * std::cos(t) + cross(axis, v) * std::sin(t);
        }));
    }
    return loft(sections, whole);
}

Body alongPath(const std::vector<Face>& areas, const BentPath& path, Work& work) {
    work.add(countPoints(areas) * path.size() * Work::kept);
    constexpr double sharpestBend = 0.05;
    Affine start;
    start.z = path.after(0);
    start.x = perpendicular(start.z);
    start.y = cross(start.z, start.x);
    start.origin = path[0];
    Section section = moved(areas, start);
    std::vector<Section> sections;
    for (std::size_t i = 0; i + (path.closed() ? 1 : 0) < path.size(); ++i) {
        const Vector here = i == 0 ? path.after(0) : path.before(i);
        const Vector normal = path.normal(i);
        const double slope = std::max(sharpestBend, dot(here, normal));
        section = moved(section, [&](const Vector& p) { return p + here * (dot(path[i] - p, normal) / slope); });
        sections.push_back(section);
    }
    return loft(sections, path.closed());
}

} // namespace IfcReader
