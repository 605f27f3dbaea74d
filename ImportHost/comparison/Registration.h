/**
 * @file Registration.h
 * Lays one model over the other where no object can be told from others of its kind.
 */
#pragma once

#include "comparison/Pairing.h"

#include <optional>

/**
 * A shift, with a turn about z, after which most free objects of the old model lie where the new one has one of the same
 * kind; nothing when there is none, or when they do so without it. It is exact to some centimetres.
 */
std::optional<RigidMotion> registeredMotion(const Pairing& pairing);
