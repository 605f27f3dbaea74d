/**
 * @file RelatedState.h
 * The state of an earlier version of a model that goes by another name.
 */
#pragma once

#include "state/StateFolder.h"

#include <optional>
#include <string>
#include <vector>

struct RelatedState {
    std::string folder;
    State state;
};

/**
 * Looks among the states beside a model, which has none itself, for the one that shares most identities with it, and at
 * least half of them. A state that can't be read is passed over.
 */
std::optional<RelatedState> findRelatedState(const std::string& model, const std::vector<ObjectRecord>& objects);
