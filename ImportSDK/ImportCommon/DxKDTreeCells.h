/**
 * @file DxKDTreeCells.h
 * Tells which nodes of a k-d tree a vector may match, without a descent.
 */
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>

namespace ImportCommon {

/**
 * Space in cells, a quarter of a unit wide where it matters most, and a hash table of the nodes in them.
 *
 * What a vector may match is in its own cell or, since the tolerance is small, in a neighbour that it is near to. Eleven
 * components count, so that equal objects in different places and different objects in the same place are told apart. A
 * cell takes so many nodes; then it is full and says so, since a descent is faster than looking at all of them.
 */
class CDxKDTreeCells {
public:
    /** How far a match may be away in each component; a little above the tolerance, for what rounding does. */
    static constexpr double reach = 0.0102;

    static constexpr unsigned int axes = 11; // further components don't count

    /** The sum of a number for each axis. Different cells may have the same. */
    using Cell_t = std::uint64_t;

    static Cell_t cellOf(const double* vector, unsigned int dimension);

    /** The other cells where something within reach of a vector may be. */
    class Neighbours {
    public:
        Neighbours(const double* vector, unsigned int dimension, Cell_t own);

        unsigned int count() const { return (1U << sides_) - 1; }
        Cell_t operator[](unsigned int index) const {
            Cell_t cell = own_;
            for (unsigned int i = 0; i < sides_; ++i) {
                cell += ((index + 1) >> i & 1) != 0 ? steps_[i] : 0;
            }
            return cell;
        }

    private:
        Cell_t own_;
        std::array<Cell_t, axes> steps_; // over each side that the vector is near to
        unsigned int sides_ = 0;
    };

    /**
     * Calls @p visit with the ids of a cell, and maybe others, until it returns true.
     * @return false when the cell is full: there may be more nodes in it
     */
    template <typename Visit>
    bool forEach(Cell_t cell, Visit visit) const {
        const std::uint32_t tag = tagOf(cell);
        unsigned int count = 0;
        for (std::size_t i = tag & mask(); isUsed(i); i = (i + 1) & mask()) {
            if (slots_[i].tag == tag) {
                if (visit(slots_[i].idPlusOne - 1)) {
                    break;
                }
                if (++count == mostPerCell) {
                    return false;
                }
            }
        }
        return true;
    }

    /** Adds a node to its cell if that isn't full. False without memory: nothing has changed then. */
    bool add(Cell_t cell, unsigned int id);

private:
    static constexpr unsigned int mostPerCell = 64;

    struct Slot {
        std::uint32_t tag;
        std::uint32_t idPlusOne; // 0 in a free one
    };
    struct Free {
        void operator()(Slot* slots) const { std::free(slots); }
    };

    static std::uint32_t tagOf(Cell_t cell) {
        return static_cast<std::uint32_t>(((cell ^ cell >> 32) * 0x9E3779B97F4A7C15) >> 32);
    }

    std::size_t mask() const { return capacity_ - 1; }
    bool isUsed(std::size_t i) const { return capacity_ > 0 && slots_[i].idPlusOne != 0; }
    bool grow();

    std::unique_ptr<Slot[], Free> slots_; // no more than half of them are used
    std::size_t capacity_ = 0;            // a power of two
    std::size_t used_ = 0;
};

} // namespace ImportCommon
