#include "geometry/PointTree.h"

#include "geometry/Body.h"

#include <algorithm>

namespace IfcReader {

PointTree::PointTree(const std::vector<Vector>& points, std::vector<std::uint32_t> chosen)
    : points_(points), chosen_(std::move(chosen)), axes_(chosen_.size()) {
    sort(0, chosen_.size());
}

int PointTree::longestSide(std::size_t begin, std::size_t end) const {
    Box box;
    for (std::size_t i = begin; i < end; ++i) {
        box.add(points_[chosen_[i]]);
    }
    const Vector size = box.high - box.low;
    return size.x >= size.y && size.x >= size.z ? 0 : size.y >= size.z ? 1 : 2;
}

void PointTree::sort(std::size_t begin, std::size_t end) {
    while (begin < end) {
        const int axis = longestSide(begin, end);
        const std::size_t middle = begin + (end - begin) / 2;
        const auto at = [&](std::size_t i) { return chosen_.begin() + static_cast<std::ptrdiff_t>(i); };
        std::nth_element(at(begin), at(middle), at(end), [&](std::uint32_t a, std::uint32_t b) {
            const double x = coordinate(points_[a], axis);
            const double y = coordinate(points_[b], axis);
            return x != y ? x < y : a < b;
        });
        axes_[middle] = static_cast<std::uint8_t>(axis);
        sort(begin, middle);
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
