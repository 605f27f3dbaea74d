/**
 * @file Csv.h
 * The result of a comparison for spreadsheets.
 */
#pragma once

#include "comparison/Comparison.h"

#include <string>

/**
 * A line for each change of an object, with its old and its new value: identity, class, size and volume, position in
 * metres, and each attribute and property. UTF-8 with a byte order mark, all cells quoted; a text that a spreadsheet
 * would take for a formula stands behind an apostrophe.
 */
std::string csvText(const Comparison& comparison);
