#include "comparison/WholeDisplacement.h"

#include "comparison/Congruence.h"
#include "comparison/Grid.h"
#include "comparison/Registration.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <random>
#include <string>

namespace {

/** A pair agrees with a motion that takes one of its points as near as this to the other, in metres. */
constexpr double agreement = 0.01;

/** What the whole moved less than this, in metres, is no displacement. */
constexpr double smallest = 0.0015;

/** Of the objects that tell, this part has to agree, and not more than that to have stayed. */
constexpr double neededShare = 0.6;
constexpr double mostThatStayed = 0.05;
constexpr std::size_t fewestObjects = 4;

/** An object of the new model with those of the old one that it may be. */
struct Witness {
    Vector3 now;
    std::vector<Vector3> before;
};

using Witnesses = std::vector<Witness>;

/** All of an object that a displacement does not change, but for the last digits. */
struct Kind {
    std::size_t text; ///< hash of class and name: two that fall together make a kind less clear, and no more
    long size;

    friend bool operator<(const Kind& a, const Kind& b) { return a.text != b.text ? a.text < b.text : a.size < b.size; }
};

struct KindOfBody {
    Kind kind;
    std::size_t number;
};

std::vector<KindOfBody> kindsOf(const std::vector<Body>& bodies, const std::vector<std::size_t>& numbers) {
    constexpr double step = 0.02; // of the logarithm of the area
    const std::hash<std::string> hash;
    std::vector<KindOfBody> kinds;
    for (const std::size_t i : numbers) {
        const Body& body = bodies[i];
        if (body.hasSurface()) {
            const std::size_t text = hash(body.record->className) * 31 + hash(body.record->name);
            kinds.push_back({{text, std::lround(std::log(body.shape.area) / step)}, i});
        }
    }
    std::stable_sort(kinds.begin(), kinds.end(),
                     [](const KindOfBody& a, const KindOfBody& b) { return a.kind < b.kind; });
    return kinds;
}

/** Adds the free objects of kinds of which there are few, as many as suffice. */
void addFreeWitnesses(const Pairing& pairing, Witnesses& witnesses) {
    const std::vector<KindOfBody> before = kindsOf(pairing.before(), pairing.freeBefore());
    const std::vector<KindOfBody> now = kindsOf(pairing.now(), pairing.freeNow());
    const auto less = [](const KindOfBody& a, const KindOfBody& b) { return a.kind < b.kind; };
    constexpr std::size_t most = 4;
    constexpr std::size_t enough = 300;
    for (std::size_t size = 1, found = 0; size <= most && found < enough; ++size) {
        for (auto first = now.begin(); first != now.end() && found < enough;) {
            const auto last = std::upper_bound(first, now.end(), *first, less);
            const auto old = std::equal_range(before.begin(), before.end(), *first, less);
            const auto count = std::max(last - first, old.second - old.first);
            if (old.first != old.second && static_cast<std::size_t>(count) == size) {
                for (; first != last; ++first, ++found) {
                    Witness witness = {pairing.now()[first->number].centre, {}};
                    for (auto candidate = old.first; candidate != old.second; ++candidate) {
                        if (measureAlike(pairing.before()[candidate->number], pairing.now()[first->number])) {
                            witness.before.push_back(pairing.before()[candidate->number].centre);
                        }
                    }
                    if (!witness.before.empty()) {
                        witnesses.push_back(std::move(witness));
                    }
                }
            }
            first = last;
        }
    }
}

Witnesses witnessesOf(const Pairing& pairing) {
    Witnesses witnesses;
    for (std::size_t i = 0; i < pairing.now().size(); ++i) {
        if (!pairing.isFreeNow(i)) {
            const Body& before = pairing.before()[pairing.partnerOfNow(i)];
            const Body& now = pairing.now()[i];
            if (before.hasSurface() && now.hasSurface() && measureAlike(before, now)) {
                witnesses.push_back({now.centre, {before.centre}});
            }
        }
    }
    addFreeWitnesses(pairing, witnesses);
    return witnesses;
}

/** One pair for each witness that agrees with a motion. */
std::vector<PointPair> agreeing(const Witnesses& witnesses, const RigidMotion& motion) {
    std::vector<PointPair> pairs;
    for (const Witness& witness : witnesses) {
        for (const Vector3& before : witness.before) {
            if (largestPart(motion.apply(before) - witness.now) <= agreement) {
                pairs.emplace_back(before, witness.now);
                break;
            }
        }
    }
    return pairs;
}

/** Finds the motion with which most witnesses agree among those that random samples of them suggest. */
class Consensus {
public:
    explicit Consensus(const Witnesses& witnesses) : witnesses_(witnesses) {
        // A part of them is enough to choose by.
        constexpr std::size_t enough = 400;
        for (std::size_t i = 0; i < witnesses.size(); i += 1 + witnesses.size() / enough) {
            jury_.push_back(witnesses[i]);
        }
    }

    RigidMotion result() {
        consider({});
        for (int i = 0; i < samples; ++i) {
            const PointPair a = sample();
            considerShift(a);
            const PointPair b = sample();
            considerTurnAboutZ(a, b);
            considerTurn(a, b, sample());
        }
        return best_;
    }

private:
    static constexpr int samples = 300;
    static constexpr double farEnough = 0.5; // for a direction between points

    PointPair sample() {
        const Witness& witness = witnesses_[random_() % witnesses_.size()];
        return {witness.before[random_() % witness.before.size()], witness.now};
    }

    void considerShift(const PointPair& a) { consider({noRotation, a.second - a.first}); }

    static bool areCompatible(const PointPair& a, const PointPair& b) {
        const double before = length(a.first - b.first);
        return before >= farEnough && std::fabs(before - length(a.second - b.second)) <= agreement;
    }

