#include "geometry/PointMerger.h"

#include <algorithm>
#include <limits>

namespace IfcReader {

namespace {

constexpr std::uint32_t none = std::numeric_limits<std::uint32_t>::max();
/** Cells are so much wider than the distance that most points have to be looked for in one of them only. */
constexpr double cellWidth = 16.0;

std::int64_t cellOf(double value, double size) {
    constexpr double farthest = 4e18;
    return static_cast<std::int64_t>(std::clamp(std::floor(value / size), -farthest, farthest));
}

} // namespace

PointMerger::PointMerger(double distance, std::size_t expected) : distance_(distance), cellSize_(distance * cellWidth) {
    std::size_t size = 16;
    while (size < expected) {
        size *= 2;
    }
    slots_.assign(size, none);
}

std::uint64_t PointMerger::hashOf(const Cell& cell) {
    std::uint64_t hash = static_cast<std::uint64_t>(cell.x) * 0x9E3779B97F4A7C15ULL;
    hash = (hash ^ (hash >> 29)) + static_cast<std::uint64_t>(cell.y) * 0xBF58476D1CE4E5B9ULL;
    hash = (hash ^ (hash >> 31)) + static_cast<std::uint64_t>(cell.z) * 0x94D049BB133111EBULL;
    hash *= 0x9E3779B97F4A7C15ULL;
    return hash ^ (hash >> 32);
}

std::uint32_t PointMerger::findIn(const Cell& cell, const Vector& p) const {
    for (std::uint32_t i = slots_[hashOf(cell) & (slots_.size() - 1)]; i != none; i = next_[i]) {
        if (points_[i] == p || length(points_[i] - p) <= distance_) {
            return i;
        }
    }
    return none;
}

void PointMerger::grow() {
    slots_.assign(slots_.size() * 2, none);
    for (std::uint32_t i = 0; i < points_.size(); ++i) {
        const Vector& p = points_[i];
        const Cell cell{cellOf(p.x, cellSize_), cellOf(p.y, cellSize_), cellOf(p.z, cellSize_)};
        std::uint32_t& slot = slots_[hashOf(cell) & (slots_.size() - 1)];
        next_[i] = slot;
        slot = i;
    }
}

std::uint32_t PointMerger::numberOf(const Vector& p) {
    const Cell low{cellOf(p.x - distance_, cellSize_), cellOf(p.y - distance_, cellSize_),
                   cellOf(p.z - distance_, cellSize_)};
    const Cell high{cellOf(p.x + distance_, cellSize_), cellOf(p.y + distance_, cellSize_),
                    cellOf(p.z + distance_, cellSize_)};
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
    if (points_.size() >= slots_.size()) {
        grow();
    }
    const Cell cell{cellOf(p.x, cellSize_), cellOf(p.y, cellSize_), cellOf(p.z, cellSize_)};
    std::uint32_t& slot = slots_[hashOf(cell) & (slots_.size() - 1)];
    const std::uint32_t number = static_cast<std::uint32_t>(points_.size());
    points_.push_back(p);
    next_.push_back(slot);
    slot = number;
    return number;
}

} // namespace IfcReader
