#include "geometry/Polylines.h"

#include <algorithm>

namespace IfcReader {

namespace {

/** A point on a polyline: whole parameters stand for its corners. */
Vector polylinePoint(const Loop& corners, double parameter) {
    const double last = static_cast<double>(corners.size() - 1);
    const double clamped = std::clamp(parameter, 0.0, last);
    const std::size_t i = std::min(static_cast<std::size_t>(clamped), corners.size() - 2);
    return corners[i] + (corners[i + 1] - corners[i]) * (clamped - static_cast<double>(i));
}

} // namespace

void appendDistinct(Loop& path, const Vector& p, double distance) {
    if (path.empty() || length(p - path.back()) > distance) {
        path.push_back(p);
    }
}

Loop polylinePart(const Loop& corners, double from, double to) {
    if (corners.size() < 2) {
        return corners;
    }
    const bool backwards = from > to;
    const double low = std::min(from, to);
    const double high = std::max(from, to);
    Loop part{polylinePoint(corners, low)};
    for (std::size_t i = 0; i < corners.size(); ++i) {
        const double at = static_cast<double>(i);
        if (at > low + 1e-9 && at < high - 1e-9) {
            appendDistinct(part, corners[i], samePoint);
        }
    }
    appendDistinct(part, polylinePoint(corners, high), samePoint);
    if (backwards) {
        std::reverse(part.begin(), part.end());
    }
    return part;
}

double polylineParameter(const Loop& corners, const Vector& p) {
    double best = 0.0;
    double nearest = 1e300;
    for (std::size_t i = 0; i + 1 < corners.size(); ++i) {
        const Vector edge = corners[i + 1] - corners[i];
        const double t = std::clamp(dot(p - corners[i], edge) / dot(edge, edge), 0.0, 1.0);
        const double distance = length(corners[i] + edge * t - p);
        if (distance < nearest) {
            nearest = distance;
            best = static_cast<double>(i) + t;
        }
    }
    return best;
}

} // namespace IfcReader
