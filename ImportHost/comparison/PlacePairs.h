/**
 * @file PlacePairs.h
 * Pairs objects by where they are.
 */
#pragma once

#include "comparison/Pairing.h"

/** Pairs free objects of the same shape in the same place, those of the same class first. */
void pairPlaces(Pairing& pairing);

/** Pairs free objects of the same class and shape that moved together, three or more of them by the same shift. */
void pairGroups(Pairing& pairing);
