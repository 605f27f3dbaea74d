/**
 * @file Grid.h
 * Finds points near a point.
 */
#pragma once

#include "state/Vector.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

/** Points by the cell of the world that they lie in. */
class Grid {
public:
    /** @param cell  length of a cell's edge; looking much farther than that is slow */
    explicit Grid(double cell) : cell_(cell) {}

    /** Adds a point; it is found after the next sort(). */
    void add(const Vector3& point, std::size_t number) { points_.push_back({keyOf(cellOf(point)), number, point}); }

    void sort() {
        std::sort(points_.begin(), points_.end(), [](const Entry& a, const Entry& b) {
            return std::make_pair(a.key, a.number) < std::make_pair(b.key, b.number);
        });
    }

    /** Calls @p action with the number of each point that is no farther than @p radius. */
    template <typename Action>
    void forEachNear(const Vector3& point, double radius, const Action& action) const {
        const Vector3 reach = {radius, radius, radius};
        const Cell low = cellOf(point - reach);
        const Cell high = cellOf(point + reach);
        for (std::int64_t x = low[0]; x <= high[0]; ++x) {
            for (std::int64_t y = low[1]; y <= high[1]; ++y) {
                for (std::int64_t z = low[2]; z <= high[2]; ++z) {
                    forEachIn({x, y, z}, point, radius, action);
                }
            }
        }
    }

private:
    using Cell = std::array<std::int64_t, 3>;

    struct Entry {
        std::uint64_t key;
        std::size_t number;
        Vector3 point;
    };

    Cell cellOf(const Vector3& point) const {
        return {std::llround(std::floor(point[0] / cell_)), std::llround(std::floor(point[1] / cell_)),
                std::llround(std::floor(point[2] / cell_))};
    }

    /** Cells that are very far from each other may share a key. */
    static std::uint64_t keyOf(const Cell& cell) {
        constexpr std::uint64_t mask = (1u << 21u) - 1u;
        return (static_cast<std::uint64_t>(cell[0]) & mask) << 42u |
               (static_cast<std::uint64_t>(cell[1]) & mask) << 21u | (static_cast<std::uint64_t>(cell[2]) & mask);
    }

    template <typename Action>
    void forEachIn(const Cell& cell, const Vector3& point, double radius, const Action& action) const {
        const std::uint64_t key = keyOf(cell);
        auto entry = std::lower_bound(points_.begin(), points_.end(), key,
                                      [](const Entry& a, std::uint64_t wanted) { return a.key < wanted; });
        for (; entry != points_.end() && entry->key == key; ++entry) {
            if (length(entry->point - point) <= radius) {
                action(entry->number);
            }
        }
    }

    double cell_;
    std::vector<Entry> points_;
};
