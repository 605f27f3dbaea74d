#include "OneTimeWarning.h"
#include "PropertyText.h"

#include <ImportCommon/IFC2X3PropertySingleValue.h>

namespace ImportCommon {

IFC2X3PropertySingleValue::IFC2X3PropertySingleValue()
    : IFC2X3PropertySingleValue(ValueType_Default, false, Logical_False, 0, 0, 0.0, L"") {
}

IFC2X3PropertySingleValue::IFC2X3PropertySingleValue(ValueType_t type, bool boolValue, Logical_s logicalValue,
                                                     int intValue, long long int64Value, double realValue,
                                                     const wchar_t* text)
    : valueType_(type),
      boolValue_(boolValue),
      logicalValue_(logicalValue),
      intValue_(intValue),
      realValue_(realValue),
      int64Value_(int64Value) {
    copyPropertyText<TextSize>(stringValue_, text);
}

IFC2X3PropertySingleValue::ValueType_t IFC2X3PropertySingleValue::getValueType() const {
    return valueType_;
}

bool IFC2X3PropertySingleValue::getBooleanValue() const {
    static OneTimeWarning once;
    return once.unless(valueType_ == ValueType_Boolean) ? boolValue_ : false;
}

IFC2X3PropertySingleValue::Logical_s IFC2X3PropertySingleValue::getLogicalValue() const {
    static OneTimeWarning once;
    return once.unless(valueType_ == ValueType_Logical) ? logicalValue_ : Logical_Unknown;
}

int IFC2X3PropertySingleValue::getIntValue() const {
    static OneTimeWarning once;
    return once.unless(valueType_ == ValueType_Integer) ? intValue_ : 0;
}

long long IFC2X3PropertySingleValue::getInt64Value() const {
    static OneTimeWarning once;
    return once.unless(valueType_ == ValueType_Integer64) ? int64Value_ : 0;
}

double IFC2X3PropertySingleValue::getRealValue() const {
    static OneTimeWarning once;
    return once.unless(isRealType(valueType_)) ? realValue_ : 0.0;
}

const wchar_t* IFC2X3PropertySingleValue::getStringValue() const {
    static OneTimeWarning once;
    return once.unless(valueType_ == ValueType_String) ? stringValue_ : L"";
}

const wchar_t* IFC2X3PropertySingleValue::getStringValue2() const {
    static OneTimeWarning once;
    return once.unless(valueType_ == ValueType_String) ? stringValue_ : L"";
}

} // namespace ImportCommon
