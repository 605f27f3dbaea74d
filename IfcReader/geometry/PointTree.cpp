#include "geometry/PointTree.h"

#include <algorithm>

namespace IfcReader {

PointTree::PointTree(const std::vector<Vector>& points, std::vector<std::uint32_t> chosen)
    : points_(points), chosen_(std::move(chosen)) {
    sort(0, chosen_.size(), 0);
}

void PointTree::sort(std::size_t begin, std::size_t end, int axis) {
    while (end - begin > 1) {
        const std::size_t middle = begin + (end - begin) / 2;
        const auto at = [&](std::size_t i) { return chosen_.begin() + static_cast<std::ptrdiff_t>(i); };
        std::nth_element(at(begin), at(middle), at(end), [&](std::uint32_t a, std::uint32_t b) {
            const double x = coordinate(points_[a], axis);
            const double y = coordinate(points_[b], axis);
            return x != y ? x < y : a < b;
        });
        axis = (axis + 1) % 3;
        sort(begin, middle, axis);
        begin = middle + 1;
    }
}

/** Leaves of an edge what lies above, or below, a value of one coordinate; at least a point of it. */
void PointTree::clip(Vector& a, Vector& b, int axis, double value, bool above) {
    const double from = coordinate(a, axis);
    const double to = coordinate(b, axis);
    const auto isOut = [&](double c) { return above ? c < value : c > value; };
    if (isOut(from) == isOut(to)) {
        return;
    }
    const Vector cut = a + (b - a) * ((value - from) / (to - from));
    (isOut(from) ? a : b) = cut;
}

} // namespace IfcReader
