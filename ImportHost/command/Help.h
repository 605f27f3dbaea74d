/**
 * @file Help.h
 * What the program says of itself, made from the options.
 */
#pragma once

#include <string>

/** Name and version, a line. */
std::string versionText();

/** The page of --help, at most 80 columns wide. */
std::string helpText();

/** One line that says what may be given. */
std::string usageText();

/** The manual page, for man. */
std::string manualText();
