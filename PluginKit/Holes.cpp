#include <PluginKit/Polygons.h>

#include <algorithm>
#include <limits>

namespace PluginKit {

namespace {

using Vertices = std::vector<std::array<double, 3>>;
using Loop = std::vector<std::uint32_t>;

/** Looks at edges after which any way will do: each way is held against each edge. */
constexpr std::size_t maximumLooks = 50'000'000;

/** The plane on which a face has the largest area, as the numbers of two axes. */
struct Plane {
    std::size_t u;
    std::size_t v;
};

double areaOn(const Plane& plane, const Vertices& vertices, const Loop& loop) {
    const auto area = areaVector(vertices, loop.data(), loop.size());
    return area[3 - plane.u - plane.v];
}

/**
 * Joins holes one by one, from left to right, each at its leftmost corner. A corner of the outer loop can always be seen
 * from there: whatever lies further left has become part of that loop.
 */
class Joining {
public:
    /** @param side  1 when the outer loop turns left on the plane, else -1 */
    Joining(const Vertices& vertices, const Plane& plane, double side, Loop outer, std::vector<Loop> holes)
        : vertices_(vertices), plane_(plane), side_(side), outer_(std::move(outer)), holes_(std::move(holes)) {}

    Loop run() {
        const auto isFurtherLeft = [this](std::uint32_t a, std::uint32_t b) {
            return coordinate(a, plane_.u) < coordinate(b, plane_.u);
        };
        for (Loop& hole : holes_) {
            std::rotate(hole.begin(), std::min_element(hole.begin(), hole.end(), isFurtherLeft), hole.end());
        }
        std::sort(holes_.begin(), holes_.end(),
                  [&](const Loop& a, const Loop& b) { return isFurtherLeft(a.front(), b.front()); });
        for (; next_ < holes_.size(); ++next_) {
            join(holes_[next_]);
        }
        return std::move(outer_);
    }

private:
    double coordinate(std::uint32_t corner, std::size_t axis) const { return vertices_[corner][axis]; }

    double turn(std::uint32_t a, std::uint32_t b, std::uint32_t c) const {
        const std::size_t u = plane_.u;
        const std::size_t v = plane_.v;
        return (coordinate(b, u) - coordinate(a, u)) * (coordinate(c, v) - coordinate(a, v)) -
               (coordinate(b, v) - coordinate(a, v)) * (coordinate(c, u) - coordinate(a, u));
    }

    double distance(std::uint32_t a, std::uint32_t b) const {
        const double du = coordinate(b, plane_.u) - coordinate(a, plane_.u);
        const double dv = coordinate(b, plane_.v) - coordinate(a, plane_.v);
        return du * du + dv * dv;
    }

    bool crosses(std::uint32_t a, std::uint32_t b, const Loop& loop) {
        looks_ += loop.size();
        for (std::size_t i = 0; i < loop.size(); ++i) {
            const std::uint32_t c = loop[i];
            const std::uint32_t d = loop[(i + 1) % loop.size()];
            if (turn(a, b, c) * turn(a, b, d) < 0.0 && turn(c, d, a) * turn(c, d, b) < 0.0) {
                return true;
            }
        }
        return false;
    }

    bool isFree(std::uint32_t a, std::uint32_t b) {
        bool meets = looks_ <= maximumLooks && crosses(a, b, outer_);
        for (std::size_t i = next_; i < holes_.size() && !meets && looks_ <= maximumLooks; ++i) {
            meets = crosses(a, b, holes_[i]);
        }
        return !meets;
    }

    /**
     * Whether the way from a corner of the outer loop begins inside of it. Where several ways meet, the loop passes
     * through the same vertex more than once, and only one of these corners opens to where the hole lies.
     */
    bool opensTo(std::size_t corner, std::uint32_t target) const {
        const std::uint32_t before = outer_[(corner + outer_.size() - 1) % outer_.size()];
        const std::uint32_t here = outer_[corner];
        const std::uint32_t after = outer_[(corner + 1) % outer_.size()];
        const bool isLeftOfFirst = side_ * turn(before, here, target) > 0.0;
        const bool isLeftOfSecond = side_ * turn(here, after, target) > 0.0;
        return side_ * turn(before, here, after) > 0.0 ? isLeftOfFirst && isLeftOfSecond
                                                       : isLeftOfFirst || isLeftOfSecond;
    }

    /** Joins a hole by the shortest way from a corner that sees its first one. */
    void join(Loop hole) {
        std::size_t from = 0;
        double best = std::numeric_limits<double>::infinity();
        for (std::size_t i = 0; i < outer_.size(); ++i) {
            const double length = distance(outer_[i], hole.front());
            if (length < best && opensTo(i, hole.front()) && isFree(outer_[i], hole.front())) {
                best = length;
                from = i;
            }
        }
        hole.push_back(hole.front());
        hole.push_back(outer_[from]);
        outer_.insert(outer_.begin() + static_cast<std::ptrdiff_t>(from) + 1, hole.begin(), hole.end());
    }

    const Vertices& vertices_;
    Plane plane_;
    double side_;
    Loop outer_;
    std::vector<Loop> holes_;
    std::size_t next_ = 0; ///< the first hole that is not joined yet
    std::size_t looks_ = 0;
};

} // namespace

std::vector<std::uint32_t> joinHoles(const Vertices& vertices, const Loop& outer, const std::vector<Loop>& holes) {
    const auto area = areaVector(vertices, outer.data(), outer.size());
    const auto largest =
        std::max_element(area.begin(), area.end(), [](double a, double b) { return a * a < b * b; }) - area.begin();
    const auto axis = static_cast<std::size_t>(largest);
    const Plane plane = {(axis + 1) % 3, (axis + 2) % 3};
    std::vector<Loop> turned;
    for (const Loop& hole : holes) {
        if (hole.size() < 3) {
            continue;
        }
        turned.push_back(hole);
        if (areaOn(plane, vertices, hole) * area[axis] > 0.0) {
            std::reverse(turned.back().begin(), turned.back().end());
        }
    }
    return outer.empty() ? outer
                         : Joining(vertices, plane, area[axis] < 0.0 ? -1.0 : 1.0, outer, std::move(turned)).run();
}

} // namespace PluginKit
