/**
 * @file Escapes.h
 * Text of any content as one field of a line.
 */
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace PluginKit {

/** The text with control characters (below U+0020, and U+007F) and percent signs as % and two lower-case digits. */
std::string escaped(std::string_view text);

/**
 * The text that was escaped; digits of either case are taken, and a percent sign without two digits stands for itself.
 * Compare what this gives, never escaped texts: another plug-in may spell the same text in another way.
 */
std::string unescaped(std::string_view text);

/** The parts between separators; one more than there are separators. */
std::vector<std::string_view> split(std::string_view text, char separator);

} // namespace PluginKit
