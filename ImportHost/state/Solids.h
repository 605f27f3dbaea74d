/**
 * @file Solids.h
 * The solids stream: the surfaces of the objects as a plug-in hands them over.
 */
#pragma once

#include "state/Box.h"

#include <cstdint>
#include <functional>
#include <string_view>
#include <vector>

/** Polygons over common vertices, in the world. */
struct Surface {
    std::uint32_t material = 0;
    std::vector<Vector3> vertices;
    std::vector<std::vector<std::uint32_t>> polygons; ///< numbers of vertices, which all exist
};

/**
 * Reads a stream that holds the solids of @p objectCount objects, and hands all surfaces of an object to @p take, with
 * its number from 0, in the order of the objects; those without a solid are left out. Throws std::runtime_error with
 * the solid's number and what is wrong with it; coordinates are finite and not too far away.
 */
void readSolids(std::string_view solidsStream, std::size_t objectCount,
                const std::function<void(std::size_t object, const std::vector<Surface>& surfaces)>& take);
