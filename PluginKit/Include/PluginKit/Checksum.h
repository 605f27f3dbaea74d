/**
 * @file Checksum.h
 * A number for a text.
 */
#pragma once

#include <string>
#include <string_view>

namespace PluginKit {

/** 64-bit FNV-1a in hexadecimal: tells a text that was cut or changed, not one that was forged. */
std::string checksum(std::string_view text);

} // namespace PluginKit
