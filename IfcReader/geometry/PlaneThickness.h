/**
 * @file PlaneThickness.h
 * How thick planes are taken to be when bodies are cut.
 */
#pragma once

#include "geometry/Body.h"

#include <vector>

namespace IfcReader {

/**
 * Thicknesses in metres, the most promising first. What is cut in floating point goes wrong where corners lie about as
 * far from a plane as it is thick: neither clearly on it nor clearly beside it. So it is counted how far corners are
 * from planes, and those thicknesses come first that few corners are near to. Where it makes no difference that is a
 * micrometre, then ten.
 */
std::vector<double> thicknessesFor(const Body& first, const Body& second);

} // namespace IfcReader
