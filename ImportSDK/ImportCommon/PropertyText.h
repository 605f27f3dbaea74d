/**
 * @file PropertyText.h
 * The fixed text arrays of the property model.
 */
#pragma once

#include <algorithm>
#include <cstddef>
#include <cwchar>

namespace ImportCommon {

/**
 * Fills an array with the first characters of a text and zeros. The text is read up to its terminator or as many
 * characters as @p Size says; any further element of the array is zero.
 */
template <std::size_t Size, std::size_t N>
void copyPropertyText(wchar_t (&out)[N], const wchar_t* text) {
    static_assert(Size <= N, "the text must fit");
    const std::size_t length = *text == 0 ? 0 : wcsnlen(text, Size); // many texts are empty
    std::copy_n(text, length, out);
    std::fill(out + length, out + N, L'\0');
}

} // namespace ImportCommon
