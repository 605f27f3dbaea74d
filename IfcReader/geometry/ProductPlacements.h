/**
 * @file ProductPlacements.h
 * Where products stand: placements within placements, and on grids.
 */
#pragma once

#include "Units.h"
#include "geometry/Vector.h"
#include "geometry/Work.h"
#include "step/StepFile.h"

#include <cstdint>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace IfcReader {

class ProductPlacements {
public:
    /** @param file, units outlive this. */
    ProductPlacements(const StepFile& file, const Units& units);

    /** A placement in the world. @throw ItemError when something in its chain is wrong */
    const Affine& world(std::uint64_t id) const;

    /** Whether a placement is beyond the reach of the world's origin; false for one that is wrong. */
    bool isFarAway(std::uint64_t id) const;

    /**
     * From the coordinates of one placement to those of another by way of the nearest that both stand in: nothing is
     * lost however far away from the world's origin that is. 0 stands for the world.
     * @throw ItemError, LimitError
     */
    Affine between(std::uint64_t to, std::uint64_t from, Work& work) const;

private:
    struct Step {
        std::uint64_t parent = 0; ///< 0: the world
        Affine own;
    };

    Step stepOf(std::uint64_t id, Work& work) const;
    void readGrids();
    void place(std::uint64_t id, Work& work);
    std::vector<std::uint64_t> chainOf(std::uint64_t id, Work& work) const;

    const StepFile& file_;
    const Units& units_;
    std::unordered_map<std::uint64_t, std::uint64_t> gridOfAxis_; ///< the placement of the grid
    std::unordered_map<std::uint64_t, Affine> worlds_;
    std::unordered_set<std::uint64_t> wrong_; ///< those that have no place
};

} // namespace IfcReader
