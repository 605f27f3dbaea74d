#include "geometry/Triangulation.h"

#include "geometry/Flattening.h"

#include <algorithm>
#include <limits>

namespace IfcReader {

namespace {

using Index = std::uint32_t;
constexpr Index none = std::numeric_limits<Index>::max();

bool contains(const Flat& a, const Flat& b, const Flat& c, const Flat& p) {
    return turn(a, b, p) >= 0.0 && turn(b, c, p) >= 0.0 && turn(c, a, p) >= 0.0;
}

/** The corners of a face as one ring: each hole is joined to it by an edge there and back. */
struct Ring {
    struct Node {
        Flat at;
        Index corner = 0;
        Index previous = 0;
        Index next = 0;
        Index nextInCell = none;
        bool alive = true;
    };

    Flat at(Index i) const { return nodes[i].at; }
    double turnAt(Index i) const { return turn(at(nodes[i].previous), at(i), at(nodes[i].next)); }
    /** Inserts a copy of a node behind node @p where. */
    Index copyBehind(Index where, Index original) {
        Node copy = nodes[original];
        copy.previous = where;
        copy.next = nodes[where].next;
        nodes.push_back(copy);
        const Index added = static_cast<Index>(nodes.size() - 1);
        nodes[copy.next].previous = added;
        nodes[where].next = added;
        return added;
    }

