/**
 * @file Moments.h
 * Moments of a surface, and how they look after a turn.
 */
#pragma once

#include "comparison/Rotation.h"
#include "state/Shape.h"

#include <complex>
#include <vector>

/** The shape turned about its centroid, which stays. */
Shape rotated(const Shape& shape, const Rotation& rotation);

/** How much each moment may differ, if no point of the surface moved farther than some distance along any axis. */
struct MomentTolerances {
    MomentTolerances(const Shape& shape, double distance);

    std::array<double, Shape::secondCount> second;
    std::array<double, Shape::thirdCount> third;
    std::array<double, Shape::fourthCount> fourth;
};

bool agree(const Shape& a, const Shape& b, const MomentTolerances& tolerances);

/** A part of the moments that a turn by an angle about the z axis turns by its order times that angle. */
struct Harmonic {
    int order;
    std::complex<double> value;
    double tolerance; ///< what may be noise
};

/** Always in the same sequence; @p distance as for the tolerances. */
std::vector<Harmonic> harmonicsOf(const Shape& shape, double distance);

/** The axes about which the surface spreads most, second and least, with the squares of how far. */
Eigenvectors<3> principalAxes(const Shape& shape);

/** How far the surface lies from its centroid along these axes, in metres. */
Vector3 spreadOf(const Shape& shape);
