/**
 * @file Sweeps.h
 * Bodies that areas make when they are moved, and pyramids.
 */
#pragma once

#include "geometry/BentPath.h"
#include "geometry/Body.h"
#include "geometry/Work.h"

namespace IfcReader {

/** What @p areas pass through when they are shifted along @p along. */
Body prism(const std::vector<Face>& areas, const Vector& along);

/** A surface: what an open path passes through when it is shifted along @p along. */
Body strip(const Loop& path, const Vector& along);

/** A base in the plane, counter-clockwise seen from the tip, joined to @p tip. */
Body pyramid(const Loop& base, const Vector& tip);

/**
 * Joins areas that follow each other and have the same numbers of corners.
 * @param closed the last ones are joined to the first ones; else both ends are faces
 */
Body loft(const std::vector<std::vector<Face>>& sections, bool closed);

/** What @p areas pass through when they turn by @p angle around an axis of length 1. @throw LimitError */
Body revolution(const std::vector<Face>& areas, const Vector& origin, const Vector& axis, double angle, Work& work);

/**
 * Sections along a path: each goes from the place of the one before it, along the path, up to the plane that halves
 * the bend.
 * @param areas around the origin in the plane z = 0, which is put at a right angle to the path
 * @throw LimitError
 */
Body alongPath(const std::vector<Face>& areas, const BentPath& path, Work& work);

} // namespace IfcReader
