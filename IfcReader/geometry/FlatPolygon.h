/**
 * @file FlatPolygon.h
 * Convex polygons with their planes, and how a plane that has a thickness parts them.
 */
#pragma once

#include "geometry/Body.h"

namespace IfcReader {

/** The plane through a loop, in the middle between its corners. @param area  areaVector(loop) */
Plane planeOf(const Loop& loop, const Vector& area);
inline Plane planeOf(const Loop& loop) {
    return planeOf(loop, areaVector(loop));
}

/** Where something lies: bits, so that what lies on both sides has both. */
enum Side : unsigned { onPlane = 0, inFront = 1, behind = 2, across = 3 };

struct FlatPolygon {
    Loop points;
    Plane plane;
};

Side sideOf(const FlatPolygon& polygon, const Plane& plane, double thickness);

/** Splits a polygon that lies across a plane. */
void split(const FlatPolygon& polygon, const Plane& plane, double thickness, FlatPolygon& front, FlatPolygon& back);

/** A face as flat convex polygons: one that is not flat within @p thickness, or not convex, in triangles. */
std::vector<FlatPolygon> flatPolygonsOf(const Face& face, double thickness);

/** Whether a loop around @p normal is convex; straight corners are allowed. */
bool isConvex(const Loop& loop, const Vector& normal);

Box boxOf(const FlatPolygon& polygon);
Box boxOf(const std::vector<FlatPolygon>& polygons);

} // namespace IfcReader
