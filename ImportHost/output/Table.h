/**
 * @file Table.h
 * The result of a comparison for people.
 */
#pragma once

#include "output/Outcome.h"

#include <string>

/** The count of every status, how many objects are doubtful if any, and a line for each that is not unchanged. */
std::string tableText(const Outcome& outcome);
