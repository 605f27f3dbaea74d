#include <PluginKit/Polygons.h>

#include <cmath>

namespace PluginKit {

namespace {

/** Looks at corners after which a polygon is fanned as it is: ear clipping takes their number to the third power. */
constexpr std::size_t maximumLooks = 20'000'000;

struct Point2 {
    double x;
    double y;
};

/** Twice the area of a triangle, positive when it turns left. */
double cross(const Point2& a, const Point2& b, const Point2& c) {
    return (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
}

bool same(const Point2& a, const Point2& b) {
    return a.x == b.x && a.y == b.y;
}

bool isInside(const Point2& p, const Point2& a, const Point2& b, const Point2& c) {
    return cross(a, b, p) >= 0.0 && cross(b, c, p) >= 0.0 && cross(c, a, p) >= 0.0;
}

/** The corners on the plane of two axes on which the polygon is largest, so that it turns left. */
std::vector<Point2> flattened(const std::vector<std::array<double, 3>>& vertices, const std::uint32_t* corners,
                              std::size_t count) {
    const std::array<double, 3> normal = areaVector(vertices, corners, count);
    std::size_t axis = std::fabs(normal[0]) > std::fabs(normal[1]) ? 0 : 1;
    axis = std::fabs(normal[axis]) > std::fabs(normal[2]) ? axis : 2;
    const std::size_t u = (axis + (normal[axis] < 0.0 ? 2 : 1)) % 3;
    const std::size_t v = (axis + (normal[axis] < 0.0 ? 1 : 2)) % 3;
    const std::array<double, 3>& origin = vertices[corners[0]];
    std::vector<Point2> points;
    points.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        const std::array<double, 3>& vertex = vertices[corners[i]];
        points.push_back({vertex[u] - origin[u], vertex[v] - origin[v]});
    }
    return points;
}

/** Cuts ears off a polygon until a triangle is left. */
class EarClipping {
public:
    EarClipping(const std::vector<Point2>& points, const std::uint32_t* corners, std::vector<std::uint32_t>& triangles)
        : points_(points), corners_(corners), triangles_(triangles), left_(points.size()) {
        for (std::size_t i = 0; i < left_.size(); ++i) {
            left_[i] = i;
        }
    }

    void run() {
        std::size_t at = 0;
        std::size_t failures = 0; // corners in a row that are no ears
        while (left_.size() > 3 && looks_ < maximumLooks) {
            if (failures >= left_.size() || isEar(at)) {
                cut(at);
                failures = 0;
                at = at >= left_.size() ? 0 : at;
            } else {
                ++failures;
                at = (at + 1) % left_.size();
            }
        }
        for (std::size_t i = 1; i + 1 < left_.size(); ++i) {
            emit(0, i, i + 1);
        }
    }

private:
    std::size_t before(std::size_t i) const { return (i + left_.size() - 1) % left_.size(); }
    std::size_t after(std::size_t i) const { return (i + 1) % left_.size(); }

    bool isEar(std::size_t at) {
        ++looks_;
        const Point2& a = points_[left_[before(at)]];
        const Point2& b = points_[left_[at]];
        const Point2& c = points_[left_[after(at)]];
        const double area = cross(a, b, c);
        if (area < 0.0) {
            return false;
        }
        if (area == 0.0) {
            return true; // nothing is lost with it
        }
        for (const std::size_t other : left_) {
            ++looks_;
            const Point2& p = points_[other];
            // Corners in the same place are those of the way to a hole, not in the way.
            if (!same(p, a) && !same(p, b) && !same(p, c) && isInside(p, a, b, c)) {
                return false;
            }
        }
        return true;
    }

    void cut(std::size_t at) {
        emit(before(at), at, after(at));
        looks_ += left_.size() - at; // those that move up
        left_.erase(left_.begin() + static_cast<std::ptrdiff_t>(at));
    }

    void emit(std::size_t a, std::size_t b, std::size_t c) {
        if (cross(points_[left_[a]], points_[left_[b]], points_[left_[c]]) != 0.0) {
            triangles_.insert(triangles_.end(), {corners_[left_[a]], corners_[left_[b]], corners_[left_[c]]});
        }
    }

    const std::vector<Point2>& points_;
    const std::uint32_t* corners_;
    std::vector<std::uint32_t>& triangles_;
    std::vector<std::size_t> left_; ///< corners not cut off yet
    std::size_t looks_ = 0;
};

/** Whether every corner turns left, and the corners go round once. */
bool isConvex(const std::vector<Point2>& points) {
    std::size_t turns = 0; // of the direction of x
    bool wasRight = false;
    for (std::size_t i = 0; i < points.size(); ++i) {
        const Point2& a = points[i];
        const Point2& b = points[(i + 1) % points.size()];
        const Point2& c = points[(i + 2) % points.size()];
        if (cross(a, b, c) < 0.0) {
            return false;
        }
        const bool isRight = b.x != a.x ? b.x > a.x : b.y > a.y;
        turns += i > 0 && isRight != wasRight ? 1 : 0;
        wasRight = isRight;
    }
    return turns <= 2;
}

} // namespace

std::array<double, 3> areaVector(const std::vector<std::array<double, 3>>& vertices, const std::uint32_t* corners,
                                 std::size_t count) {
    std::array<double, 3> sum{};
    for (std::size_t i = 1; i + 1 < count; ++i) {
        const std::array<double, 3>& o = vertices[corners[0]];
        const std::array<double, 3>& a = vertices[corners[i]];
        const std::array<double, 3>& b = vertices[corners[i + 1]];
        for (std::size_t k = 0; k < 3; ++k) {
            const std::size_t u = (k + 1) % 3;
            const std::size_t v = (k + 2) % 3;
            sum[k] += (a[u] - o[u]) * (b[v] - o[v]) - (a[v] - o[v]) * (b[u] - o[u]);
        }
    }
    return sum;
}

void triangulate(const std::vector<std::array<double, 3>>& vertices, const std::uint32_t* corners, std::size_t count,
                 std::vector<std::uint32_t>& triangles) {
    if (count < 3) {
        return;
    }
    if (count == 3) {
        triangles.insert(triangles.end(), corners, corners + 3);
        return;
    }
    const std::vector<Point2> points = flattened(vertices, corners, count);
    if (!isConvex(points)) {
        EarClipping(points, corners, triangles).run();
        return;
    }
    for (std::size_t i = 1; i + 1 < count; ++i) {
        triangles.insert(triangles.end(), {corners[0], corners[i], corners[i + 1]});
    }
}

} // namespace PluginKit
