#include "OneTimeWarning.h"

#include <ImportCommon/CIFC2X3Property.h>

namespace ImportCommon {

/** Constructs properties where their receiver wants them: copying one costs as much as filling it. */
struct PropertyFactory {
    template <typename... Arguments>
    static IFC2X3Property make(const Arguments&... arguments) {
        return IFC2X3Property(arguments...);
    }
};

namespace {

using Value = IFC2X3PropertySingleValue;

/** What a factory gives for a type that it doesn't make: all values neutral. */
IFC2X3Property neutralProperty(const wchar_t* name, const wchar_t* description) {
    return PropertyFactory::make(name, description, Value::ValueType_Default, false, Value::Logical_Unknown, 0, 0LL,
                                 0.0, L"");
}

} // namespace

IFC2X3Property createPropertySingleValueString(const wchar_t* name, const wchar_t* description, const wchar_t* value) {
    return PropertyFactory::make(name, description, Value::ValueType_String, false, Value::Logical_Unknown, 0, 0, 0.0,
                                 value);
}

IFC2X3Property createPropertySingleValueBoolean(const wchar_t* name, const wchar_t* description, bool value) {
    return PropertyFactory::make(name, description, Value::ValueType_Boolean, value, Value::Logical_Unknown, 0, 0, 0.0,
                                 L"");
}

IFC2X3Property createPropertySingleValueLogical(const wchar_t* name, const wchar_t* description,
                                                Value::Logical_s value) {
    return PropertyFactory::make(name, description, Value::ValueType_Logical, false, value, 0, 0, 0.0, L"");
}

IFC2X3Property createPropertySingleValueInteger(const wchar_t* name, const wchar_t* description,
                                                Value::ValueType_t type, int value) {
    static OneTimeWarning once;
    if (!once.unless(type == Value::ValueType_Integer)) {
        return neutralProperty(name, description);
    }
    return PropertyFactory::make(name, description, type, false, Value::Logical_Unknown, value, 0, 0.0, L"");
}

IFC2X3Property createPropertySingleValueInteger64(const wchar_t* name, const wchar_t* description,
                                                  Value::ValueType_t type, long long value) {
    static OneTimeWarning once;
    if (!once.unless(type == Value::ValueType_Integer64)) {
        return neutralProperty(name, description);
    }
    return PropertyFactory::make(name, description, type, false, Value::Logical_Unknown, 0, value, 0.0, L"");
}

IFC2X3Property createPropertySingleValueReal(const wchar_t* name, const wchar_t* description, Value::ValueType_t type,
                                             double value) {
    static OneTimeWarning once;
    if (!once.unless(Value::isRealType(type))) {
        return neutralProperty(name, description);
    }
    return PropertyFactory::make(name, description, type, false, Value::Logical_Unknown, 0, 0, value, L"");
}

IFC2X3Property createPropertyComplex(const wchar_t* name, const wchar_t* description, const wchar_t* usageName,
                                     const IFC2X3PropertySet& set) {
    return PropertyFactory::make(name, description, usageName, set);
}

} // namespace ImportCommon
