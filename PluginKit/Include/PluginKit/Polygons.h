/**
 * @file Polygons.h
 * Flat polygons in space as triangles.
 */
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace PluginKit {

/**
 * Twice the area of a polygon as a vector that stands on its front. Coordinates are taken relative to the first corner,
 * so nothing is lost far from the origin. Zero for fewer than three corners.
 * @param corners  indices of @p vertices, counter-clockwise seen from the front
 * @param count    their number
 */
std::array<double, 3> areaVector(const std::vector<std::array<double, 3>>& vertices, const std::uint32_t* corners,
                                 std::size_t count);

/**
 * Appends the triangles of a polygon, convex or not, three indices of @p vertices each, turned as the polygon is. A
 * polygon that touches itself, as one does that leads to its hole and back, is cut up all the same; of one that crosses
 * itself or has no area the triangles cover something like it. Takes bounded time whatever the polygon.
 */
void triangulate(const std::vector<std::array<double, 3>>& vertices, const std::uint32_t* corners, std::size_t count,
                 std::vector<std::uint32_t>& triangles);

/**
 * One polygon of a face with holes: from the outside a way leads to each hole, around it and back, and meets no other
 * edge where there is such a way. Polygons of streams have no holes; this is how a face with some becomes one.
 * @param outer  indices of @p vertices, counter-clockwise seen from the front
 * @param holes  each turned either way; those of fewer than three corners are left out
 */
std::vector<std::uint32_t> joinHoles(const std::vector<std::array<double, 3>>& vertices,
                                     const std::vector<std::uint32_t>& outer,
                                     const std::vector<std::vector<std::uint32_t>>& holes);

} // namespace PluginKit
