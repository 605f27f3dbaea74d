#include "geometry/Overlaps.h"

#include <algorithm>

namespace IfcReader {

namespace {

/** An edge of a loop, from its lower end up. */
struct Edge {
    double at(double y) const { return low.x + (high.x - low.x) * ((y - low.y) / (high.y - low.y)); }

    Vector low;
    Vector high;
    int turns;        ///< what it adds to how often a place to its right is covered
    double steepness; ///< 1 where it is upright
};

/** All edges, turned so that hardly any real one is level, the lowest ones first. */
std::vector<Edge> edgesOf(const std::vector<Face>& areas) {
    const double c = std::cos(0.6);
    const double s = std::sin(0.6);
    std::vector<Edge> edges;
    for (const Face& area : areas) {
        forEachLoop(area, [&](const Loop& loop) {
            for (std::size_t i = 0; i < loop.size(); ++i) {
                const Vector& from = loop[i];
                const Vector& to = loop[(i + 1) % loop.size()];
                const Vector p{c * from.x - s * from.y, s * from.x + c * from.y, 0.0};
                const Vector q{c * to.x - s * to.y, s * to.x + c * to.y, 0.0};
                if (p.y < q.y) {
                    edges.push_back({p, q, -1, (q.y - p.y) / length(q - p)});
                } else if (q.y < p.y) {
                    edges.push_back({q, p, 1, (p.y - q.y) / length(q - p)});
                }
            }
        });
    }
    std::sort(edges.begin(), edges.end(), [](const Edge& a, const Edge& b) { return a.low.y < b.low.y; });
    return edges;
}

/** Whether something is wrong between two levels, from one to the other of which all edges go. */
bool overlapWithin(std::vector<const Edge*>& edges, double low, double high, double tolerance) {
    const double middle = (low + high) / 2.0;
    std::sort(edges.begin(), edges.end(), [&](const Edge* a, const Edge* b) { return a->at(middle) < b->at(middle); });
    int covered = 0;
    for (std::size_t i = 0; i + 1 < edges.size(); ++i) {
        const Edge& left = *edges[i];
        const Edge& right = *edges[i + 1];
        covered += left.turns;
        const double steepness = std::min(left.steepness, right.steepness);
        const double below = (right.at(low) - left.at(low)) * steepness;
        const double above = (right.at(high) - left.at(high)) * steepness;
        const bool cross = std::min(below, above) < -tolerance;
        if (cross || (covered != 0 && covered != 1 && std::max(below, above) > tolerance)) {
            return true;
        }
    }
    return false;
}

} // namespace

bool overlap(const std::vector<Face>& areas, Work& work) {
    constexpr double farthest = 1e15;
    constexpr double sameLevel = 1e-9;
    constexpr std::size_t edgesPerPoint = 16; // that are looked at in the time that a point takes
    const std::vector<Edge> edges = edgesOf(areas);
    std::vector<double> levels;
    for (const Edge& edge : edges) {
        if (std::max(length(edge.low), length(edge.high)) > farthest) {
            return false; // such a body is refused anyway
        }
        levels.push_back(edge.low.y);
        levels.push_back(edge.high.y);
    }
    std::sort(levels.begin(), levels.end());
    double size = 0.0;
    for (const Face& area : areas) {
        size += areaVector(area.outer).z;
    }
    const double tolerance = 1e-4 * std::sqrt(size);
    std::vector<const Edge*> active;
    std::size_t next = 0;
    for (std::size_t i = 0; i + 1 < levels.size(); ++i) {
        const double low = levels[i];
        const double high = levels[i + 1];
        if (high - low < sameLevel) {
            continue;
        }
        active.erase(std::remove_if(active.begin(), active.end(), [&](const Edge* e) { return e->high.y < high; }),
                     active.end());
        for (; next < edges.size() && edges[next].low.y <= low; ++next) {
            if (edges[next].high.y >= high) {
                active.push_back(&edges[next]);
            }
        }
        work.add(active.size() / edgesPerPoint);
        if (overlapWithin(active, low, high, tolerance)) {
            return true;
        }
    }
    return false;
}

} // namespace IfcReader
