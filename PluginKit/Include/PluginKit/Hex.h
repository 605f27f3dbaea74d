/**
 * @file Hex.h
 * Bytes in hexadecimal.
 */
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace PluginKit {

/** Two lower-case digits for each byte. */
std::string toHex(const char* bytes, std::size_t size);
void appendHex(std::string& text, const char* bytes, std::size_t size);

/** The bytes, whatever the case of the digits; empty when the text is not hexadecimal. */
std::string fromHex(std::string_view text);

} // namespace PluginKit
