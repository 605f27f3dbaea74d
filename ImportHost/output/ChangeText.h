/**
 * @file ChangeText.h
 * What became of an object, in the words that table, picture and exchange files share.
 */
#pragma once

#include "comparison/Comparison.h"

#include <string>

/** All that applies, such as "reidentified (was 2O2Fr$t4X7Zf8NOew3FNtn), moved", with hints and notes behind it. */
std::string changeText(const Change& change);

/** How an object moved, such as "2.062 m (-1.600, 1.300, 0.000), turned by 90 degrees"; empty when it did not. */
std::string moveText(const Change& change);

/** How the whole model was displaced, a sentence; empty when it was not. */
std::string displacementText(const Comparison& comparison);

/** A number with some digits behind the point, and never "-0". */
std::string fixedText(double value, int digits);

/** The value of a property as people read it; empty when there is none. */
std::string valueText(const std::optional<std::string>& value);