    void considerTurnAboutZ(const PointPair& a, const PointPair& b) {
        const Vector3 before = b.first - a.first;
        if (areCompatible(a, b) && std::hypot(before[0], before[1]) >= farEnough) {
            consider(fittedTurnAboutZ({a, b}));
        }
    }

    void considerTurn(const PointPair& a, const PointPair& b, const PointPair& c) {
        const double area = length(cross(b.first - a.first, c.first - a.first));
        if (areCompatible(a, b) && areCompatible(a, c) && areCompatible(b, c) && area >= farEnough * farEnough) {
            consider(fittedMotion({a, b, c}));
        }
    }

    void consider(const RigidMotion& motion) {
        // Two points near each other tell a direction badly: what agrees roughly is asked again.
        std::size_t count = agreeing(jury_, motion).size();
        if (count > bestCount_) {
            bestCount_ = count;
            best_ = motion;
        }
    }

    const Witnesses& witnesses_;
    Witnesses jury_;
    std::mt19937 random_{1};
    RigidMotion best_;
    std::size_t bestCount_ = 0;
};

double largestError(const std::vector<PointPair>& pairs, const RigidMotion& motion) {
    double error = 0.0;
    for (const auto& [before, now] : pairs) {
        error = std::max(error, largestPart(motion.apply(before) - now));
    }
    return error;
}

/** The simplest motion that all pairs agree with: a shift, with a turn about z, or a turn about any axis. */
RigidMotion simplestMotion(const std::vector<PointPair>& pairs) {
    constexpr double allowance = 0.0005;
    const RigidMotion any = fittedMotion(pairs);
    const double limit = largestError(pairs, any) + allowance;
    for (const RigidMotion& motion : {fittedShift(pairs), fittedTurnAboutZ(pairs)}) {
        if (largestError(pairs, motion) <= limit) {
            return motion;
        }
    }
    return any;
}

/** The motion that a first guess leads to, if the witnesses bear it out. */
std::optional<RigidMotion> confirmed(RigidMotion motion, const Witnesses& witnesses) {
    std::vector<PointPair> pairs;
    constexpr int refinements = 3;
    for (int i = 0; i < refinements; ++i) {
        pairs = agreeing(witnesses, motion);
        if (pairs.size() < fewestObjects) {
            return std::nullopt;
        }
        motion = simplestMotion(pairs);
    }
    pairs = agreeing(witnesses, motion);
    const auto share = [&](double part) { return part * static_cast<double>(witnesses.size()); };
    double moved = 0.0;
    for (const auto& [before, now] : pairs) {
        moved = std::max(moved, largestPart(now - before));
    }
    if (moved < smallest || static_cast<double>(pairs.size()) < share(neededShare)) {
        return std::nullopt;
    }

    // What stayed exactly where it was did not follow, unless it lies where the motion has next to no effect.
    std::size_t stayed = 0;
    for (const Witness& witness : witnesses) {
        stayed += std::any_of(witness.before.begin(), witness.before.end(), [&](const Vector3& before) {
            return largestPart(before - witness.now) < smallest / 2.0 &&
                   largestPart(motion.apply(before) - witness.now) >= smallest / 2.0;
        });
    }
    return static_cast<double>(stayed) <= share(mostThatStayed) ? std::optional<RigidMotion>(motion) : std::nullopt;
}

/** The free objects with those near the places to which a motion takes the old ones. */
Witnesses witnessesOf(const Pairing& pairing, const RigidMotion& motion) {
    constexpr double reach = 0.05;
    constexpr double cell = 1.0;
    Grid grid(cell);
    for (const std::size_t i : pairing.freeBefore()) {
        grid.add(motion.apply(pairing.before()[i].centre), i);
    }
    grid.sort();
    Witnesses witnesses;
    for (const std::size_t i : pairing.freeNow()) {
        Witness& witness = witnesses.emplace_back();
        witness.now = pairing.now()[i].centre;
        grid.forEachNear(witness.now, reach, [&](std::size_t before) {
            if (pairing.before()[before].record->className == pairing.now()[i].record->className) {
                witness.before.push_back(pairing.before()[before].centre);
            }
        });
    }
    return witnesses;
}

/** Whether most objects of both models have no partner. */
bool areMostFree(const Pairing& pairing) {
    return 2 * pairing.freeNow().size() > pairing.now().size() &&
           2 * pairing.freeBefore().size() > pairing.before().size();
}

/** Objects at the distance of a centimetre or two agree badly with a first guess: it is made better step by step. */
RigidMotion refined(RigidMotion motion, const Witnesses& witnesses) {
    for (const double allowed : {0.05, 0.02}) {
        std::vector<PointPair> pairs;
        for (const Witness& witness : witnesses) {
            for (const Vector3& before : witness.before) {
                if (largestPart(motion.apply(before) - witness.now) <= allowed) {
                    pairs.emplace_back(before, witness.now);
                }
            }
        }
        if (pairs.size() >= fewestObjects) {
            motion = fittedTurnAboutZ(pairs);
        }
    }
    return motion;
}

} // namespace

std::optional<RigidMotion> displacementOf(const Pairing& pairing) {
    const Witnesses witnesses = witnessesOf(pairing);
    if (witnesses.size() >= fewestObjects) {
        if (const std::optional<RigidMotion> motion = confirmed(Consensus(witnesses).result(), witnesses)) {
            return motion;
        }
    }
    const std::optional<RigidMotion> guess = areMostFree(pairing) ? registeredMotion(pairing) : std::nullopt;
    if (!guess) {
        return std::nullopt;
    }
    const Witnesses all = witnessesOf(pairing, *guess);
    return confirmed(refined(*guess, all), all);
}
