/**
 * @file Text.h
 * Text as it stands in streams and state: fields between separators, bytes in hexadecimal, names with escapes.
 */
#pragma once

#include <string>
#include <string_view>
#include <vector>

std::vector<std::string_view> split(std::string_view text, char separator);

/** Control characters and percent signs as %XX. */
std::string escaped(std::string_view text);
std::string unescaped(std::string_view text);

std::string toHex(const char* bytes, std::size_t size);

/** The bytes; empty when the text is not hexadecimal. */
std::string fromHex(std::string_view text);

/** 64-bit FNV-1a in hexadecimal: tells a text that was cut or changed, not one that was forged. */
std::string checksum(std::string_view text);

/** The number that the whole text stands for. Throws std::runtime_error. */
double toDouble(std::string_view text);
long toLong(std::string_view text);

/** The shortest text that reads back as the same number. */
std::string numberText(double value);

/** Well-formed UTF-8: bytes that are not become U+FFFD. */
std::string validUtf8(std::string_view text);

/** Whether the text survives the library's wide strings: UTF-8 without characters above U+FFFF. */
bool isWidePortable(std::string_view text);

/** For a terminal: well-formed, and control characters replaced. */
std::string printable(std::string_view text);
