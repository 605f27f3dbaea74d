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
        last_ = count;
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

    /** One that lies in the triangle, and at none of its corners; none where there is no such. */
    Index findIn(const Flat& a, const Flat& b, const Flat& c) {
        const std::size_t left = column(std::min({a.x, b.x, c.x}), low_.x);
        const std::size_t right = column(std::max({a.x, b.x, c.x}), low_.x);
        const std::size_t bottom = column(std::min({a.y, b.y, c.y}), low_.y);
        const std::size_t top = column(std::max({a.y, b.y, c.y}), low_.y);
        for (std::size_t row = bottom; row <= top; ++row) {
            for (std::size_t i = left; i <= right; ++i) {
                const Index found = findInCell(first_[row * columns_ + i], a, b, c);
                if (found != none) {
                    return found;
                }
            }
        }
        return none;
    }

private:
    /** Numbers that aren't finite have a cell as well: only what is in the grid is ever looked at. */
    std::size_t column(double value, double low) const {
        const double exact = (value - low) / cell_;
        return exact > 0.0 ? static_cast<std::size_t>(std::min(exact, last_)) : 0;
    }

    /** Corners that were cut off, or no longer turn inwards, leave the cell when they are met. */
    Index findInCell(Index& first, const Flat& a, const Flat& b, const Flat& c) {
        Index* link = &first;
        while (*link != none) {
            Ring::Node& node = ring_.nodes[*link];
            const Flat p = node.at;
            if (node.alive && (!contains(a, b, c, p) || p == a || p == b || p == c)) {
                link = &node.nextInCell;
            } else if (node.alive && ring_.turnAt(*link) <= 0.0) {
                return *link;
            } else {
                *link = node.nextInCell;
            }
        }
        return none;
    }

    Ring& ring_;
    Flat low_{std::numeric_limits<double>::infinity(), std::numeric_limits<double>::infinity()};
    Flat high_{-std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity()};
    double cell_ = 1.0;
    double last_ = 0.0; ///< the highest column or row that there may be
    std::size_t columns_ = 1;
    std::size_t rows_ = 1;
    std::vector<Index> first_;
};

/**
 * Cuts ears off a ring. A corner that can't be cut, since another one lies in its triangle, waits until that one is cut
 * off or turns outwards: nothing is looked at again in vain.
 */
class EarCutter {
public:
    explicit EarCutter(Ring& ring)
        : ring_(ring), inward_(ring), left_(ring.nodes.size()), waiting_(left_), roundOf_(left_, 0) {}

    std::vector<std::array<Index, 3>> cut() {
        triangles_.reserve(left_);
        next_.reserve(left_);
        for (Index i = 0; i < left_; ++i) {
            next_.push_back(i);
        }
        while (left_ >= 3) {
            cutEars();
            if (left_ >= 3 && !cutStraight()) {
                cutAny();
            }
        }
        return std::move(triangles_);
    }

private:
    /** Corners beside one that was cut wait for the next round: that leaves fewer slivers than cutting there at once. */
    void cutEars() {
        while (!next_.empty() && left_ >= 3) {
            ++round_;
            now_.swap(next_);
            next_.clear();
            for (const Index i : now_) {
                if (left_ >= 3 && ring_.nodes[i].alive && roundOf_[i] != round_ && isEar(i)) {
                    take(i);
                }
            }
        }
    }

    bool isEar(Index i) {
        if (left_ == 3) {
            return true;
        }
        if (!(ring_.turnAt(i) > 0.0)) {
            return false;
        }
        const Index inside =
            inward_.findIn(ring_.at(ring_.nodes[i].previous), ring_.at(i), ring_.at(ring_.nodes[i].next));
        if (inside != none) {
            waiting_[inside].push_back(i);
        }
        return inside == none;
    }

    /** Where there are no ears, corners on straight edges are in the way; whether there were any. */
    bool cutStraight() {
        const std::size_t before = left_;
        Index i = anyAlive();
        for (std::size_t looked = left_; looked > 0 && left_ > 3; --looked) {
            const Index next = ring_.nodes[i].next;
            if (ring_.turnAt(i) == 0.0) {
                take(i);
            }
            i = next;
        }
        return left_ < before;
    }

    /** A ring that crosses itself: corners that turn outwards, then all others. */
    void cutAny() {
        Index i = anyAlive();
        std::size_t inVain = 0;
        while (left_ >= 3) {
            const Index next = ring_.nodes[i].next;
            if (ring_.turnAt(i) > 0.0 || inVain > left_) {
                take(i);
                inVain = 0;
            } else {
                ++inVain;
            }
            i = next;
        }
    }

    Index anyAlive() const {
        Index i = 0;
        while (!ring_.nodes[i].alive) {
            ++i;
        }
        return i;
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
        wake(i);
        for (const Index beside : {node.previous, node.next}) {
            roundOf_[beside] = round_;
            next_.push_back(beside);
            if (ring_.turnAt(beside) > 0.0) {
                wake(beside);
            }
        }
    }

    void wake(Index i) {
        next_.insert(next_.end(), waiting_[i].begin(), waiting_[i].end());
        waiting_[i].clear();
    }

    Ring& ring_;
    InwardCorners inward_;
    std::size_t left_;
    std::size_t round_ = 0;
    std::vector<Index> now_;                  ///< looked at in this round
    std::vector<Index> next_;                 ///< to be looked at in the next round
    std::vector<std::vector<Index>> waiting_; ///< for each corner, those that it is in the way of
    std::vector<std::size_t> roundOf_;        ///< the last round in which a neighbour was cut
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
    return EarCutter(ring).cut();
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
