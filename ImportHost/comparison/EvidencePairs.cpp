#include "comparison/EvidencePairs.h"

#include "comparison/Congruence.h"
#include "comparison/Evidence.h"
#include "comparison/Grid.h"
#include "comparison/Lookalikes.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <unordered_map>

namespace {

/** Less is no match but a hint. */
constexpr double neededConfidence = 0.7;

/** The score at which two objects are as likely one as not. */
constexpr double evenScore = 4.5;

/** How much of its confidence is left to a candidate that is merely the nearest of many; not enough for a pair. */
constexpr double shareOfNearest = 0.5;

/** A lower score is not worth a hint. */
constexpr double leastScore = 4.0;

struct Candidate {
    std::size_t before;
    std::size_t now;
    double score;
};

/** Finds old objects that may be some new one without looking at all of them. */
class CandidateSearch {
public:
    CandidateSearch(const std::vector<Body>& bodies, const std::vector<std::size_t>& numbers,
                    const Lookalikes& lookalikes)
        : bodies_(bodies), lookalikes_(lookalikes), grid_(cell) {
        for (const std::size_t i : numbers) {
            const Body& body = bodies[i];
            byClass_[body.record->className].push_back(i);
            byArea_[areaStep(body)].push_back(i);
            if (!body.record->name.empty()) {
                byName_[body.record->name].push_back(i);
            }
            grid_.add(body.centre, i);
        }
        grid_.sort();
    }

    /** Those for a new object. */
    std::vector<std::size_t> candidates(const Body& body, std::size_t now) const {
        std::vector<std::size_t> result;
        add(byClass_, body.record->className, result);
        add(byName_, body.record->name, result);
        for (const long step : {-1L, 0L, 1L}) {
            add(byArea_, areaStep(body) + step, result);
        }
        addNear(body, now, result);
        std::sort(result.begin(), result.end());
        result.erase(std::unique(result.begin(), result.end()), result.end());
        return result;
    }

private:
    static constexpr double cell = 3.0;
    static constexpr std::size_t most = 64;
    static constexpr std::size_t mostNear = 256;
    static constexpr std::size_t mostAlike = 8;

    /** Of many that are all alike the nearest are enough. */
    void addNear(const Body& body, std::size_t now, std::vector<std::size_t>& result) const {
        const bool areMany = lookalikes_.areMany(now);
        std::vector<std::pair<double, std::size_t>> alike;
        grid_.forEachNear(body.centre, cell, [&](std::size_t i) {
            if (areMany && lookalikes_.saySame(i, now)) {
                alike.emplace_back(length(bodies_[i].centre - body.centre), i);
            } else if (result.size() < mostNear + most) {
                result.push_back(i);
            }
        });
        const auto end = alike.begin() + static_cast<long>(std::min(alike.size(), mostAlike));
        std::partial_sort(alike.begin(), end, alike.end());
        std::for_each(alike.begin(), end, [&](const auto& entry) { result.push_back(entry.second); });
    }

    static long areaStep(const Body& body) {
        constexpr double step = 0.05;
        return body.hasSurface() ? std::lround(std::log(body.shape.area) / step) : 0;
    }

    /** All of a group, unless it is so large that those near by have to do. */
    template <typename Map, typename Key>
    static void add(const Map& groups, const Key& key, std::vector<std::size_t>& result) {
        const auto found = groups.find(key);
        if (found != groups.end() && found->second.size() <= most) {
            result.insert(result.end(), found->second.begin(), found->second.end());
        }
    }

    const std::vector<Body>& bodies_;
    const Lookalikes& lookalikes_;
    std::unordered_map<std::string, std::vector<std::size_t>> byClass_;
    std::unordered_map<std::string, std::vector<std::size_t>> byName_;
    std::unordered_map<long, std::vector<std::size_t>> byArea_;
    Grid grid_;
};

std::vector<Candidate> candidatesOf(const Pairing& pairing, const Lookalikes& lookalikes) {
    std::vector<Candidate> candidates;
    const std::vector<std::size_t> freeBefore = pairing.freeBefore();
    const std::vector<std::size_t> freeNow = pairing.freeNow();
    if (freeBefore.empty() || freeNow.empty()) {
        return candidates;
    }
    const Evidence evidence(pairing);
    const CandidateSearch search(pairing.before(), freeBefore, lookalikes);
    for (const std::size_t now : freeNow) {
        for (const std::size_t before : search.candidates(pairing.now()[now], now)) {
            const double score = evidence.score(before, now);
            if (score > leastScore) {
                candidates.push_back({before, now, score});
            }
        }
    }
    std::stable_sort(candidates.begin(), candidates.end(),
                     [](const Candidate& a, const Candidate& b) { return a.score > b.score; });
    return candidates;
}

/** The other candidates for the objects of each. */
class Rivals {
public:
    Rivals(const Pairing& pairing, const std::vector<Candidate>& candidates, const Lookalikes& lookalikes)
        : pairing_(pairing), lookalikes_(lookalikes) {
        for (const Candidate& candidate : candidates) {
            byBefore_[candidate.before].push_back(&candidate);
            byNow_[candidate.now].push_back(&candidate);
        }
    }

