/**
 * @file IdentityPairs.h
 * Pairs objects that have the same identity.
 */
#pragma once

#include "comparison/Pairing.h"

/** A model may use an identity twice: the first goes with the first, and so on. */
void pairIdentities(Pairing& pairing);

/**
 * Finds objects that exchanged identities, or whose identities moved on along a row: each lies, with its class and
 * shape, where the owner of another such identity was. They are paired by their places instead.
 */
void undoExchanges(Pairing& pairing);

/** Pairs free objects whose spatial hashes the identity database joins, if class and shape agree. */
void pairSpatialHashes(Pairing& pairing);
