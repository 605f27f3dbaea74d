/**
 * @file Shape.h
 * What an object's surface measures: enough to tell whether two objects have the same shape, and how one would have to
 * be moved and turned to become the other.
 */
#pragma once

#include "state/Box.h"

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

/**
 * Integrals over the surface, which depend neither on how faces are cut into polygons nor on where their loops begin.
 * Moments are those about the centroid, divided by the area, in metres to the power of their degree; their order is
 * that of exponents of x falling, then those of y: xx xy xz yy yz zz.
 */
struct Shape {
    static constexpr std::size_t secondCount = 6;
    static constexpr std::size_t thirdCount = 10;
    static constexpr std::size_t fourthCount = 15;

    double area = 0.0; ///< square metres; 0 for an object without a surface, whose other numbers mean nothing
    Vector3 centroid{};
    std::array<double, secondCount> second{};
    std::array<double, thirdCount> third{};
    std::array<double, fourthCount> fourth{};
};

/** Appends numbers with blanks between them; empty for an object without a surface. fromText throws std::runtime_error. */
void appendShape(std::string& text, const Shape& shape);
Shape shapeFromText(std::string_view text);
