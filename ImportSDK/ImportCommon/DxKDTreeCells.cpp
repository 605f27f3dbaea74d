#include "DxKDTreeCells.h"

#include <algorithm>
#include <cstring>

namespace ImportCommon {

namespace {

constexpr unsigned int axes = CDxKDTreeCells::axes;

// The centre, which comes first, tells the objects of most models apart; what comes then has larger cells, so that few
// vectors are near a side of one.
constexpr double cellsPerUnit[axes] = {4, 4, 4, 0.5, 0.5, 0.5, 0.5, 0.5, 0.5, 0.5, 0.5};

// Of equal components few are near a side at once, and none of the first that is a multiple of a quarter.
constexpr double shifts[axes] = {0,        1.0 / 11, 2.0 / 11, 3.0 / 11, 4.0 / 11, 5.0 / 11,
                                 6.0 / 11, 7.0 / 11, 8.0 / 11, 9.0 / 11, 10.0 / 11};

// Odd, and otherwise of no meaning.
constexpr std::uint32_t factors[axes] = {0x9E3779B9, 0x85EBCA6B, 0xC2B2AE35, 0x27D4EB2F, 0x165667B1, 0xD3A2646D,
                                         0xFD7046C5, 0xB55A4F09, 0x8DA6B343, 0xD8163841, 0xCB1AB31F};

constexpr double noFraction = 6755399441055744; // 1.5 times 2 to the 52nd

/**
 * The share of a component in the number of its cell. The sum is so large that, unless the component is too, it has no
 * fraction; and it never decreases from one component to a larger one, whatever is rounded on the way.
 */
std::uint64_t shareOf(double component, unsigned int axis) {
    const double sum = component * cellsPerUnit[axis] + shifts[axis] + noFraction;
    std::uint64_t bits = 0;
    std::memcpy(&bits, &sum, sizeof bits);
    return (bits & 0xFFFFFFFF) * factors[axis];
}

} // namespace

CDxKDTreeCells::Cell_t CDxKDTreeCells::cellOf(const double* vector, unsigned int dimension) {
    Cell_t cell = 0;
    for (unsigned int i = 0; i < std::min(dimension, axes); ++i) {
        cell += shareOf(vector[i], i);
    }
    return cell;
}

CDxKDTreeCells::Neighbours::Neighbours(const double* vector, unsigned int dimension, Cell_t own) : own_(own) {
    for (unsigned int i = 0; i < std::min(dimension, axes); ++i) {
        // At least one of the two is the vector's own cell.
        const std::uint64_t share = shareOf(vector[i], i);
        const std::uint64_t step = shareOf(vector[i] - reach, i) - share + (shareOf(vector[i] + reach, i) - share);
        steps_[sides_] = step;
        sides_ += step != 0 ? 1 : 0;
    }
}

bool CDxKDTreeCells::add(Cell_t cell, unsigned int id) {
    if (2 * (used_ + 1) > capacity_ && !grow()) {
        return false;
    }
    const std::uint32_t tag = tagOf(cell);
    unsigned int count = 0;
    std::size_t i = tag & mask();
    while (isUsed(i)) {
        if (slots_[i].tag == tag && ++count == mostPerCell) {
            return true;
        }
        i = (i + 1) & mask();
    }
    slots_[i] = {tag, id + 1};
    ++used_;
    return true;
}

bool CDxKDTreeCells::grow() {
    const std::size_t capacity = std::max<std::size_t>(2 * capacity_, 1024);
    std::unique_ptr<Slot[], Free> slots(static_cast<Slot*>(std::calloc(capacity, sizeof(Slot))));
    if (slots == nullptr) {
        return false;
    }
    for (std::size_t old = 0; old < capacity_; ++old) {
        if (isUsed(old)) {
            std::size_t i = slots_[old].tag & (capacity - 1);
            while (slots[i].idPlusOne != 0) {
                i = (i + 1) & (capacity - 1);
            }
            slots[i] = slots_[old];
        }
    }
    slots_ = std::move(slots);
    capacity_ = capacity;
    return true;
}

} // namespace ImportCommon
