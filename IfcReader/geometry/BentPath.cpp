#include "geometry/BentPath.h"

#include "geometry/Curves.h"

namespace IfcReader {

namespace {

/** The direction that an arc had before @p first, when @p second follows; @p first itself where they are no arc. */
Vector directionBefore(const Vector& first, const Vector& second, double firstLength, double secondLength) {
    constexpr double leastCosine = 0.9; // an arc has far smaller bends
    const double cosine = dot(first, second);
    const bool isArc = cosine > leastCosine && std::abs(firstLength - secondLength) < 1e-3 * firstLength;
    return isArc ? first * (2.0 * cosine) - second : first;
}

} // namespace

BentPath::BentPath(Loop points) : points_(std::move(points)), closed_(isClosed(points_)) {
}

Vector BentPath::before(std::size_t i) const {
    if (i > 0) {
        return edge(i - 1);
    }
    if (closed_) {
        return edge(points_.size() - 2);
    }
    return points_.size() < 3
               ? edge(0)
               : directionBefore(edge(0), edge(1), length(points_[1] - points_[0]), length(points_[2] - points_[1]));
}

Vector BentPath::after(std::size_t i) const {
    const std::size_t last = points_.size() - 1;
    if (i < last) {
        return edge(i);
    }
    if (closed_) {
        return edge(0);
    }
    return last < 2 ? edge(last - 1)
                    : directionBefore(edge(last - 1), edge(last - 2), length(points_[last] - points_[last - 1]),
                                      length(points_[last - 1] - points_[last - 2]));
}

} // namespace IfcReader
