/**
 * @file Pieces.h
 * Objects that were split, or made one.
 */
#pragma once

#include "comparison/Comparison.h"

/** Adds notes to objects that fill what another one left free when it shrank, or left what another one took up. */
void notePieces(std::vector<Change>& changes);
