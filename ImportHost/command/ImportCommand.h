/**
 * @file ImportCommand.h
 * What the program does with models.
 */
#pragma once

#include "command/Arguments.h"

#include <exception>

/** Imports what the arguments name, writes what they want, and gives the exit code. Throws Failure. */
int importCommand(const Arguments& arguments);

/** Shows an error on the standard error stream, in one line. */
void showError(const char* text);

/** Shows why something failed, in one line, and behind it what a plug-in had to say. */
void showFailure(const std::exception& reason);
