/**
 * @file Hints.h
 * What to type next.
 */
#pragma once

#include "command/Arguments.h"

#include <string>

/** After a first import: where the state is, and how a revision is compared with it. */
std::string firstImportHint(const Arguments& arguments);

/** The same for the models of a folder. */
std::string folderHint();

/** Before the comparison of a model that was not imported before with a state that lies beside it. */
std::string relatedStateHint(const Arguments& arguments, const std::string& folder);