    std::vector<Node> nodes;
};

/** Appends the nodes of a loop; the number of its first one. */
Index appendLoop(Ring& ring, const Loop& loop, const Flattening& flat) {
    const Index first = static_cast<Index>(ring.nodes.size());
    const Index size = static_cast<Index>(loop.size());
    for (Index i = 0; i < size; ++i) {
        Ring::Node node;
        node.at = flat(loop[i]);
        node.corner = first + i;
        node.previous = first + (i + size - 1) % size;
        node.next = first + (i + 1) % size;
        ring.nodes.push_back(node);
    }
    return first;
}

/** The corner of the ring that starts at @p ring0 which can be seen from @p p to its right. */
Index visibleFrom(const Ring& ring, Index ring0, const Flat& p) {
    Index best = none;
    double nearest = std::numeric_limits<double>::infinity();
    Index i = ring0;
    do { // the nearest edge that a ray to the right meets; seen from inside it goes upwards
        const Index next = ring.nodes[i].next;
        const Flat a = ring.at(i);
        const Flat b = ring.at(next);
        if (a.y <= p.y && b.y >= p.y && a.y != b.y) {
            const double x = a.x + (p.y - a.y) / (b.y - a.y) * (b.x - a.x);
            if (x >= p.x && x < nearest) {
                nearest = x;
                best = a.x > b.x ? i : next;
            }
        }
        i = next;
    } while (i != ring0);
    if (best == none) {
        return ring0;
    }
    // Corners in the triangle between p, the edge's point and its end hide that end: the one at the least angle counts.
    const Flat end = ring.at(best);
    const Flat hit{nearest, p.y};
    const bool above = end.y >= p.y;
    double least = std::numeric_limits<double>::infinity();
    Index found = best;
    i = ring0;
    do {
        const Flat q = ring.at(i);
        if (q.x >= p.x && ring.turnAt(i) <= 0.0 && (above ? contains(p, hit, end, q) : contains(p, end, hit, q)) &&
            !(q == end)) {
            const double slope = std::abs(q.y - p.y) / std::max(q.x - p.x, 1e-300);
            const double distance = q.x - p.x;
            if (slope < least || (slope == least && distance < ring.at(found).x - p.x)) {
                least = slope;
                found = i;
            }
        }
        i = ring.nodes[i].next;
    } while (i != ring0);
    return found;
}

/** Where several nodes stand in one place, the one whose inside @p p is seen in. */
Index nodeTowards(const Ring& ring, Index node, Index ring0, const Flat& p) {
    const Flat place = ring.at(node);
    Index i = ring0;
    do {
        if (ring.at(i) == place) {
            const Flat before = ring.at(ring.nodes[i].previous);
            const Flat after = ring.at(ring.nodes[i].next);
            const bool left = turn(place, after, p) > 0.0;
            const bool right = turn(before, place, p) > 0.0;
            if (ring.turnAt(i) > 0.0 ? left && right : left || right) {
                return i;
            }
        }
        i = ring.nodes[i].next;
    } while (i != ring0);
    return node;
}

void joinHoles(Ring& ring, const std::vector<Index>& holes) {
    std::vector<Index> rightmost;
    for (const Index first : holes) {
        Index best = first;
        for (Index i = ring.nodes[first].next; i != first; i = ring.nodes[i].next) {
            if (ring.at(i).x > ring.at(best).x) {
                best = i;
            }
        }
        rightmost.push_back(best);
    }
    std::stable_sort(rightmost.begin(), rightmost.end(), [&](Index a, Index b) { return ring.at(a).x > ring.at(b).x; });
    for (const Index from : rightmost) {
        const Index to = nodeTowards(ring, visibleFrom(ring, 0, ring.at(from)), 0, ring.at(from));
        // to -> from ... back to from -> to
        const Index last = ring.nodes[from].previous;
        const Index copyOfTo = ring.copyBehind(to, to);
        const Index copyOfFrom = ring.copyBehind(last, from);
        ring.nodes[to].next = from;
        ring.nodes[from].previous = to;
        ring.nodes[copyOfFrom].next = copyOfTo;
        ring.nodes[copyOfTo].previous = copyOfFrom;
    }
}

/** The corners at which a ring turns inwards, by cells of a grid: only these can lie inside an ear. */
class InwardCorners {
public:
    explicit InwardCorners(Ring& ring) : ring_(ring) {
        double area = 0.0;
        for (const Ring::Node& node : ring.nodes) {
            low_ = {std::min(low_.x, node.at.x), std::min(low_.y, node.at.y)};
            high_ = {std::max(high_.x, node.at.x), std::max(high_.y, node.at.y)};
        }
        const double count = static_cast<double>(ring.nodes.size());
        area = (high_.x - low_.x) * (high_.y - low_.y);
        const double longer = std::max(high_.x - low_.x, high_.y - low_.y);
        cell_ = std::max({std::sqrt(area / count), longer / count, 1e-300});
        columns_ = column(high_.x, low_.x) + 1;
        rows_ = column(high_.y, low_.y) + 1;
        first_.assign(columns_ * rows_, none);
        for (Index i = 0; i < ring.nodes.size(); ++i) {
            if (ring.turnAt(i) <= 0.0) {
                Index& first = first_[column(ring.at(i).y, low_.y) * columns_ + column(ring.at(i).x, low_.x)];
                ring.nodes[i].nextInCell = first;
                first = i;
            }
        }
    }

    /** Whether one lies in the triangle, and at none of its corners. */
    bool anyIn(const Flat& a, const Flat& b, const Flat& c) {
        const std::size_t left = column(std::min({a.x, b.x, c.x}), low_.x);
        const std::size_t right = column(std::max({a.x, b.x, c.x}), low_.x);
        const std::size_t bottom = column(std::min({a.y, b.y, c.y}), low_.y);
        const std::size_t top = column(std::max({a.y, b.y, c.y}), low_.y);
        for (std::size_t row = bottom; row <= top; ++row) {
            for (std::size_t i = left; i <= right; ++i) {
                if (anyInCell(first_[row * columns_ + i], a, b, c)) {
                    return true;
                }
            }
        }
        return false;
    }

private:
    std::size_t column(double value, double low) const { return static_cast<std::size_t>((value - low) / cell_); }

