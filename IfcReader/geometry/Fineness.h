/**
 * @file Fineness.h
 * How finely curves are drawn. It depends on the curve alone, so that the same shape gives the same points anywhere.
 */
#pragma once

namespace IfcReader {

constexpr double pi = 3.14159265358979323846;

/**
 * Number of chords for an arc of @p sweep radians: 64 for a whole circle, which loses 0.16 % of its area, more where
 * a chord would lie half a millimetre off, and in arcs of less than half a circle fewer where one would be shorter
 * than a millimetre. At least 1.
 */
int chordsOf(double sweep, double radius);

} // namespace IfcReader
