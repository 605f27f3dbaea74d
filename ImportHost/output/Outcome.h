/**
 * @file Outcome.h
 * What is written in one form or another.
 */
#pragma once

#include "comparison/Comparison.h"
#include "state/StateFolder.h"

#include <cstddef>
#include <optional>

/** A comparison and what was compared. */
struct Outcome {
    const ImportedModel& model;
    const std::optional<ImportedModel>& previous; ///< nothing on a first import
    const Comparison& comparison;
    std::optional<std::size_t> doubtful = {}; ///< objects not built in full or open; nothing when the plug-in is silent
};
