/**
 * @file Report.h
 * The result of a comparison for programs.
 */
#pragma once

#include "comparison/Comparison.h"

#include <string>
#include <vector>

/** JSON: the model, the count of every status, and all objects. */
std::string reportText(const std::string& model, const std::vector<Change>& changes);
