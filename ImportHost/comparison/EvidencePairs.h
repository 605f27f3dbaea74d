/**
 * @file EvidencePairs.h
 * Pairs what is left by all that speaks for it.
 */
#pragma once

#include "comparison/Pairing.h"

#include <vector>

/** Two objects that are perhaps one. */
struct PossiblePair {
    std::size_t before;
    std::size_t now;
    double confidence; ///< less than what a pair needs
};

/** Pairs free objects, the best pair first, and gives those that are not sure enough, each object once. */
std::vector<PossiblePair> pairByEvidence(Pairing& pairing);
