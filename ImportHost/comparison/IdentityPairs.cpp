#include "comparison/IdentityPairs.h"

#include "comparison/Congruence.h"
#include "comparison/Grid.h"

#include <ImportCommon/ExternalGUIDDatabase.h>

#include <algorithm>
#include <deque>
#include <string>
#include <unordered_map>

using namespace ImportCommon;

namespace {

/** Objects by a key, in their order; several may have the same. */
template <typename Key>
class ObjectsByKey {
public:
    void add(const Key& key, std::size_t number) { objects_[key].push_back(number); }

    /** Takes the first object of a kind out of those with a key; Pairing::none when there is none. */
    template <typename Condition>
    std::size_t take(const Key& key, const Condition& condition) {
        const auto found = objects_.find(key);
        if (found == objects_.end()) {
            return Pairing::none;
        }
        constexpr std::size_t mostLooks = 500; // of thousands with one key, which no model needs, the first have to do
        const std::size_t looks = std::min(found->second.size(), mostLooks);
        for (auto object = found->second.begin(); object != found->second.begin() + static_cast<long>(looks);
             ++object) {
            const std::size_t number = *object;
            if (condition(number)) {
                found->second.erase(object);
                return number;
            }
        }
        return Pairing::none;
    }

private:
    std::unordered_map<Key, std::deque<std::size_t>> objects_;
};

/** An object that is known by where it is. */
bool isPlaceholder(const ObjectRecord& record) {
    return record.sourceId.empty() && record.identity.getType() == ExternalGUID::GUIDTypeSpatialHash;
}

void pairSourceIds(Pairing& pairing) {
    ObjectsByKey<std::string> known;
    for (std::size_t i = 0; i < pairing.before().size(); ++i) {
        known.add(pairing.before()[i].record->sourceId, i);
    }
    for (std::size_t i = 0; i < pairing.now().size(); ++i) {
        const std::string& id = pairing.now()[i].record->sourceId;
        const std::size_t partner = id.empty() ? Pairing::none : known.take(id, [](std::size_t) { return true; });
        if (partner != Pairing::none) {
            pairing.pair(partner, i, 1.0);
        }
    }
}

/** Pairs free objects by what the database makes of one of their ids. */
template <typename IdOf, typename Condition>
void pairByDatabase(Pairing& pairing, const IdOf& idOf, double confidence, const Condition& condition) {
    ExternalGUIDDatabase database;
    ObjectsByKey<int> known;
    for (const std::size_t i : pairing.freeBefore()) {
        known.add(database.insertGUID(idOf(*pairing.before()[i].record)), i);
    }
    for (const std::size_t i : pairing.freeNow()) {
        const ExternalGUIDRuntimeID_e id = database.findGUID(idOf(*pairing.now()[i].record));
        const std::size_t partner =
            id == ExternalGUIDRuntimeID_None ? Pairing::none : known.take(id, [&](std::size_t before) {
                return condition(pairing.before()[before], pairing.now()[i]);
            });
        if (partner != Pairing::none) {
            pairing.pair(partner, i, confidence);
        }
    }
}

bool haveSameClassAndShape(const Body& a, const Body& b) {
    return a.record->className == b.record->className && measureAlike(a, b);
}

/** How much of what objects say of themselves they have in common. */
int commonData(const ObjectRecord& a, const ObjectRecord& b) {
    const bool sameTag = attributeOf(a, "Tag") && attributeOf(a, "Tag") == attributeOf(b, "Tag");
    const bool sameProperties = !a.properties.text.empty() && a.properties.digest == b.properties.digest;
    return (!a.name.empty() && a.name == b.name ? 1 : 0) + (sameTag ? 1 : 0) + (sameProperties ? 1 : 0);
}

/** Where the objects lie that are not in the place of the one whose identity they have. */
class ExchangeSearch {
public:
    explicit ExchangeSearch(Pairing& pairing) : pairing_(pairing), placeOf_(pairing.now().size(), Pairing::none) {
        findPlaces();
    }

