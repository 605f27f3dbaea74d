/**
 * @file WholeDisplacement.h
 * The motion that a model as a whole made: another origin, another true north.
 */
#pragma once

#include "comparison/Pairing.h"

#include <optional>

/**
 * The motion that nearly all objects share, told by those that are paired and by those that are free and unmistakable;
 * nothing when the model stayed where it was, or its objects moved in different ways.
 */
std::optional<RigidMotion> displacementOf(const Pairing& pairing);
