/**
 * @file ShapeBlock.h
 * The shapes of many objects as few bytes.
 */
#pragma once

#include "state/Box.h"

#include <PluginKit/Solids.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

/**
 * Shapes as the page draws them: triangles and the edges at which surfaces meet, of points that lie on a grid of 65536
 * steps along each side of a box. A shape is one piece, or several when it has more points than 16 bits can count.
 *
 * bytes(), all numbers with the low byte first:
 *
 *     u32  "IHS1"
 *     u32  number of pieces
 *     of each piece, 64 bytes:
 *         f64 low[3]        corner of its box, in metres
 *         f32 step[3]       length of a step
 *         u32 object        index in the report
 *         u32 role          0 as it is now, 1 as it was before
 *         u32 points, triangles, edges
 *         u32 0, 0
 *     of each piece: u16 x, y, z of each point; three u16 of each triangle; two u16 of each edge
 */
class ShapeBlock {
public:
    enum class Role : std::uint32_t { Now = 0, Before = 1 };

    /** In place of an index: an object that is not drawn. */
    static constexpr std::size_t none = static_cast<std::size_t>(-1);

    /** Takes a point to its place in the picture; may be empty. */
    using Mapping = std::function<Vector3(const Vector3&)>;

    /**
     * Adds the shapes of a solids stream. Throws std::runtime_error when the stream is damaged; the shapes in front of
     * the damage are kept.
     * @param objects  for each object of the stream, its index in the report or none
     */
    void add(std::string_view solidsStream, const std::vector<std::size_t>& objects, Role role,
             const Mapping& mapping = {});

    /** A box in place of a shape that is not known. */
    void addBox(const Box& box, std::size_t object, Role role, const Mapping& mapping = {});

    /** Whether an object has something to draw in a role. */
    bool has(std::size_t object, Role role) const;

    std::string bytes() const;

private:
    class Piece;

    void addSurfaces(std::vector<PluginKit::SolidSurface>& surfaces, std::size_t object, Role role,
                     const Mapping& mapping);
    void append(const Piece& piece, std::size_t object, Role role);

    std::uint32_t count_ = 0;
    std::array<std::vector<bool>, 2> known_; ///< by role, whether an object has a piece
    std::string pieces_;
    std::string data_;
};
