/**
 * @file Report.h
 * The result of a comparison for programs.
 */
#pragma once

#include "output/Outcome.h"

#include <string>

/** The format of the report; Docs/report.schema.json describes it. */
constexpr int reportFormat = 2;

/** JSON: the model, the one it was compared with, doubtful objects, how the whole was displaced, counts, all objects. */
std::string reportText(const Outcome& outcome);
