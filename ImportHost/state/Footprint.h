/**
 * @file Footprint.h
 * What an object covers, seen from above.
 */
#pragma once

#include <string>
#include <string_view>
#include <vector>

struct Point {
    double x;
    double y;
};

/** Polygons, counter-clockwise, that may overlap; the footprint is what they cover together. */
using Footprint = std::vector<std::vector<Point>>;

/**
 * Reads the footprints of @p objectCount objects from a polygons stream. Throws std::runtime_error with the line's
 * number and what is wrong with it.
 */
std::vector<Footprint> readFootprints(std::string_view polygonsStream, std::size_t objectCount);

/** Appends one line of text, and back; coordinates are kept to the millimetre. fromText throws std::runtime_error. */
void appendFootprint(std::string& text, const Footprint& footprint);
Footprint footprintFromText(std::string_view text);
