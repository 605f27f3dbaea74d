#include "OneTimeWarning.h"

#include <ImportCommon/CIFC2X3Property.h>

namespace ImportCommon {

namespace {

using Value = IFC2X3PropertySingleValue;

/** A property whose value is taken as the neutral one of every type that it isn't given for. */
IFC2X3Property propertyOfDefaultType(const wchar_t* name, const wchar_t* description) {
    return CIFC2X3Property(name, description, Value::ValueType_Default, false, Value::Logical_Unknown, 0, 0, 0.0, L"");
}

} // namespace

IFC2X3Property createPropertySingleValueString(const wchar_t* name, const wchar_t* description, const wchar_t* value) {
    return CIFC2X3Property(name, description, Value::ValueType_String, false, Value::Logical_Unknown, 0, 0, 0.0, value);
}

IFC2X3Property createPropertySingleValueBoolean(const wchar_t* name, const wchar_t* description, bool value) {
    return CIFC2X3Property(name, description, Value::ValueType_Boolean, value, Value::Logical_Unknown, 0, 0, 0.0, L"");
}

IFC2X3Property createPropertySingleValueLogical(const wchar_t* name, const wchar_t* description,
                                                Value::Logical_s value) {
    return CIFC2X3Property(name, description, Value::ValueType_Logical, false, value, 0, 0, 0.0, L"");
}

IFC2X3Property createPropertySingleValueInteger(const wchar_t* name, const wchar_t* description,
                                                Value::ValueType_t type, int value) {
    static OneTimeWarning once;
    if (!once.unless(type == Value::ValueType_Integer)) {
        return propertyOfDefaultType(name, description);
    }
    return CIFC2X3Property(name, description, type, false, Value::Logical_Unknown, value, 0, 0.0, L"");
}

IFC2X3Property createPropertySingleValueInteger64(const wchar_t* name, const wchar_t* description,
                                                  Value::ValueType_t type, long long value) {
    static OneTimeWarning once;
    if (!once.unless(type == Value::ValueType_Integer64)) {
        return propertyOfDefaultType(name, description);
    }
    return CIFC2X3Property(name, description, type, false, Value::Logical_Unknown, 0, value, 0.0, L"");
}

IFC2X3Property createPropertySingleValueReal(const wchar_t* name, const wchar_t* description, Value::ValueType_t type,
                                             double value) {
    static OneTimeWarning once;
    if (!once.unless(Value::isRealType(type))) {
        return propertyOfDefaultType(name, description);
    }
    return CIFC2X3Property(name, description, type, false, Value::Logical_Unknown, 0, 0, value, L"");
}

IFC2X3Property createPropertyComplex(const wchar_t* name, const wchar_t* description, const wchar_t* usageName,
                                     const IFC2X3PropertySet& set) {
    return CIFC2X3Property(name, description, usageName, set);
}

} // namespace ImportCommon