    /** Corners that were cut off, or no longer turn inwards, leave the cell on the way. */
    bool anyInCell(Index& first, const Flat& a, const Flat& b, const Flat& c) {
        Index* link = &first;
        while (*link != none) {
            Ring::Node& node = ring_.nodes[*link];
            if (!node.alive || ring_.turnAt(*link) > 0.0) {
                *link = node.nextInCell;
                continue;
            }
            const Flat p = node.at;
            if (!(p == a) && !(p == b) && !(p == c) && contains(a, b, c, p)) {
                return true;
            }
            link = &node.nextInCell;
        }
        return false;
    }

    Ring& ring_;
    Flat low_{std::numeric_limits<double>::infinity(), std::numeric_limits<double>::infinity()};
    Flat high_{-std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity()};
    double cell_ = 1.0;
    std::size_t columns_ = 1;
    std::size_t rows_ = 1;
    std::vector<Index> first_;
};

/** Cuts ears off a ring. */
class EarCutter {
public:
    EarCutter(Ring& ring, std::size_t size) : ring_(ring), inward_(ring), left_(size) {}

    std::vector<std::array<Index, 3>> cut() {
        Index node = 0;
        std::size_t looked = 0;
        Rule rule = Rule::ears;
        while (left_ >= 3) {
            const Index next = ring_.nodes[node].next;
            if (isCut(node, rule)) {
                take(node);
                looked = 0;
                // Going on behind the next corner leaves fewer slivers than cutting there at once.
                node = ring_.nodes[next].next;
                rule = rule == Rule::straight ? Rule::ears : rule;
            } else {
                node = next;
                if (++looked > left_) {
                    looked = 0;
                    rule = softer(rule);
                }
            }
        }
        return std::move(triangles_);
    }

private:
    /** What may be cut: where nothing else is left, a corner on a straight edge; in rings that cross themselves any. */
    enum class Rule { ears, straight, outward, any };

    static Rule softer(Rule rule) {
        return rule == Rule::ears ? Rule::straight : rule == Rule::straight ? Rule::outward : Rule::any;
    }

    bool isCut(Index i, Rule rule) {
        const double turned = ring_.turnAt(i);
        if (left_ == 3 || rule == Rule::any) {
            return true;
        }
        if (rule == Rule::straight) {
            return turned == 0.0;
        }
        return turned > 0.0 && (rule == Rule::outward || !inward_.anyIn(ring_.at(ring_.nodes[i].previous), ring_.at(i),
                                                                        ring_.at(ring_.nodes[i].next)));
    }

    void take(Index i) {
        Ring::Node& node = ring_.nodes[i];
        if (ring_.turnAt(i) != 0.0) {
            triangles_.push_back({ring_.nodes[node.previous].corner, node.corner, ring_.nodes[node.next].corner});
        }
        ring_.nodes[node.previous].next = node.next;
        ring_.nodes[node.next].previous = node.previous;
        node.alive = false;
        --left_;
    }

    Ring& ring_;
    InwardCorners inward_;
    std::size_t left_;
    std::vector<std::array<Index, 3>> triangles_;
};

} // namespace

std::vector<std::array<Index, 3>> triangulate(const Face& face, const Vector& normal) {
    if (face.outer.size() < 3) {
        return {};
    }
    const Flattening flat(normal);
    Ring ring;
    appendLoop(ring, face.outer, flat);
    std::vector<Index> holes;
    for (const Loop& hole : face.holes) {
        if (!hole.empty()) {
            holes.push_back(appendLoop(ring, hole, flat));
        }
    }
    joinHoles(ring, holes);
    return EarCutter(ring, ring.nodes.size()).cut();
}

std::vector<Loop> trianglesOf(const Face& face, const Vector& normal) {
    std::vector<const Vector*> corners;
    forEachLoop(face, [&](const Loop& loop) {
        for (const Vector& p : loop) {
            corners.push_back(&p);
        }
    });
    std::vector<Loop> loops;
    for (const auto& triangle : triangulate(face, normal)) {
        loops.push_back({*corners[triangle[0]], *corners[triangle[1]], *corners[triangle[2]]});
    }
    return loops;
}

} // namespace IfcReader
