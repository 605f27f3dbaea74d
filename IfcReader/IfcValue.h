/**
 * @file IfcValue.h
 * Values of properties as a file gives them.
 */
#pragma once

#include <string>
#include <string_view>

namespace IfcReader {

/** A value, and for a number what it measures as far as that matters to a property. */
struct IfcValue {
    enum class Kind { Absent, Text, Boolean, Logical, Integer, Real, Length, Angle };

    Kind kind = Kind::Absent;
    std::string text;      ///< of a Text, in UTF-8
    bool flag = false;     ///< of a Boolean, and of a Logical that is not unknown
    bool unknown = false;  ///< of a Logical
    long long integer = 0; ///< of an Integer
    double number = 0.0;   ///< of a Real, Length or Angle, in the unit that the file uses
};

/** The value that an argument stands for; lists, enumerations and what is not understood become text. */
IfcValue valueOf(std::string_view argument);

/** The values of a list, as text with commas between them. */
IfcValue listValueOf(std::string_view list);

/** How a value reads among others; empty for an absent one. */
std::string valueText(std::string_view argument);

} // namespace IfcReader
