#include "comparison/PlacePairs.h"

#include "comparison/Congruence.h"
#include "comparison/Grid.h"

#include <tuple>

namespace {

/** Orders objects in one place by what they have in common with another, the best last. */
std::tuple<bool, bool, bool, double> preference(const Body& before, const Body& now) {
    const ObjectRecord& a = *before.record;
    const ObjectRecord& b = *now.record;
    return {a.name == b.name, attributeOf(a, "Tag") == attributeOf(b, "Tag"),
            a.properties.digest == b.properties.digest, -distanceBetween(before, now)};
}

} // namespace

void pairPlaces(Pairing& pairing) {
    constexpr double reach = 0.005;
    constexpr double cell = 0.5;
    Grid grid(cell);
    for (const std::size_t i : pairing.freeBefore()) {
        grid.add(pairing.before()[i].centre, i);
    }
    grid.sort();
    for (const bool sameClass : {true, false}) {
        const double confidence = sameClass ? 0.99 : 0.95;
        for (const std::size_t i : pairing.freeNow()) {
            const Body& now = pairing.now()[i];
            std::size_t best = Pairing::none;
            grid.forEachNear(now.centre, reach, [&](std::size_t candidate) {
                const Body& before = pairing.before()[candidate];
                if (pairing.isFreeBefore(candidate) &&
                    (before.record->className == now.record->className) == sameClass && areInPlace(before, now) &&
                    (best == Pairing::none || preference(pairing.before()[best], now) < preference(before, now))) {
                    best = candidate;
                }
            });
            if (best != Pairing::none) {
                pairing.pair(best, i, confidence);
            }
        }
    }
}
