/**
 * @file OutputBudget.h
 * Bounds what comes out of a file in which products share much.
 */
#pragma once

#include "IfcReader/IfcError.h"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <string>

namespace IfcReader {

/**
 * Texts and values that many products share are written out for each of them. Real models stay far below the limit;
 * one that is made to fill disks is refused. The sum doesn't depend on the order in which threads spend.
 */
class OutputBudget {
public:
    explicit OutputBudget(std::size_t fileSize) : limit_(std::max(smallest, sharing * fileSize)) {}

    /** Throws IfcError when the limit is passed. */
    void spend(std::size_t bytes) {
        if (spent_.fetch_add(bytes, std::memory_order_relaxed) + bytes > limit_) {
            throw IfcError(
                "the model is refused: its products share so much that writing it for each of them takes more than " +
                std::to_string(limit_ >> 20) + " MB");
        }
    }

private:
    static constexpr std::size_t smallest = std::size_t{128} << 20;
    static constexpr std::size_t sharing = 32; ///< times the size of the file

    const std::size_t limit_;
    std::atomic<std::size_t> spent_{0};
};

} // namespace IfcReader
