#include "state/Footprint.h"

#include "state/Numbers.h"

#include <PluginKit/Text.h>

#include <algorithm>
#include <cmath>
#include <set>
#include <stdexcept>
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

/** Starts a polygon at its smallest point, so that the top and the bottom of a body give the same one. */
std::vector<std::pair<long, long>> normalForm(const Polygon& polygon) {
    std::vector<std::pair<long, long>> form;
    for (const Point& point : polygon) {
        form.emplace_back(std::lround(point.x * 1000.0), std::lround(point.y * 1000.0));
    }
    std::rotate(form.begin(), std::min_element(form.begin(), form.end()), form.end());
    return form;
}

/** What one object's surfaces leave behind while the stream is read. */
struct Collector {
    Footprint faces;
    Polygon points;
    std::set<std::vector<std::pair<long, long>>> seen;

    void add(Polygon polygon) {
        const double covered = area(polygon);
        if (std::abs(covered) < smallestArea) {
            return;
        }
        if (covered < 0.0) {
            std::reverse(polygon.begin(), polygon.end());
        }
        if (seen.insert(normalForm(polygon)).second) {
            faces.push_back(std::move(polygon));
        }
    }

    Footprint footprint(std::size_t limit) const {
        if (!faces.empty() && faces.size() <= limit) {
            return faces;
        }
        return points.empty() ? Footprint() : Footprint{convexHull(points)};
    }
};

/** A line: object, material, coordinates of the vertices, and the vertex numbers of each polygon. */
void readLine(std::string_view line, std::vector<Collector>& objects) {
    const std::vector<std::string_view> fields = split(line, '\t');
    if (fields.size() < 3) {
        throw std::runtime_error("too few fields");
    }
    const long number = toLong(fields[0]);
    if (number < 1 || static_cast<std::size_t>(number) > objects.size()) {
        throw std::runtime_error("there is no object " + std::to_string(number));
    }
    Collector& object = objects[static_cast<std::size_t>(number) - 1];

    const std::vector<std::string_view> coordinates = split(fields[2], ' ');
    if (coordinates.size() % 3 != 0) {
        throw std::runtime_error("a vertex lacks a coordinate");
    }
    Polygon vertices;
    for (std::size_t i = 0; i < coordinates.size(); i += 3) {
        vertices.push_back({toCoordinate(coordinates[i]), toCoordinate(coordinates[i + 1])});
    }
    object.points.insert(object.points.end(), vertices.begin(), vertices.end());

    for (std::size_t i = 3; i < fields.size(); ++i) {
        Polygon polygon;
        for (const std::string_view text : split(fields[i], ' ')) {
            const long index = toLong(text);
            if (index < 0 || static_cast<std::size_t>(index) >= vertices.size()) {
                throw std::runtime_error("there is no vertex " + std::to_string(index));
            }
            polygon.push_back(vertices[static_cast<std::size_t>(index)]);
        }
        object.add(std::move(polygon));
    }
}

} // namespace

std::vector<Footprint> readFootprints(std::string_view polygonsStream, std::size_t objectCount) {
    std::vector<Collector> objects(objectCount);
    std::size_t lineNumber = 0;
    for (const std::string_view line : split(polygonsStream, '\n')) {
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
    for (const Collector& object : objects) {
        footprints.push_back(object.footprint(limit));
    }
    return footprints;
}

std::string footprintToText(const Footprint& footprint) {
    std::string text;
    for (const Polygon& polygon : footprint) {
        if (!text.empty()) {
            text += ';';
        }
        for (std::size_t i = 0; i < polygon.size(); ++i) {
            text += i > 0 ? " " : "";
            text += numberText(std::round(polygon[i].x * 1000.0) / 1000.0) + ' ';
            text += numberText(std::round(polygon[i].y * 1000.0) / 1000.0);
        }
    }
    return text;
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
