/**
 * @file Triangulation.h
 * Cuts faces into triangles.
 */
#pragma once

#include "geometry/Body.h"

#include <array>
#include <cstdint>
#include <vector>

namespace IfcReader {

/**
 * The triangles of a face that looks along @p normal. Corners are numbered through all loops, the outer one first.
 * The areas add up to the face's, also where it crosses itself; corners in the middle of a straight edge may be left
 * out. Takes about n log n for n corners, and n for each hole.
 */
std::vector<std::array<std::uint32_t, 3>> triangulate(const Face& face, const Vector& normal);

/** The same as loops. */
std::vector<Loop> trianglesOf(const Face& face, const Vector& normal);

} // namespace IfcReader
