#include "geometry/PlaneThickness.h"

#include "geometry/FlatPolygon.h"

#include <algorithm>
#include <array>

namespace IfcReader {

namespace {

/**
 * In the order in which they are preferred: those first that close what coordinates of few digits leave open. An opening
 * that ends a micrometre short of the other side of its wall is meant to go through.
 */
constexpr std::array<double, 11> thicknesses = {1e-6, 1e-5, 1e-9, 1e-7, 1e-8, 1e-11, 1e-10, 3e-6, 3e-5, 1e-12, 1e-4};

constexpr int binsPerDecade = 4;
constexpr int lowestDecade = -14;
constexpr int highestDecade = -2;
constexpr std::size_t bins = (highestDecade - lowestDecade) * binsPerDecade;

/** Counts distances between corners and planes by their order of magnitude. */
class Distances {
public:
    Distances(const Body& first, const Body& second) {
        collect(first, second);
        collect(second, first);
        // A sample does for large bodies.
        constexpr std::size_t mostPairs = 100'000;
        const std::size_t pairs = planes_.size() * corners_.size();
        const std::size_t step = 1 + pairs / mostPairs;
        for (std::size_t i = 0; i < pairs; i += step) {
            count(std::abs(planes_[i / corners_.size()](corners_[i % corners_.size()])));
        }
    }

    /** How many are about as large as a thickness: what is a little larger does more harm than what is smaller. */
    std::size_t near(double thickness) const {
        std::size_t sum = 0;
        for (std::size_t i = binOf(thickness / 4.0); i <= binOf(thickness * 16.0); ++i) {
            sum += counts_[i];
        }
        return sum;
    }

private:
    /** The planes and corners of a body's faces that come near the other body. */
    void collect(const Body& body, const Body& other) {
        Box reach;
        reach.add(other);
        for (const Face& face : body.faces) {
            Box box;
            std::for_each(face.outer.begin(), face.outer.end(), [&](const Vector& p) { box.add(p); });
            if (face.outer.size() > 2 && box.meets(reach, 1e-3)) {
                planes_.push_back(face.plane.isKnown() ? face.plane : planeOf(face.outer));
                corners_.insert(corners_.end(), face.outer.begin(), face.outer.end());
            }
        }
    }

    static std::size_t binOf(double distance) {
        const double bin = (std::log10(std::max(distance, 1e-300)) - lowestDecade) * binsPerDecade;
        return static_cast<std::size_t>(std::clamp(bin, 0.0, static_cast<double>(bins - 1)));
    }

    void count(double distance) {
        if (distance > 1e-14 && distance < 1e-3) {
            ++counts_[binOf(distance)];
        }
    }

    std::vector<Plane> planes_;
    std::vector<Vector> corners_;
    std::array<std::size_t, bins> counts_{};
};

} // namespace

std::vector<double> thicknessesFor(const Body& first, const Body& second) {
    const Distances distances(first, second);
    std::vector<std::pair<std::size_t, double>> ordered;
    for (const double thickness : thicknesses) {
        ordered.emplace_back(distances.near(thickness), thickness);
    }
    std::stable_sort(ordered.begin(), ordered.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
    std::vector<double> result;
    for (const auto& [count, thickness] : ordered) {
        result.push_back(thickness);
    }
    return result;
}

} // namespace IfcReader
