/**
 * @file Listing.h
 * What a state knows.
 */
#pragma once

#include "state/ObjectRecord.h"

#include <string>
#include <vector>

/** A line for each object, in the order of the state: identity, class and name. */
std::string listingText(const std::vector<ObjectRecord>& objects);
