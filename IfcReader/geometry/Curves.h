/**
 * @file Curves.h
 * Curves as chains of points.
 */
#pragma once

#include "geometry/Body.h"
#include "geometry/Item.h"

#include <optional>

namespace IfcReader {

/**
 * Lines, polylines, circles, ellipses, Bezier and composite curves, and trimmed and offset ones of these. Each call
 * throws ItemError for what can't be drawn.
 */
class Curves {
public:
    /** All points in the curve's own direction, both ends included: a closed curve ends where it began. */
    static Loop path(const Item& curve);

    /**
     * The part of a curve between two parameters, counted as the file does: a polyline by its corners, a Bezier curve
     * by its pieces, a trimmed curve as the one that it is part of, a composite one by all of its segments. An end that
     * is not given is the curve's own; from 0 to 1 a chain of segments is taken whole.
     */
    static Loop path(const Item& curve, std::optional<double> from, std::optional<double> to);

    /** The points of a closed curve, the first one not repeated; at least three. */
    static Loop loop(const Item& curve);

    /** Points of a whole ellipse around the origin, counter-clockwise from the x axis. */
    static Loop ellipse(double xRadius, double yRadius);

    /** Points of an ellipse's arc around the origin, both ends included; a whole one ends where it began. */
    static Loop arc(double from, double to, double xRadius, double yRadius);

    /** A path in the plane moved to its left, its corners mitred; a closed one stays closed. */
    static Loop offset(const Loop& path, double distance);
};

/** Whether a path ends where it began. */
bool isClosed(const Loop& path);

} // namespace IfcReader
