/**
 * @file Completion.h
 * What a shell completes, made from the options.
 */
#pragma once

#include <string>

/** A file for bash-completion. */
std::string bashCompletionText();

/** A file for the functions of zsh. */
std::string zshCompletionText();
