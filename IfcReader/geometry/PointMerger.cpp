#include "geometry/PointMerger.h"

#include <algorithm>
#include <limits>

namespace IfcReader {

namespace {

constexpr std::uint32_t none = std::numeric_limits<std::uint32_t>::max();
/** Cells are so much wider than the distance that most points have to be looked for in one of them only. */
constexpr double cellWidth = 16.0;

} // namespace

PointMerger::PointMerger(double distance, std::size_t expected)
    : distance_(distance), cellsPerMetre_(1.0 / (distance * cellWidth)) {
    std::size_t size = 16;
    while (size < expected) {
        size *= 2;
    }
    slots_.assign(size, none);
}

std::int64_t PointMerger::cellOf(double value) const {
    constexpr double highest = 4e18;
    const double scaled = value * cellsPerMetre_;
    const double exact = scaled > -highest ? std::min(scaled, highest) : -highest; // a NaN goes there as well
    const auto truncated = static_cast<std::int64_t>(exact);
    return static_cast<double>(truncated) > exact ? truncated - 1 : truncated;
}

std::size_t PointMerger::slotOf(const Cell& cell) const {
    std::uint64_t hash = static_cast<std::uint64_t>(cell.x) * 0x9E3779B97F4A7C15ULL;
    hash = (hash ^ (hash >> 29)) + static_cast<std::uint64_t>(cell.y) * 0xBF58476D1CE4E5B9ULL;
    hash = (hash ^ (hash >> 31)) + static_cast<std::uint64_t>(cell.z) * 0x94D049BB133111EBULL;
    hash *= 0x9E3779B97F4A7C15ULL;
    return (hash ^ (hash >> 32)) & (slots_.size() - 1);
}

std::uint32_t PointMerger::findIn(const Cell& cell, const Vector& p) const {
    for (std::uint32_t i = slots_[slotOf(cell)]; i != none; i = next_[i]) {
        if (length(points_[i] - p) <= distance_) {
            return i;
        }
    }
    return none;
}

std::uint32_t PointMerger::findNear(const Vector& p) const {
    const Vector reach{distance_, distance_, distance_};
    const Cell low = cellOf(p - reach);
    const Cell high = cellOf(p + reach);
    for (std::int64_t x = low.x; x <= high.x; ++x) {
        for (std::int64_t y = low.y; y <= high.y; ++y) {
            for (std::int64_t z = low.z; z <= high.z; ++z) {
                const std::uint32_t found = findIn({x, y, z}, p);
                if (found != none) {
                    return found;
                }
            }
        }
    }
    return none;
}

void PointMerger::grow() {
    slots_.assign(slots_.size() * 2, none);
    for (std::uint32_t i = 0; i < points_.size(); ++i) {
        std::uint32_t& slot = slots_[slotOf(cellOf(points_[i]))];
        next_[i] = slot;
        slot = i;
    }
}

std::uint32_t PointMerger::add(const Cell& cell, const Vector& p) {
    if (points_.size() >= slots_.size()) {
        grow();
    }
    std::uint32_t& slot = slots_[slotOf(cell)];
    const std::uint32_t number = static_cast<std::uint32_t>(points_.size());
    points_.push_back(p);
    next_.push_back(slot);
    slot = number;
    return number;
}

std::uint32_t PointMerger::numberOf(const Vector& p) {
    // Most points come several times, and exactly: no other point is nearer then.
    const Cell cell = cellOf(p);
    for (std::uint32_t i = slots_[slotOf(cell)]; i != none; i = next_[i]) {
        if (points_[i] == p) {
            return i;
        }
    }
    const std::uint32_t near = findNear(p);
    return near != none ? near : add(cell, p);
}

} // namespace IfcReader
