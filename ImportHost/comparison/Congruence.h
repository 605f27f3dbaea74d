/**
 * @file Congruence.h
 * Whether two bodies are of the same shape, and lie alike or in the same place.
 */
#pragma once

#include "comparison/Body.h"

#include <optional>

/** Whether all agrees that no turn changes. Mirror images pass, and shapes that differ in nothing but arrangement. */
bool measureAlike(const Body& a, const Body& b);

/** Whether they are of the same shape and lie alike, wherever they are. */
bool lieAlike(const Body& a, const Body& b);

/** Whether they are of the same shape and in the same place. */
bool areInPlace(const Body& a, const Body& b);

/** The smallest turn that makes @p from lie as @p to; nothing if there is none, because the shapes differ. */
std::optional<Rotation> turnBetween(const Body& from, const Body& to);

/** How alike the shapes are, from 0 to 1, and 1 for the same shape alone. */
double likeness(const Body& a, const Body& b);

/** How far it is from one to the other, in metres. */
double distanceBetween(const Body& a, const Body& b);
