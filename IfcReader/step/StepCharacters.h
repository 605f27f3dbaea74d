/**
 * @file StepCharacters.h
 * Kinds of characters in STEP text.
 */
#pragma once

namespace IfcReader {

/** Spaces, line ends and all other control characters. */
inline bool isBlank(char c) {
    return static_cast<unsigned char>(c) <= ' ';
}

inline bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

} // namespace IfcReader
