/**
 * @file Solids.h
 * Shapes as surfaces, and as the bytes of the solids stream.
 */
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace PluginKit {

/** Polygons of one material over common vertices. */
struct SolidSurface {
    std::uint32_t material = 0;
    std::vector<std::array<double, 3>> vertices; ///< in the world, in metres
    std::vector<std::uint32_t> sizes;            ///< of each polygon, the number of its corners
    std::vector<std::uint32_t> corners;          ///< of all polygons, one after the other, as indices of vertices

    /** Adds a polygon, counter-clockwise seen from outside; one without corners is left out. */
    void addPolygon(const std::vector<std::uint32_t>& polygon);

    /** What is wrong - a coordinate that is not finite, a corner that is no vertex - or "". */
    std::string fault() const;
};

/**
 * The bytes of a boundary representation, as FORMATS.md describes them. Throws std::length_error for 2^32 parts or more.
 */
std::string solidBytes(const std::vector<SolidSurface>& surfaces);

/** Reads the bytes of a boundary representation. Throws std::runtime_error with what is wrong with them. */
std::vector<SolidSurface> surfacesOf(std::string_view bytes);

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

} // namespace PluginKit
