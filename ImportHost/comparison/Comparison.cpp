#include "comparison/Comparison.h"

#include "comparison/Description.h"
#include "comparison/EvidencePairs.h"
#include "comparison/IdentityPairs.h"
#include "comparison/Pieces.h"
#include "comparison/PlacePairs.h"
#include "comparison/WholeDisplacement.h"

#include <algorithm>
#include <limits>

namespace {

constexpr double degreesPerRadian = 180.0 / 3.141592653589793;

Displacement displacementOf(const RigidMotion& motion) {
    Displacement displacement;
    displacement.shift = motion.shift;
    displacement.turn = angleOf(motion.rotation) * degreesPerRadian;
    displacement.axis = axisOf(motion.rotation);
    constexpr double parallel = 1e-9;
    if (displacement.axis[2] < 0.0) {
        displacement.axis = displacement.axis * -1.0;
        displacement.turn = -displacement.turn;
    }
    if (displacement.axis[2] > 1.0 - parallel) {
        displacement.axis = {0.0, 0.0, 1.0};
    }
    return displacement;
}

/** An object that is there on one side only. */
Change oneSided(const ObjectRecord* before, const ObjectRecord* now) {
    Change change;
    change.before = before;
    change.now = now;
    change.changes = {before == nullptr ? Status::Added : Status::Removed};
    change.similarity = std::numeric_limits<double>::quiet_NaN();
    change.distance = std::numeric_limits<double>::quiet_NaN();
    return change;
}

std::vector<Change> changesOf(const Pairing& pairing, const std::vector<PossiblePair>& hints) {
    std::vector<Change> changes;
    changes.reserve(pairing.now().size());
    for (std::size_t i = 0; i < pairing.now().size(); ++i) {
        const Body& now = pairing.now()[i];
        if (pairing.isFreeNow(i)) {
            changes.push_back(oneSided(nullptr, now.record));
            continue;
        }
        const Body& before = pairing.before()[pairing.partnerOfNow(i)];
        Change& change = changes.emplace_back();
        change.before = before.record;
        change.now = now.record;
        change.confidence = pairing.confidence(i);
        describe(change, before, now);
    }
    std::vector<std::size_t> places(pairing.before().size(), 0);
    for (const std::size_t i : pairing.freeBefore()) {
        places[i] = changes.size();
        changes.push_back(oneSided(pairing.before()[i].record, nullptr));
    }
    for (const PossiblePair& hint : hints) {
        changes[hint.now].perhaps = Hint{pairing.before()[hint.before].record, hint.confidence};
        changes[places[hint.before]].perhaps = Hint{pairing.now()[hint.now].record, hint.confidence};
    }
    return changes;
}

} // namespace

const char* statusName(Status status) {
    switch (status) {
    case Status::Unchanged:
        return "unchanged";
    case Status::Properties:
        return "properties";
    case Status::Moved:
        return "moved";
    case Status::Reshaped:
        return "reshaped";
    case Status::Reclassed:
        return "reclassed";
    case Status::Reidentified:
        return "reidentified";
    case Status::Added:
        return "added";
    case Status::Removed:
        return "removed";
    }
    return "";
}

bool Change::has(Status status) const {
    return std::find(changes.begin(), changes.end(), status) != changes.end();
}

std::size_t Comparison::count(Status status) const {
    return static_cast<std::size_t>(
        std::count_if(changes.begin(), changes.end(), [&](const Change& change) { return change.status() == status; }));
}

Comparison compare(const std::vector<ObjectRecord>& before, const std::vector<ObjectRecord>& now) {
    Comparison comparison;
    Pairing pairing(bodiesOf(before), bodiesOf(now));
    pairIdentities(pairing);
    if (const std::optional<RigidMotion> motion = displacementOf(pairing)) {
        comparison.displacement = displacementOf(*motion);
        pairing.displaceBefore(*motion);
    }
    undoExchanges(pairing);
    pairPlaces(pairing);
    pairSpatialHashes(pairing);
    pairGroups(pairing);
    const std::vector<PossiblePair> hints = pairByEvidence(pairing);
    comparison.changes = changesOf(pairing, hints);
    notePieces(comparison.changes);
    return comparison;
}
