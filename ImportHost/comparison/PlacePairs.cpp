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
    constexpr std::size_t mostAtAPlace = 500; // of thousands, which no model needs, the first have to do
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
            std::size_t looks = 0;
            grid.forEachNear(now.centre, reach, [&](std::size_t candidate) {
                const Body& before = pairing.before()[candidate];
                if (looks >= mostAtAPlace || !pairing.isFreeBefore(candidate) ||
                    (before.record->className == now.record->className) != sameClass) {
                    return;
                }
                ++looks;
                if (areInPlace(before, now) &&
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
