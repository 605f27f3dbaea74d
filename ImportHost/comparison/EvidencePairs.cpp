#include "comparison/EvidencePairs.h"

#include "comparison/Evidence.h"
#include "comparison/Grid.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <unordered_map>

namespace {

/** Less is no match but a hint. */
constexpr double neededConfidence = 0.7;

/** The score at which two objects are as likely one as not. */
constexpr double evenScore = 4.5;

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
    CandidateSearch(const std::vector<Body>& bodies, const std::vector<std::size_t>& numbers) : grid_(cell) {
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

    std::vector<std::size_t> candidates(const Body& body) const {
        std::vector<std::size_t> result;
        add(byClass_, body.record->className, result);
        add(byName_, body.record->name, result);
        for (const long step : {-1L, 0L, 1L}) {
            add(byArea_, areaStep(body) + step, result);
        }
        grid_.forEachNear(body.centre, cell, [&](std::size_t i) {
            if (result.size() < mostNear + most) {
                result.push_back(i);
            }
        });
        std::sort(result.begin(), result.end());
        result.erase(std::unique(result.begin(), result.end()), result.end());
        return result;
    }

private:
    static constexpr double cell = 3.0;
    static constexpr std::size_t most = 64;
    static constexpr std::size_t mostNear = 256;

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

    std::unordered_map<std::string, std::vector<std::size_t>> byClass_;
    std::unordered_map<std::string, std::vector<std::size_t>> byName_;
    std::unordered_map<long, std::vector<std::size_t>> byArea_;
    Grid grid_;
};

std::vector<Candidate> candidatesOf(const Pairing& pairing) {
    std::vector<Candidate> candidates;
    const std::vector<std::size_t> freeBefore = pairing.freeBefore();
    const std::vector<std::size_t> freeNow = pairing.freeNow();
    if (freeBefore.empty() || freeNow.empty()) {
        return candidates;
    }
    const Evidence evidence(pairing);
    const CandidateSearch search(pairing.before(), freeBefore);
    for (const std::size_t now : freeNow) {
        for (const std::size_t before : search.candidates(pairing.now()[now])) {
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
    Rivals(const Pairing& pairing, const std::vector<Candidate>& candidates) : pairing_(pairing) {
        for (const Candidate& candidate : candidates) {
            byBefore_[candidate.before].push_back(&candidate);
            byNow_[candidate.now].push_back(&candidate);
        }
    }

    /** How much better a candidate is than the next one that can't be told from it by place alone. */
    double margin(const Candidate& candidate, bool& hasEqual) const {
        double margin = clearMargin;
        const auto look = [&](const Candidate& rival, const Body& own, const Body& other, bool isFree) {
            if (!isFree || &rival == &candidate) {
                return;
            }
            if (Evidence::areInterchangeable(own, other)) {
                hasEqual = true;
            } else {
                margin = std::min(margin, std::max(candidate.score - rival.score, 0.0));
            }
        };
        for (const Candidate* rival : byNow_.at(candidate.now)) {
            look(*rival, pairing_.before()[candidate.before], pairing_.before()[rival->before],
                 pairing_.isFreeBefore(rival->before));
        }
        for (const Candidate* rival : byBefore_.at(candidate.before)) {
            look(*rival, pairing_.now()[candidate.now], pairing_.now()[rival->now], pairing_.isFreeNow(rival->now));
        }
        return margin;
    }

    static constexpr double clearMargin = 1.0;

private:
    const Pairing& pairing_;
    std::unordered_map<std::size_t, std::vector<const Candidate*>> byBefore_;
    std::unordered_map<std::size_t, std::vector<const Candidate*>> byNow_;
};

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
    const std::vector<Candidate> candidates = candidatesOf(pairing);
    const Rivals rivals(pairing, candidates);
    std::vector<PossiblePair> possible;
    for (const Candidate& candidate : candidates) {
        if (!pairing.isFreeBefore(candidate.before) || !pairing.isFreeNow(candidate.now)) {
            continue;
        }
        const double confidence = confidenceOf(candidate, rivals);
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
