#include "output/plan/Outline.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <utility>

namespace {

using Polygon = std::vector<Point>;

/** Points that differ by less, in metres, are one; what is thinner has no border. */
constexpr double grain = 0.001;

/** With more corners the search would take too long. */
constexpr std::size_t maxCorners = 3000;

/** Beyond that points can't be told apart. */
constexpr double largestCoordinate = 1e9;

struct Bounds {
    Point low;
    Point high;

    bool contains(const Point& p) const { return p.x >= low.x && p.x <= high.x && p.y >= low.y && p.y <= high.y; }
};

Bounds boundsOf(const Polygon& polygon) {
    Bounds bounds{polygon.front(), polygon.front()};
    for (const Point& p : polygon) {
        bounds.low = {std::min(bounds.low.x, p.x), std::min(bounds.low.y, p.y)};
        bounds.high = {std::max(bounds.high.x, p.x), std::max(bounds.high.y, p.y)};
    }
    return bounds;
}

bool isInside(const Point& p, const Polygon& polygon) {
    bool inside = false;
    for (std::size_t i = 0, j = polygon.size() - 1; i < polygon.size(); j = i++) {
        const Point& a = polygon[i];
        const Point& b = polygon[j];
        if ((a.y > p.y) != (b.y > p.y) && p.x < (b.x - a.x) * (p.y - a.y) / (b.y - a.y) + a.x) {
            inside = !inside;
        }
    }
    return inside;
}

/** The polygons with their corners numbered, so that points that are one have one number. */
class Cover {
public:
    explicit Cover(const Footprint& footprint) : polygons_(footprint) {
        std::map<std::pair<long long, long long>, std::size_t> numbers;
        for (const Polygon& polygon : polygons_) {
            bounds_.push_back(boundsOf(polygon));
            std::vector<std::size_t> corners;
            for (const Point& p : polygon) {
                const auto [found, isNew] =
                    numbers.emplace(std::pair(std::llround(p.x / grain), std::llround(p.y / grain)), points_.size());
                if (isNew) {
                    points_.push_back(p);
                }
                corners.push_back(found->second);
            }
            corners_.push_back(std::move(corners));
        }
    }

    /** From each corner of the border to those that follow it, with what is covered to the left. */
    std::map<std::size_t, std::vector<std::size_t>> border() const {
        std::map<std::pair<std::size_t, std::size_t>, bool> seen;
        std::map<std::size_t, std::vector<std::size_t>> next;
        for (const std::vector<std::size_t>& corners : corners_) {
            for (std::size_t i = 0; i < corners.size(); ++i) {
                const std::vector<std::size_t> parts = partsOf(corners[i], corners[(i + 1) % corners.size()]);
                for (std::size_t k = 1; k < parts.size(); ++k) {
                    if (!seen.emplace(std::minmax(parts[k - 1], parts[k]), true).second) {
                        continue;
                    }
                    const bool left = isCoveredBeside(parts[k - 1], parts[k]);
                    const bool right = isCoveredBeside(parts[k], parts[k - 1]);
                    if (left && !right) {
                        next[parts[k - 1]].push_back(parts[k]);
                    } else if (right && !left) {
                        next[parts[k]].push_back(parts[k - 1]);
                    }
                }
            }
        }
        return next;
    }

    const Point& point(std::size_t number) const { return points_[number]; }

private:
    /** An edge with the corners of other polygons that lie on it. */
    std::vector<std::size_t> partsOf(std::size_t from, std::size_t to) const {
        const Point& a = points_[from];
        const double dx = points_[to].x - a.x;
        const double dy = points_[to].y - a.y;
        const double length = std::hypot(dx, dy);
        std::vector<std::pair<double, std::size_t>> on = {{0.0, from}, {length, to}};
        for (std::size_t i = 0; i < points_.size() && from != to; ++i) {
            const double along = ((points_[i].x - a.x) * dx + (points_[i].y - a.y) * dy) / length;
            const double aside = ((points_[i].y - a.y) * dx - (points_[i].x - a.x) * dy) / length;
            if (i != from && i != to && std::abs(aside) < grain && along > 0.0 && along < length) {
                on.emplace_back(along, i);
            }
        }
        std::sort(on.begin(), on.end());
        std::vector<std::size_t> parts;
        for (const auto& [along, number] : on) {
            parts.push_back(number);
        }
        return parts;
    }

    /** Whether there is something to the left of an edge. */
    bool isCoveredBeside(std::size_t from, std::size_t to) const {
        const Point& a = points_[from];
        const Point& b = points_[to];
        const double length = std::hypot(b.x - a.x, b.y - a.y);
        const Point beside = {(a.x + b.x) / 2.0 - (b.y - a.y) / length * grain,
                              (a.y + b.y) / 2.0 + (b.x - a.x) / length * grain};
        for (std::size_t i = 0; i < polygons_.size(); ++i) {
            if (bounds_[i].contains(beside) && isInside(beside, polygons_[i])) {
                return true;
            }
        }
        return false;
    }

    const Footprint& polygons_;
    std::vector<Bounds> bounds_;
    std::vector<Point> points_;
    std::vector<std::vector<std::size_t>> corners_;
};

/** Whether every polygon has corners, not too many, and such that points can be told apart. */
bool isUsable(const Footprint& footprint) {
    std::size_t corners = 0;
    for (const Polygon& polygon : footprint) {
        corners += polygon.size();
    }
    return corners <= maxCorners && std::all_of(footprint.begin(), footprint.end(), [](const Polygon& polygon) {
               return !polygon.empty() && std::all_of(polygon.begin(), polygon.end(), [](const Point& p) {
                   return std::abs(p.x) < largestCoordinate && std::abs(p.y) < largestCoordinate;
               });
           });
}

} // namespace

Footprint outlineOf(const Footprint& footprint) {
    if (footprint.size() < 2 && (footprint.empty() || footprint.front().size() < 5)) {
        return footprint; // nothing lies inside of it
    }
    if (!isUsable(footprint)) {
        return footprint;
    }
    const Cover cover(footprint);
    std::map<std::size_t, std::vector<std::size_t>> next = cover.border();
    Footprint loops;
    while (!next.empty()) {
        const std::size_t start = next.begin()->first;
        std::size_t at = start;
        Polygon loop;
        do {
            const auto onward = next.find(at);
            if (onward == next.end()) {
                return footprint; // a border with an end
            }
            loop.push_back(cover.point(at));
            at = onward->second.back();
            onward->second.pop_back();
            if (onward->second.empty()) {
                next.erase(onward);
            }
        } while (at != start);
        loops.push_back(std::move(loop));
    }
    return loops.empty() ? footprint : loops;
}
