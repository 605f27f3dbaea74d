/**
 * @file ImportCommand.h
 * What the program does with models.
 */
#pragma once

#include "command/Arguments.h"

/** Imports what the arguments name, writes what they want, and gives the exit code. Throws Failure. */
int importCommand(const Arguments& arguments);

/** Shows an error on the standard error stream, in one line. */
void showError(const char* text);
