/**
 * @file BoundedText.h
 * Text of which there may be too much.
 */
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/** Keeps the beginning and the end of what is appended, and at most twice @ref part bytes of it. */
class BoundedText {
public:
    static constexpr std::size_t part = 16384;

    void append(std::string_view text);

    /** The text; where something is left out, a line says how much. */
    std::string text() const;

private:
    std::string begin_;
    std::string end_;
    std::size_t leftOut_ = 0;
};

/** Shows what a plug-in said on the standard error stream, without control characters. */
void showWords(const std::string& text);
