/**
 * @file OpeningTable.h
 * Which openings are cut from which products.
 */
#pragma once

#include "step/StepFile.h"

#include <cstdint>
#include <unordered_map>
#include <vector>

namespace IfcReader {

class OpeningTable {
public:
    explicit OpeningTable(const StepFile& file);

    /** The openings of a product, then those of the wholes that it is a part of. */
    std::vector<std::uint64_t> openingsOf(std::uint64_t product) const;

private:
    std::unordered_map<std::uint64_t, std::vector<std::uint64_t>> openings_;
    std::unordered_map<std::uint64_t, std::uint64_t> wholes_; ///< of parts
};

} // namespace IfcReader
