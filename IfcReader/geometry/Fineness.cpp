#include "geometry/Fineness.h"

#include <algorithm>
#include <cmath>

namespace IfcReader {

namespace {

constexpr double largestDeviation = 0.0005; ///< between arc and chord, in metres
constexpr double shortestChord = 0.001;     ///< in metres
constexpr double usualAngle = 2 * pi / 64;
constexpr double widestAngle = 2 * pi / 16; ///< of a chord on a small fillet
constexpr int mostChords = 10'000;

} // namespace

int chordsOf(double sweep, double radius) {
    sweep = std::abs(sweep);
    double angle = usualAngle;
    if (radius > largestDeviation) {
        angle = std::min(angle, 2.0 * std::acos(1.0 - largestDeviation / radius));
    }
    if (sweep < pi - 1e-6 && radius > 0.0) {
        angle = std::max(angle, std::min(shortestChord / radius, widestAngle));
    }
    const double count = std::ceil(sweep / angle - 1e-6);
    return static_cast<int>(std::clamp(count, 1.0, static_cast<double>(mostChords)));
}

} // namespace IfcReader
