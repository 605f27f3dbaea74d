/**
 * @file Report.h
 * The result of a comparison for programs.
 */
#pragma once

#include "comparison/Comparison.h"
#include "state/StateFolder.h"

#include <optional>
#include <string>

/** The format of the report; Docs/report.schema.json describes it. */
constexpr int reportFormat = 2;

/** JSON: the model, the one it was compared with, how the whole was displaced, counts, and all objects. */
std::string reportText(const ImportedModel& model, const std::optional<ImportedModel>& previous,
                       const Comparison& comparison);
