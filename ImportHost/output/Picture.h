/**
 * @file Picture.h
 * The result of a comparison to look at: a plan of each storey, in the colours of what happened.
 */
#pragma once

#include "output/Outcome.h"

#include <string>
#include <vector>

/**
 * SVG: a sheet that fits on A4 and letter, with a plan of each storey that has objects; spaces are left out. After
 * a first import no object shows a status.
 * @param storey  the only one that is drawn, unless it is empty
 * Throws Failure for a storey that is not there.
 */
std::string pictureText(const Outcome& outcome, const std::string& storey = "");

/** The plan of one storey. */
struct StoreyPlan {
    std::string storey; ///< as the model calls it; empty for the objects that belong to none
    std::string svg; ///< a sheet of its own; what belongs to an object has its index in the comparison as data-object
};

/** The plans of all storeys with objects, from the lowest to the highest. */
std::vector<StoreyPlan> storeyPlans(const Outcome& outcome);
