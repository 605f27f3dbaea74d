/**
 * @file Listing.h
 * What a state knows.
 */
#pragma once

#include "state/ObjectRecord.h"

#include <string>
#include <vector>

/** A line for each object: identity, class and name. Throws std::bad_alloc. */
std::string listingText(const std::vector<ObjectRecord>& objects);