    /** How much better a candidate is than the next one that can't be told from it by place alone. */
    double margin(const Candidate& candidate, bool& hasEqual) const {
        double margin = clearMargin;
        const auto look = [&](const Candidate& rival, bool isEqual) {
            if (isEqual) {
                hasEqual = true;
            } else {
                margin = std::min(margin, std::max(candidate.score - rival.score, 0.0));
            }
        };
        for (const Candidate* rival : byNow_.at(candidate.now)) {
            if (rival != &candidate && pairing_.isFreeBefore(rival->before)) {
                look(*rival, lookalikes_.areLookalikesBefore(candidate.before, rival->before));
            }
        }
        for (const Candidate* rival : byBefore_.at(candidate.before)) {
            if (rival != &candidate && pairing_.isFreeNow(rival->now)) {
                look(*rival, lookalikes_.areLookalikesNow(candidate.now, rival->now));
            }
        }
        return margin;
    }

    static constexpr double clearMargin = 1.0;

private:
    const Pairing& pairing_;
    const Lookalikes& lookalikes_;
    std::unordered_map<std::size_t, std::vector<const Candidate*>> byBefore_;
    std::unordered_map<std::size_t, std::vector<const Candidate*>> byNow_;
};

/** Whether nothing speaks for a candidate but that it is the nearest of many that are all alike. */
bool isNearestOfMany(const Candidate& candidate, const Pairing& pairing, const Lookalikes& lookalikes) {
    constexpr double nearlyInPlace = 0.1; // metres: so far an object is moved sooner than exchanged for another one
    return lookalikes.areMany(candidate.now) && lookalikes.saySame(candidate.before, candidate.now) &&
           distanceBetween(pairing.before()[candidate.before], pairing.now()[candidate.now]) > nearlyInPlace;
}

double confidenceOf(const Candidate& candidate, const Rivals& rivals) {
    constexpr double most = 0.95;
    constexpr double shareOfEqual = 0.85; // the nearest of equal objects counts as the same, not quite as surely
    bool hasEqual = false;
    const double margin = rivals.margin(candidate, hasEqual) / Rivals::clearMargin;
    const double isThere = 1.0 / (1.0 + std::exp(evenScore - candidate.score));
    return std::min(most, isThere * (0.5 + 0.5 * margin) * (hasEqual ? shareOfEqual : 1.0));
}

} // namespace

std::vector<PossiblePair> pairByEvidence(Pairing& pairing) {
    const Lookalikes lookalikes(pairing);
    const std::vector<Candidate> candidates = candidatesOf(pairing, lookalikes);
    const Rivals rivals(pairing, candidates, lookalikes);
    std::vector<PossiblePair> possible;
    for (const Candidate& candidate : candidates) {
        if (!pairing.isFreeBefore(candidate.before) || !pairing.isFreeNow(candidate.now)) {
            continue;
        }
        const double share = isNearestOfMany(candidate, pairing, lookalikes) ? shareOfNearest : 1.0;
        const double confidence = share * confidenceOf(candidate, rivals);
        if (confidence >= neededConfidence) {
            pairing.pair(candidate.before, candidate.now, confidence);
        } else {
            possible.push_back({candidate.before, candidate.now, confidence});
        }
    }

    std::vector<PossiblePair> hints;
    std::vector<bool> isBeforeTaken(pairing.before().size(), false);
    std::vector<bool> isNowTaken(pairing.now().size(), false);
    for (const PossiblePair& pair : possible) {
        if (pairing.isFreeBefore(pair.before) && pairing.isFreeNow(pair.now) && !isBeforeTaken[pair.before] &&
            !isNowTaken[pair.now]) {
            isBeforeTaken[pair.before] = true;
            isNowTaken[pair.now] = true;
            hints.push_back(pair);
        }
    }
    return hints;
}
