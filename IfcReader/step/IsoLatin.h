/**
 * @file IsoLatin.h
 * The character sets that texts of a STEP file may switch to.
 */
#pragma once

#include <cstdint>

namespace IfcReader {

/** The character of a byte in a part of ISO 8859, from 1 to 9; U+FFFD for a byte that the part leaves free. */
std::uint32_t isoLatinCharacter(int part, unsigned char byte);

} // namespace IfcReader
