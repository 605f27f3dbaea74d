#include "comparison/Pieces.h"

#include "comparison/Grid.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double tolerance = 0.01;

bool contains(const Box& outer, const Box& inner) {
    for (std::size_t i = 0; i < 3; ++i) {
        if (inner.low[i] < outer.low[i] - tolerance || inner.high[i] > outer.high[i] + tolerance) {
            return false;
        }
    }
    return true;
}

bool overlap(const Box& a, const Box& b) {
    for (std::size_t i = 0; i < 3; ++i) {
        if (a.low[i] >= b.high[i] - tolerance || b.low[i] >= a.high[i] - tolerance) {
            return false;
        }
    }
    return true;
}

Vector3 centreOf(const Box& box) {
    return (box.low + box.high) * 0.5;
}

std::string described(const ObjectRecord& record) {
    return record.name.empty() ? identityText(record) : record.name + " (" + identityText(record) + ')';
}

/** Objects of one kind of change, by place. */
class Pieces {
public:
    Pieces(std::vector<Change>& changes, Status status) : changes_(changes), grid_(cell) {
        for (std::size_t i = 0; i < changes.size(); ++i) {
            if (changes[i].status() == status) {
                grid_.add(centreOf(changes[i].record().box), i);
                all_.push_back(i);
            }
        }
        grid_.sort();
    }

    bool isEmpty() const { return all_.empty(); }

    /** Calls @p action for pieces of a class that lie in one box, and not in the other. */
    template <typename Action>
    void forEachIn(const Box& whole, const Box& rest, const std::string& className, const Action& action) const {
        const auto look = [&](std::size_t i) {
            const ObjectRecord& piece = changes_[i].record();
            if (piece.className == className && contains(whole, piece.box) && !overlap(rest, piece.box)) {
                action(changes_[i]);
            }
        };
        // Of a large box all pieces are looked at sooner than its cells.
        const double radius = length(whole.high - whole.low) / 2.0;
        if (std::pow(2.0 * radius / cell + 1.0, 3.0) > static_cast<double>(all_.size())) {
            std::for_each(all_.begin(), all_.end(), look);
        } else {
            grid_.forEachNear(centreOf(whole), radius, look);
        }
    }

private:
    static constexpr double cell = 4.0;

    std::vector<Change>& changes_;
    Grid grid_;
    std::vector<std::size_t> all_;
};

} // namespace

void notePieces(std::vector<Change>& changes) {
    const Pieces added(changes, Status::Added);
    const Pieces removed(changes, Status::Removed);
    if (added.isEmpty() && removed.isEmpty()) {
        return;
    }
    for (Change& change : changes) {
        if (!change.has(Status::Reshaped)) {
            continue;
        }
        const ObjectRecord& before = *change.before;
        const ObjectRecord& now = *change.now;
        added.forEachIn(before.box, now.box, now.className, [&](Change& piece) {
            piece.notes.push_back("lies in what " + described(now) + " left free: perhaps split from it");
            change.notes.push_back("perhaps split: " + described(*piece.now) + " lies in what it left free");
        });
        removed.forEachIn(now.box, before.box, before.className, [&](Change& piece) {
            piece.notes.push_back("lay in what " + described(now) + " takes up now: perhaps merged with it");
            change.notes.push_back("perhaps merged: " + described(*piece.before) + " lay in what it takes up now");
        });
    }
}
