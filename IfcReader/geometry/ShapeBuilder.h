/**
 * @file ShapeBuilder.h
 * Builds the shapes of a file's products.
 */
#pragma once

#include "Units.h"
#include "geometry/MappedShapes.h"
#include "geometry/OpeningTable.h"
#include "geometry/ProductPlacements.h"
#include "step/StepFile.h"

#include <IfcReader/Shape.h>

#include <atomic>
#include <cstdint>

namespace IfcReader {

/**
 * Builds one product at a time; any number of threads may do so at once, and the shapes are the same however many
 * there are. A shape is built in the product's own coordinates and turned into the world's last: it gives the same
 * points wherever it stands.
 */
class ShapeBuilder {
public:
    /** Goes through the file once. @param file, units outlive this. */
    ShapeBuilder(const StepFile& file, const Units& units);

    /**
     * The shape of an IfcProduct, its openings cut: those of its own and those of the wholes that it is a part of.
     * Whatever the file says, what can't be built is told in the shape's doubts; a product of which nothing can be
     * built gets its bounding box as an open part, where the file gives one; one that stands farther away than anything
     * may is built around the world's origin. Throws std::bad_alloc only.
     */
    Shape build(std::uint64_t product) const;

    /** Whether a placement is beyond the reach of the world's origin; false for one that is wrong. */
    bool isFarAway(std::uint64_t placement) const { return placements_.isFarAway(placement); }

    /** What all shapes so far have taken: about the number of points that were read, made or looked at. */
    std::uint64_t work() const { return work_; }

private:
    void build(std::uint64_t product, Work& work, Shape& shape) const;

    const StepFile& file_;
    const Units& units_;
    ProductPlacements placements_;
    OpeningTable openings_;
    mutable MappedShapes mapped_;
    mutable std::atomic<std::uint64_t> work_{0};
};

} // namespace IfcReader
