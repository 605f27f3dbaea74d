/**
 * @file Utf8.h
 * Text as UTF-8 and as wide text, and text for a terminal.
 */
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace PluginKit {

/** Well-formed UTF-8: bytes that are not become U+FFFD. */
std::string validUtf8(std::string_view text);

/** Whether the text survives the library's wide strings: UTF-8 without characters above U+FFFF. */
bool isWidePortable(std::string_view text);

/** For a terminal: well-formed, and control characters (C0, DEL, C1) and marks that turn the direction replaced. */
std::string printable(std::string_view text);

/** Wide text, one element for each character; bytes that are no UTF-8 become U+FFFD. */
std::wstring toWide(std::string_view utf8);

/** UTF-8 of a wide text; numbers that are no character become U+FFFD. */
std::string toUtf8(std::wstring_view text);

/**
 * UTF-8 of a text array of the property model.
 * @param text  ends at its zero, or after @p size elements
 * @param size  elements of the array
 */
std::string toUtf8(const wchar_t* text, std::size_t size);

/** Fills a text array of a property record: what does not fit is cut between characters, the rest is zero. */
template <std::size_t N>
void setText(wchar_t (&array)[N], std::string_view utf8) {
    const std::wstring text = toWide(utf8);
    for (std::size_t i = 0; i < N; ++i) {
        array[i] = i + 1 < N && i < text.size() ? text[i] : L'\0';
    }
}

} // namespace PluginKit
