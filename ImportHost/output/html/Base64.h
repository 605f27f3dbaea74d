/**
 * @file Base64.h
 * Bytes as text of letters, digits, plus and slash.
 */
#pragma once

#include <string>
#include <string_view>

/** The bytes in base 64, padded. */
std::string base64(std::string_view bytes);
