/**
 * @file TextWidth.h
 * How much room text takes on a terminal.
 */
#pragma once

#include <cstddef>
#include <string_view>

/** Columns of UTF-8 text: two for a wide character such as those of Chinese, none for an accent that combines. */
std::size_t columnsOf(std::string_view text);