    void run() {
        std::vector<bool> seen(placeOf_.size(), false);
        std::vector<bool> hasPrevious(placeOf_.size(), false);
        for (const std::size_t i : odd_) {
            if (next(i) != Pairing::none) {
                hasPrevious[next(i)] = true;
            }
        }
        for (const bool isCircle : {false, true}) { // what is left after the rows that have a beginning
            for (const std::size_t i : odd_) {
                if (!seen[i] && (isCircle || !hasPrevious[i])) {
                    follow(i, seen);
                }
            }
        }
    }

private:
    void findPlaces() {
        constexpr double reach = 0.005;
        constexpr std::size_t mostAtAPlace = 500; // as for what has lost its identity
        constexpr double cell = 0.5;
        Grid grid(cell);
        for (std::size_t i = 0; i < placeOf_.size(); ++i) {
            const std::size_t partner = pairing_.partnerOfNow(i);
            if (partner == Pairing::none) {
                continue;
            }
            const Body& before = pairing_.before()[partner];
            const Body& now = pairing_.now()[i];
            if (before.record->className != now.record->className || !areInPlace(before, now)) {
                odd_.push_back(i);
                grid.add(before.centre, partner);
            }
        }
        grid.sort();
        std::vector<bool> isTaken(pairing_.before().size(), false);
        for (const std::size_t i : odd_) {
            int best = -1;
            std::size_t looks = 0;
            const Body& now = pairing_.now()[i];
            grid.forEachNear(now.centre, reach, [&](std::size_t place) {
                if (isTaken[place] || looks >= mostAtAPlace) {
                    return;
                }
                ++looks;
                const Body& before = pairing_.before()[place];
                const int common = commonData(*before.record, *now.record);
                if (place != pairing_.partnerOfNow(i) && common > best &&
                    before.record->className == now.record->className && areInPlace(before, now)) {
                    best = common;
                    placeOf_[i] = place;
                }
            });
            if (placeOf_[i] != Pairing::none) {
                isTaken[placeOf_[i]] = true;
            }
        }
    }

    /** The object that has the identity of the one in whose place @p now lies. */
    std::size_t next(std::size_t now) const {
        return placeOf_[now] == Pairing::none ? Pairing::none : pairing_.partnerOfBefore(placeOf_[now]);
    }

    /** Goes along a row, or around a circle, and decides for it as a whole. */
    void follow(std::size_t first, std::vector<bool>& seen) {
        std::vector<std::size_t> row;
        std::size_t i = first;
        for (; i != Pairing::none && !seen[i]; i = next(i)) {
            seen[i] = true;
            row.push_back(i);
        }
        const bool isCircle = i == first;
        constexpr std::size_t longEnough = 3; // one that lies where another one was has simply been moved there
        const std::size_t links = isCircle ? row.size() : row.size() - 1;
        if ((!isCircle && links < longEnough) || dataFollowsIdentity(row)) {
            return;
        }
        for (const std::size_t member : row) {
            pairing_.release(member);
        }
        for (const std::size_t member : row) {
            if (placeOf_[member] != Pairing::none) {
                pairing_.pair(placeOf_[member], member, confidence);
            }
        }
    }

    /** Whether the objects took what they say of themselves along: then it was they who changed places. */
    bool dataFollowsIdentity(const std::vector<std::size_t>& row) const {
        int balance = 0;
        for (const std::size_t i : row) {
            if (placeOf_[i] != Pairing::none) {
                const ObjectRecord& now = *pairing_.now()[i].record;
                balance += commonData(*pairing_.before()[pairing_.partnerOfNow(i)].record, now);
                balance -= commonData(*pairing_.before()[placeOf_[i]].record, now);
            }
        }
        return balance > 0;
    }

    static constexpr double confidence = 0.9;

    Pairing& pairing_;
    std::vector<std::size_t> odd_;
    std::vector<std::size_t> placeOf_; ///< the old object whose place a new one takes, by the new one's number
};

} // namespace

void pairIdentities(Pairing& pairing) {
    pairSourceIds(pairing);
    pairByDatabase(
        pairing, [](const ObjectRecord& record) -> const ExternalGUID& { return record.identity; }, 1.0,
        [](const Body& before, const Body& now) {
            const bool oneHasNoSourceId = before.record->sourceId.empty() || now.record->sourceId.empty();
            return oneHasNoSourceId && (!isPlaceholder(*now.record) || haveSameClassAndShape(before, now));
        });
}

void undoExchanges(Pairing& pairing) {
    ExchangeSearch(pairing).run();
}

void pairSpatialHashes(Pairing& pairing) {
    constexpr double confidence = 0.9;
    pairByDatabase(
        pairing, [](const ObjectRecord& record) -> const ExternalGUID& { return record.spatialHash; }, confidence,
        haveSameClassAndShape);
}
