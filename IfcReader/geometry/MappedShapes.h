/**
 * @file MappedShapes.h
 * The bodies of shapes that many items stand for, made once.
 */
#pragma once

#include "geometry/Body.h"

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>
#include <vector>

namespace IfcReader {

/** What a mapped representation became, and what it took. */
struct MappedShape {
    std::vector<Body> bodies;
    std::vector<std::string> doubts;
    std::size_t work = 0;
    std::size_t levels = 0;
};

/** Keeps shapes for those that come later. Any number of threads may use it. */
class MappedShapes {
public:
    using Pointer = std::shared_ptr<const MappedShape>;

    /** @param mostPoints of all shapes that are kept; the others are made again each time */
    explicit MappedShapes(std::size_t mostPoints) : room_(mostPoints) {}

    /** The shape of a representation map; null when it isn't kept. */
    Pointer find(std::uint64_t map) const;
    void keep(std::uint64_t map, const Pointer& shape);

private:
    mutable std::mutex mutex_;
    std::unordered_map<std::uint64_t, Pointer> shapes_;
    std::size_t room_;
};

} // namespace IfcReader
