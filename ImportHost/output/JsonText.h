/**
 * @file JsonText.h
 * Texts inside JSON.
 */
#pragma once

#include <string>
#include <string_view>

/** A text as a string of JSON, with its quotes; bytes that are no UTF-8 are replaced. */
std::string jsonString(std::string_view text);
