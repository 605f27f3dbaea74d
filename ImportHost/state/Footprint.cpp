#include "state/Footprint.h"

#include "state/Numbers.h"

#include <PluginKit/Text.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <stdexcept>
#include <unordered_set>
#include <utility>

namespace {

using Polygon = std::vector<Point>;

/** Faces that cover less than this, in square metres, stand upright or are too small to be seen. */
constexpr double smallestArea = 1e-4;

/** An object of more faces is drawn as its convex hull; with many objects in a model this comes earlier. */
constexpr std::size_t maxFaces = 400;
constexpr std::size_t maxFacesOfModel = 60000;

double area(const Polygon& polygon) {
    double sum = 0.0;
    for (std::size_t i = 0; i < polygon.size(); ++i) {
        const Point& a = polygon[i];
        const Point& b = polygon[(i + 1) % polygon.size()];
        sum += a.x * b.y - b.x * a.y;
    }
    return sum / 2.0;
}

double turn(const Point& a, const Point& b, const Point& c) {
    return (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
}

Polygon convexHull(Polygon points) {
    std::sort(points.begin(), points.end(),
              [](const Point& a, const Point& b) { return a.x != b.x ? a.x < b.x : a.y < b.y; });
    Polygon hull;
    for (int pass = 0; pass < 2; ++pass) {
        const std::size_t begin = hull.size();
        for (const Point& point : points) {
            while (hull.size() >= begin + 2 && turn(hull[hull.size() - 2], hull.back(), point) <= 0.0) {
                hull.pop_back();
            }
            hull.push_back(point);
        }
        hull.pop_back();
        std::reverse(points.begin(), points.end());
    }
    return hull.empty() && !points.empty() ? Polygon{points.front()} : hull;
}

/**
 * A hash of the points to the millimetre, whichever of them comes first: the top and the bottom of a body have the same.
 * Of two faces that differ and have one hash all the same the second isn't drawn.
 */
std::uint64_t hashOf(const Polygon& polygon) {
    std::vector<std::pair<long, long>> form;
    form.reserve(polygon.size());
    for (const Point& point : polygon) {
        form.emplace_back(std::lround(point.x * 1000.0), std::lround(point.y * 1000.0));
    }
    std::rotate(form.begin(), std::min_element(form.begin(), form.end()), form.end());
    std::uint64_t hash = form.size();
    for (const auto& [x, y] : form) {
        for (const long coordinate : {x, y}) {
            hash = (hash ^ static_cast<std::uint64_t>(coordinate)) * 0x9E3779B97F4A7C15u;
            hash ^= hash >> 29;
        }
    }
    return hash;
}

/** What one object's surfaces leave behind while the stream is read. */
struct Collector {
    Footprint faces;
    Polygon points;
    std::unordered_set<std::uint64_t> seen; ///< hashes of the faces' normal forms

    void add(Polygon& polygon) {
        const double covered = area(polygon);
        if (std::abs(covered) < smallestArea) {
            return;
        }
        if (covered < 0.0) {
            std::reverse(polygon.begin(), polygon.end());
        }
        if (seen.insert(hashOf(polygon)).second) {
            faces.push_back(polygon);
        }
    }

    Footprint footprint(std::size_t limit) {
        if (!faces.empty() && faces.size() <= limit) {
            return std::move(faces);
        }
        return points.empty() ? Footprint() : Footprint{convexHull(points)};
    }
};

/** Appends the points that a field of coordinates tells, three numbers for each. */
void readVertices(std::string_view field, Polygon& points) {
    Parts coordinates(field, ' ');
    std::string_view x;
    std::string_view y;
    std::string_view z;
    while (coordinates.next(x)) {
        if (!coordinates.next(y) || !coordinates.next(z)) {
            throw std::runtime_error("a vertex lacks a coordinate");
        }
        points.push_back({toCoordinate(x), toCoordinate(y)});
    }
}

/** A line: object, material, coordinates of the vertices, and the vertex numbers of each polygon. */
void readLine(std::string_view line, std::vector<Collector>& objects) {
    Parts fields(line, '\t');
    std::string_view field;
    std::string_view material;
    std::string_view coordinates;
    if (!fields.next(field) || !fields.next(material) || !fields.next(coordinates)) {
        throw std::runtime_error("too few fields");
    }
    const long number = toLong(field);
    if (number < 1 || static_cast<std::size_t>(number) > objects.size()) {
        throw std::runtime_error("there is no object " + std::to_string(number));
    }
    Collector& object = objects[static_cast<std::size_t>(number) - 1];
    const std::size_t first = object.points.size();
    readVertices(coordinates, object.points);
    const std::size_t count = object.points.size() - first;

    Polygon polygon;
    while (fields.next(field)) {
        polygon.clear();
        Parts corners(field, ' ');
        for (std::string_view corner; corners.next(corner);) {
            const long index = toLong(corner);
            if (index < 0 || static_cast<std::size_t>(index) >= count) {
                throw std::runtime_error("there is no vertex " + std::to_string(index));
            }
            polygon.push_back(object.points[first + static_cast<std::size_t>(index)]);
        }
        object.add(polygon);
    }
}

} // namespace

std::vector<Footprint> readFootprints(std::string_view polygonsStream, std::size_t objectCount) {
    std::vector<Collector> objects(objectCount);
    std::size_t lineNumber = 0;
    Parts lines(polygonsStream, '\n');
    for (std::string_view line; lines.next(line);) {
        ++lineNumber;
        try {
            if (!line.empty()) {
                readLine(line, objects);
            }
        } catch (const std::runtime_error& e) {
            throw std::runtime_error("line " + std::to_string(lineNumber) + ": " + e.what());
        }
    }

    const std::size_t limit = std::min(maxFaces, maxFacesOfModel / std::max<std::size_t>(objectCount, 1));
    std::vector<Footprint> footprints;
    footprints.reserve(objectCount);
    for (Collector& object : objects) {
        footprints.push_back(object.footprint(limit));
        object = Collector();
    }
    return footprints;
}

void appendFootprint(std::string& text, const Footprint& footprint) {
    const char* separator = "";
    for (const Polygon& polygon : footprint) {
        text += std::exchange(separator, ";");
        for (std::size_t i = 0; i < polygon.size(); ++i) {
            text += i > 0 ? " " : "";
            appendNumber(text, std::round(polygon[i].x * 1000.0) / 1000.0);
            text += ' ';
            appendNumber(text, std::round(polygon[i].y * 1000.0) / 1000.0);
        }
    }
}

Footprint footprintFromText(std::string_view text) {
    Footprint footprint;
    if (text.empty()) {
        return footprint;
    }
    for (const std::string_view part : split(text, ';')) {
        const std::vector<std::string_view> coordinates = split(part, ' ');
        if (coordinates.size() % 2 != 0) {
            throw std::runtime_error("a point lacks a coordinate");
        }
        Polygon polygon;
        for (std::size_t i = 0; i < coordinates.size(); i += 2) {
            polygon.push_back({toCoordinate(coordinates[i]), toCoordinate(coordinates[i + 1])});
        }
        footprint.push_back(std::move(polygon));
    }
    return footprint;
}
