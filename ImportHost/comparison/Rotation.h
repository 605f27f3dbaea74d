/**
 * @file Rotation.h
 * Turns about axes through the origin, and rigid motions.
 */
#pragma once

#include "comparison/Eigenvectors.h"
#include "state/Vector.h"

#include <utility>
#include <vector>

/** Turns a vector: its rows are multiplied with it. */
using Rotation = SquareMatrix<3>;

constexpr Rotation noRotation = {{{1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}}};

Vector3 rotated(const Vector3& vector, const Rotation& rotation);

/** First @p second, then @p first. */
Rotation product(const Rotation& first, const Rotation& second);

Rotation transposed(const Rotation& rotation);

/** Counter-clockwise about an axis of length 1 that points at the eye; the angle is in radians. */
Rotation rotationAbout(const Vector3& axis, double angle);

/** The shortest turn that takes one vector of length 1 to another. */
Rotation rotationBetween(const Vector3& from, const Vector3& to);

/** The angle in radians, from 0 to pi. */
double angleOf(const Rotation& rotation);

/** The axis that goes with the angle, of length 1; the z axis where there is no turn. */
Vector3 axisOf(const Rotation& rotation);

/** A turn about an axis through the origin, then a shift. */
struct RigidMotion {
    Rotation rotation = noRotation;
    Vector3 shift{};

    Vector3 apply(const Vector3& point) const { return rotated(point, rotation) + shift; }
};

/** Two points of which one became the other. */
using PointPair = std::pair<Vector3, Vector3>;

/** The motions that take first points nearest to their second ones: as they are, only shifted, or turned about z. */
RigidMotion fittedMotion(const std::vector<PointPair>& pairs);
RigidMotion fittedShift(const std::vector<PointPair>& pairs);
RigidMotion fittedTurnAboutZ(const std::vector<PointPair>& pairs);
