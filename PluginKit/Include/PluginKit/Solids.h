/**
 * @file Solids.h
 * The shapes that a plug-in wrote to the solids stream.
 */
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

/** Polygons of one material over common vertices. */
struct SolidSurface {
    std::uint32_t material = 0;
    std::vector<std::array<double, 3>> vertices; ///< in the world, in metres
    std::vector<std::uint32_t> sizes;            ///< of each polygon, the number of its corners
    std::vector<std::uint32_t> corners;          ///< of all polygons, one after the other, as indices of vertices
};

/** A boundary representation. */
struct Solid {
    std::size_t object = 0; ///< whose shape, or part of a shape, it is, counted from 1
    std::vector<SolidSurface> surfaces;
};

/**
 * Reads the solids of a stream one after the other, so that those of a large model need not be in memory together.
 *
 *     SolidsReader reader(stream);
 *     for (Solid solid; reader.next(solid);) { ... }
 */
class SolidsReader {
public:
    /** @param stream  all of the stream; must outlive the reader */
    explicit SolidsReader(std::string_view stream) : rest_(stream) {}

    /**
     * Reads the next boundary representation; solids of other types are passed over. Every corner is the index of a
     * vertex, and every coordinate is finite. Throws std::runtime_error with what is wrong with the stream.
     * @return false behind the last one
     */
    bool next(Solid& solid);

private:
    std::string_view rest_;
    std::size_t count_ = 0; ///< solids read so far, for messages
};
