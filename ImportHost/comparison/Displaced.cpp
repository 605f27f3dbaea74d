#include "comparison/Displaced.h"

#include <cmath>

Vector3 displaced(const Vector3& point, const Displacement& whole) {
    // Rodrigues' formula
    const double angle = whole.turn * 3.14159265358979323846 / 180.0;
    const double c = std::cos(angle);
    const double s = std::sin(angle);
    const Vector3& k = whole.axis;
    const double along = k[0] * point[0] + k[1] * point[1] + k[2] * point[2];
    const Vector3 across = {k[1] * point[2] - k[2] * point[1], k[2] * point[0] - k[0] * point[2],
                            k[0] * point[1] - k[1] * point[0]};
    Vector3 result{};
    for (std::size_t i = 0; i < result.size(); ++i) {
        result[i] = point[i] * c + across[i] * s + k[i] * along * (1.0 - c) + whole.shift[i];
    }
    return result;
}
