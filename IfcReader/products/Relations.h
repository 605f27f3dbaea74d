/**
 * @file Relations.h
 * Which instances of a file belong to which.
 */
#pragma once

#include "products/Links.h"
#include "step/StepFile.h"

namespace IfcReader {

/** The relations between products, and from products to what describes them; all numbers of instances. */
struct Relations {
    /** Reads them in one pass over the index. */
    explicit Relations(const StepFile& file);

    Links contained; ///< from a place of the spatial structure to what it contains
    Links openings;  ///< from an element to its openings and projections
    Links parts;     ///< from a whole to its parts, aggregated or nested
    Links sets;      ///< from an object to its property sets
    Links overrides; ///< from an object to the relations that replace single properties of a set
    Links types;     ///< from an object to its type objects
    Links materials; ///< from an object or type to its material
    Links looks;     ///< from an item of a representation to the styled item
    Links layers;    ///< from a representation or an item to its presentation layer
    Links samples;   ///< from a material to the representation that shows how it looks
};

} // namespace IfcReader
