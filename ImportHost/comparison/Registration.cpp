#include "comparison/Registration.h"

#include "comparison/Congruence.h"
#include "comparison/Grid.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <random>
#include <string>

namespace {

constexpr double pi = 3.141592653589793;

/** An object lies where another one does if it is as near as this, in metres. */
constexpr double reach = 0.05;

/** Of the objects asked, this part has to agree with a motion. */
constexpr double neededShare = 0.6;

/** The free objects of both models by kind: class, and area but for its last digits. */
class Kinds {
public:
    struct Members {
        std::vector<std::size_t> before;
        std::vector<std::size_t> now;

        std::size_t pairs() const { return before.size() * now.size(); }
    };

    explicit Kinds(const Pairing& pairing) : kindOfBefore_(pairing.before().size(), 0) {
        std::map<std::pair<std::string, long>, std::size_t> numbers;
        const auto kindOf = [&](const Body& body) {
            constexpr double step = 0.02;
            const long size = body.hasSurface() ? std::lround(std::log(body.shape.area) / step) : 0;
            const auto kind = numbers.emplace(std::make_pair(body.record->className, size), members_.size());
            members_.resize(std::max(members_.size(), kind.first->second + 1));
            return kind.first->second;
        };
        for (const std::size_t i : pairing.freeBefore()) {
            kindOfBefore_[i] = kindOf(pairing.before()[i]);
            members_[kindOfBefore_[i]].before.push_back(i);
        }
        for (const std::size_t i : pairing.freeNow()) {
            const std::size_t kind = kindOf(pairing.now()[i]);
            members_[kind].now.push_back(i);
            nowByKind_.emplace_back(kind, i);
        }
    }

    std::size_t kindOfBefore(std::size_t before) const { return kindOfBefore_[before]; }

    /** Kind and number of each free object of the new model. */
    const std::vector<std::pair<std::size_t, std::size_t>>& nowByKind() const { return nowByKind_; }

    /** The kinds of which both models have some, those of which there are fewest first. */
    std::vector<const Members*> common() const {
        std::vector<const Members*> result;
        for (const Members& members : members_) {
            if (members.pairs() > 0) {
                result.push_back(&members);
            }
        }
        std::sort(result.begin(), result.end(),
                  [](const Members* a, const Members* b) { return a->pairs() < b->pairs(); });
        return result;
    }

private:
    std::vector<Members> members_;
    std::vector<std::size_t> kindOfBefore_;
    std::vector<std::pair<std::size_t, std::size_t>> nowByKind_;
};

class RegistrationSearch {
public:
    explicit RegistrationSearch(const Pairing& pairing)
        : pairing_(pairing), kinds_(pairing), common_(kinds_.common()), grid_(cell) {
        for (const std::size_t i : pairing.freeBefore()) {
            grid_.add(pairing.before()[i].centre, i);
        }
        grid_.sort();
        jury_ = kinds_.nowByKind();
        std::shuffle(jury_.begin(), jury_.end(), random_);
        jury_.resize(std::min(jury_.size(), jurySize));
    }

    std::optional<RigidMotion> result() {
        if (common_.empty() || jury_.size() < fewestObjects || isEnough(agreement({}))) {
            return std::nullopt;
        }
        const std::vector<Rotation> turns = possibleTurns();
        for (std::size_t trial = 0; trial < trials && best_ < jury_.size(); ++trial) {
            // Kinds of which there are few are asked as often as there are pairs of them.
            const Kinds::Members& kind = *common_[nextKind_];
            considerPair(anyOf(kind.before), anyOf(kind.now), turns);
            if (++trialsOfKind_ > trialsPerPair * kind.pairs()) {
                trialsOfKind_ = 0;
                nextKind_ = (nextKind_ + 1) % common_.size();
            }
        }
        return isEnough(best_) ? std::optional<RigidMotion>(bestMotion_) : std::nullopt;
    }

private:
    static constexpr double cell = 1.0;
    static constexpr std::size_t jurySize = 300;
    static constexpr std::size_t fewestObjects = 4;
    static constexpr std::size_t trials = 6000;
    static constexpr std::size_t trialsPerPair = 3;

    std::size_t anyOf(const std::vector<std::size_t>& numbers) { return numbers[random_() % numbers.size()]; }

    bool isEnough(std::size_t count) const {
        return static_cast<double>(count) >= neededShare * static_cast<double>(jury_.size());
    }

    /** How many of the jury lie where an old object of their kind comes to lie; stops where there is no hope. */
    std::size_t agreement(const RigidMotion& motion) const {
        const Rotation back = transposed(motion.rotation);
        std::size_t count = 0;
        for (std::size_t i = 0; i < jury_.size(); ++i) {
            const auto& [kind, now] = jury_[i];
            const Vector3 place = rotated(pairing_.now()[now].centre - motion.shift, back);
            bool isFound = false;
            grid_.forEachNear(place, reach, [&, wanted = kind](std::size_t before) {
                isFound |= kinds_.kindOfBefore(before) == wanted;
            });
            count += isFound ? 1 : 0;
            constexpr std::size_t patience = 6;
            if (i >= patience && 3 * count < i) {
                return count;
            }
        }
        return count;
    }

    /** The turns about z that objects of one kind speak for most, each with those that a rectangle can't be told by. */
    std::vector<Rotation> possibleTurns() {
        constexpr int samples = 150;
        constexpr double quarter = pi / 2.0;
        constexpr double step = pi / 3600.0;
        std::map<long, std::vector<double>> votes;
        for (int i = 0; i < samples; ++i) {
            const Kinds::Members& kind = *common_[random_() % common_.size()];
            const std::optional<Rotation> turn =
                turnBetween(pairing_.before()[anyOf(kind.before)], pairing_.now()[anyOf(kind.now)]);
            if (turn && std::fabs((*turn)[2][2] - 1.0) < 1e-6) {
                const double angle = std::atan2((*turn)[1][0], (*turn)[0][0]);
                const double rest = angle - quarter * std::floor(angle / quarter + step);
                votes[std::lround(rest / step)].push_back(rest);
            }
        }
        const auto most = std::max_element(
            votes.begin(), votes.end(), [](const auto& a, const auto& b) { return a.second.size() < b.second.size(); });
        std::vector<Rotation> turns;
        for (int i = 0; i < 4 && most != votes.end(); ++i) {
            turns.push_back(rotationAbout({0.0, 0.0, 1.0}, most->second.front() + quarter * i));
        }
        return turns;
    }

    void considerPair(std::size_t before, std::size_t now, const std::vector<Rotation>& turns) {
        for (const Rotation& turn : turns) {
            const RigidMotion motion = {turn,
                                        pairing_.now()[now].centre - rotated(pairing_.before()[before].centre, turn)};
            const std::size_t count = agreement(motion);
            if (count > best_) {
                best_ = count;
                bestMotion_ = motion;
            }
        }
    }

    const Pairing& pairing_;
    std::mt19937 random_{1};
    Kinds kinds_;
    std::vector<const Kinds::Members*> common_;
    Grid grid_;
    std::vector<std::pair<std::size_t, std::size_t>> jury_; ///< kinds and numbers of some new objects
    std::size_t nextKind_ = 0;
    std::size_t trialsOfKind_ = 0;
    std::size_t best_ = 0;
    RigidMotion bestMotion_;
};

} // namespace

std::optional<RigidMotion> registeredMotion(const Pairing& pairing) {
    return RegistrationSearch(pairing).result();
}
