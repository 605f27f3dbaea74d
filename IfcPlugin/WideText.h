/**
 * @file WideText.h
 * Text for the property model.
 */
#pragma once

#include <string>
#include <string_view>

/**
 * Wide text of UTF-8. Other than the library's conversion it knows all of Unicode and takes text that is wrong in part:
 * bytes that belong to no character become U+FFFD.
 */
std::wstring wideText(std::string_view utf8);
