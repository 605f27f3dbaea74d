/**
 * @file PropertySet.h
 * Property sets as a file gives them. All texts are UTF-8, of any length.
 */
#pragma once

#include <string>
#include <vector>

namespace IfcReader {

/** A value, and for a number what it measures as far as that matters to a property. */
struct IfcValue {
    enum class Kind { Absent, Text, Boolean, Logical, Integer, Real, Length, Angle };

    Kind kind = Kind::Absent;
    std::string text;      ///< of a Text
    bool flag = false;     ///< of a Boolean, and of a Logical that is not unknown
    bool unknown = false;  ///< of a Logical
    long long integer = 0; ///< of an Integer
    double number = 0.0;   ///< of a Real, a Length in the model's unit, or an Angle in degrees
    double factor = 1.0;   ///< turns the number into SI units, except that of an Angle
};

/** A property with a value, or with properties inside it. */
struct IfcProperty {
    std::string name;
    std::string description;
    IfcValue value;
    bool isComplex = false;
    std::string usageName;           ///< of a complex property
    std::vector<IfcProperty> nested; ///< of a complex property
};

struct IfcPropertySet {
    std::string globalId;
    std::string name;
    std::string description;
    std::vector<IfcProperty> properties; ///< those that have a value
};

} // namespace IfcReader
