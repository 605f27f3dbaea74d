/**
 * @file PageTemplate.h
 * The page without data, as it was put into the program when that was built.
 */
#pragma once

#include <string_view>

/** What stands where the data of a page go. */
constexpr std::string_view pageDataMark = "<!--data-->";

/** HTML with pageDataMark in it once; empty in a program that was built without the drawing library. */
std::string_view pageTemplate();
