#include "geometry/Overlaps.h"

#include <algorithm>

namespace IfcReader {

namespace {

/** An edge of a loop, from its lower end up. */
struct Edge {
    Edge(const Vector& from, const Vector& to, int turn)
        : low(from), high(to), slope((to.x - from.x) / (to.y - from.y)), turns(turn) {}

    double at(double y) const { return low.x + slope * (y - low.y); }

    Vector low;
    Vector high;
    double slope;
    int turns; ///< what it adds to how often a place to its right is covered
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
                    edges.emplace_back(p, q, -1);
                } else if (q.y < p.y) {
                    edges.emplace_back(q, p, 1);
                }
            }
        });
    }
    std::sort(edges.begin(), edges.end(), [](const Edge& a, const Edge& b) { return a.low.y < b.low.y; });
    return edges;
}

/** Orders edges by where they are at a level; they nearly are already. @return how many of them were looked at */
std::size_t sortAt(double y, std::vector<const Edge*>& edges) {
    std::size_t looks = edges.size();
    for (std::size_t i = 1; i < edges.size(); ++i) {
        const Edge* const edge = edges[i];
        const double x = edge->at(y);
        std::size_t k = i;
        for (; k > 0 && edges[k - 1]->at(y) > x; --k) {
            edges[k] = edges[k - 1];
        }
        edges[k] = edge;
        looks += i - k;
    }
    return looks;
}

/**
 * Adds what is covered more than once, or less than not at all, between two levels from one to the other of which all
 * edges go. Edges that cross there have changed places on one side of the crossing.
 */
void addWrong(const std::vector<const Edge*>& edges, double low, double high, Overlap& overlap) {
    int covered = 0;
    for (std::size_t i = 0; i + 1 < edges.size(); ++i) {
        const Edge& left = *edges[i];
        const Edge& right = *edges[i + 1];
        covered += left.turns;
        const double below = right.at(low) - left.at(low);
        const double above = right.at(high) - left.at(high);
        const double least = std::min(below, above);
        const double most = std::max(below, above);
        const double flattest = std::max(std::abs(left.slope), std::abs(right.slope));
        const double across = 1.0 / std::sqrt(1.0 + flattest * flattest); // of the edges, for a width along the level
        if (covered != 0 && covered != 1) {
            overlap.area += std::max(below + above, 0.0) / 2.0 * (high - low);
            overlap.width = std::max(overlap.width, most * across);
        } else if (least < 0.0) {
            overlap.area += least * least / (most - least) / 2.0 * (high - low);
            overlap.width = std::max(overlap.width, -least * across);
        }
    }
}

} // namespace

Overlap overlapOf(const std::vector<Face>& areas, Work& work) {
    constexpr double sameLevel = 1e-9;
    constexpr std::size_t mostLooks = 20'000'000;
    constexpr std::size_t looksPerPoint = 4; // in the time that a point takes
    const std::vector<Edge> edges = edgesOf(areas);
    std::vector<double> levels;
    for (const Edge& edge : edges) {
        levels.push_back(edge.low.y);
        levels.push_back(edge.high.y);
    }
    std::sort(levels.begin(), levels.end());
    Overlap overlap;
    std::vector<const Edge*> active;
    std::size_t next = 0;
    std::size_t looks = 0;
    for (std::size_t i = 0; i + 1 < levels.size() && looks < mostLooks; ++i) {
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
        looks += sortAt((low + high) / 2.0, active);
        addWrong(active, low, high, overlap);
    }
    work.add(looks / looksPerPoint);
    double size = 0.0;
    for (const Face& area : areas) {
        size += areaVector(area.outer).z;
    }
    return size > 0.0 ? Overlap{overlap.width / std::sqrt(size), overlap.area / size} : Overlap{};
}

} // namespace IfcReader
