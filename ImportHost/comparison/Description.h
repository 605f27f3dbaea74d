/**
 * @file Description.h
 * What became of an object that is there before and now.
 */
#pragma once

#include "comparison/Body.h"
#include "comparison/Comparison.h"

/** Fills in all but the confidence of a change whose records are those of two bodies. */
void describe(Change& change, const Body& before, const Body& now);
