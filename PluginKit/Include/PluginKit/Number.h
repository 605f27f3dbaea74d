/**
 * @file Number.h
 * Numbers as text, whatever the locale of the process.
 */
#pragma once

#include <string>
#include <string_view>

namespace PluginKit {

/** The shortest text that reads back as the same number. */
std::string numberText(double value);
void appendNumber(std::string& text, double value);

/** The number that the whole text stands for, infinities and NaN included. Throws std::runtime_error. */
double toDouble(std::string_view text);

/** The whole number that the whole text stands for. Throws std::runtime_error. */
long toLong(std::string_view text);

} // namespace PluginKit
