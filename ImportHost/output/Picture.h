/**
 * @file Picture.h
 * The result of a comparison to look at.
 */
#pragma once

#include "comparison/Comparison.h"

#include <string>

/** SVG: the plan of all objects, coloured by status, with a legend. */
std::string pictureText(const std::string& title, const Comparison& comparison);
