/**
 * @file Table.h
 * The result of a comparison for people.
 */
#pragma once

#include "comparison/Comparison.h"

#include <string>

/** The count of every status, and a line for each object that is not unchanged. */
std::string tableText(const Comparison& comparison, bool firstImport);
