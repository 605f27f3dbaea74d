/**
 * @file Numbers.h
 * Numbers of streams and state that have to be those of something in the world.
 */
#pragma once

#include "state/Box.h"

#include <string>
#include <string_view>

/** Nothing lies farther from the origin, in metres. */
constexpr double farthest = 1e9;

/** A number that is finite and may be a measure of something that near. Throws std::runtime_error. */
double toMeasure(std::string_view text);

/** A coordinate, in metres. Throws std::runtime_error, also when it lies too far away. */
double toCoordinate(std::string_view text);

/** Three coordinates with blanks between them, and back. toVector throws std::runtime_error. */
Vector3 toVector(std::string_view text);
void appendVector(std::string& text, const Vector3& vector);
