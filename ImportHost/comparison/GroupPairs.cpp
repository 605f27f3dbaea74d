#include "comparison/Congruence.h"
#include "comparison/Evidence.h"
#include "comparison/PlacePairs.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <set>

namespace {

/** A free object of each model that lie alike, and the shift between them. */
struct Candidate {
    std::size_t before;
    std::size_t now;
    Vector3 shift;
};

/** Shifts by cells of some millimetres. */
using Cell = std::array<long, 3>;

Cell cellOf(const Vector3& shift) {
    constexpr double size = 0.01;
    constexpr double offset = 0.0037; // so that round numbers of centimetres lie inside of a cell
    Cell cell{};
    for (std::size_t i = 0; i < cell.size(); ++i) {
        cell[i] = std::lround(std::floor((shift[i] + offset) / size));
    }
    return cell;
}

/** The free objects of the old model by area, so that those of a shape are found without looking at all. */
class ByArea {
public:
    ByArea(const std::vector<Body>& bodies, const std::vector<std::size_t>& numbers) : bodies_(bodies) {
        for (const std::size_t i : numbers) {
            sorted_.emplace_back(bodies[i].shape.area, i);
        }
        std::sort(sorted_.begin(), sorted_.end());
    }

    /** Calls @p action for each that is of the same class and lies alike, until it returns false. */
    template <typename Action>
    void forEachAlike(const Body& body, const Action& action) const {
        constexpr double tolerance = 1e-3;
        const double area = body.shape.area;
        auto entry =
            std::lower_bound(sorted_.begin(), sorted_.end(), std::make_pair(area * (1.0 - tolerance), std::size_t{0}));
        for (; entry != sorted_.end() && entry->first <= area * (1.0 + tolerance); ++entry) {
            const Body& candidate = bodies_[entry->second];
            if (candidate.record->className == body.record->className && lieAlike(candidate, body) &&
                !action(entry->second)) {
                return;
            }
        }
    }

private:
    const std::vector<Body>& bodies_;
    std::vector<std::pair<double, std::size_t>> sorted_;
};

std::vector<Candidate> candidatesOf(const Pairing& pairing) {
    constexpr std::size_t mostOfAShape = 600; // of more equal objects every shift fits some
    constexpr std::size_t most = 400000;
    std::vector<Candidate> candidates;
    const std::vector<std::size_t> freeBefore = pairing.freeBefore();
    const std::vector<std::size_t> freeNow = pairing.freeNow();
    if (freeBefore.empty() || freeNow.empty()) {
        return candidates;
    }
    const CopyCheck copies(pairing);
    const ByArea byArea(pairing.before(), freeBefore);
    for (const std::size_t now : freeNow) {
        const std::size_t first = candidates.size();
        const Body& body = pairing.now()[now];
        byArea.forEachAlike(body, [&](std::size_t before) {
            const Body& old = pairing.before()[before];
            if (!copies.isCopy(*old.record, *body.record)) {
                candidates.push_back({before, now, body.centre - old.centre});
            }
            return candidates.size() - first <= mostOfAShape;
        });
        if (candidates.size() - first > mostOfAShape) {
            candidates.resize(first);
        }
        if (candidates.size() > most) {
            break;
        }
    }
    return candidates;
}

/** The candidates of a cell, each object once. */
std::vector<Candidate> distinct(const Pairing& pairing, const std::vector<Candidate>& members) {
    std::set<std::size_t> before;
    std::set<std::size_t> now;
    std::vector<Candidate> result;
    for (const Candidate& member : members) {
        if (pairing.isFreeBefore(member.before) && pairing.isFreeNow(member.now) &&
            before.count(member.before) + now.count(member.now) == 0) {
            before.insert(member.before);
            now.insert(member.now);
            result.push_back(member);
        }
    }
    return result;
}

} // namespace

void pairGroups(Pairing& pairing) {
    std::map<Cell, std::vector<Candidate>> cells;
    for (const Candidate& candidate : candidatesOf(pairing)) {
        cells[cellOf(candidate.shift)].push_back(candidate);
    }

    // The largest groups first, and of equal ones those that moved least.
    struct Group {
        std::size_t size;
        double distance;
        const std::vector<Candidate>* members;
    };
    constexpr std::size_t fewest = 3;
    std::vector<Group> groups;
    for (const auto& [cell, members] : cells) {
        const std::size_t size = members.size() < fewest ? 0 : distinct(pairing, members).size();
        if (size >= fewest) {
            groups.push_back({size, length(members.front().shift), &members});
        }
    }
    std::sort(groups.begin(), groups.end(), [](const Group& a, const Group& b) {
        return a.size != b.size ? a.size > b.size : a.distance < b.distance;
    });
    constexpr double confidence = 0.9;
    for (const Group& group : groups) {
        const std::vector<Candidate> left = distinct(pairing, *group.members);
        if (left.size() >= fewest && 2 * left.size() >= group.size) {
            for (const Candidate& member : left) {
                pairing.pair(member.before, member.now, confidence);
            }
        }
    }
}
