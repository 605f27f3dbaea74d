#include "PSetBuilder.h"

#include "../PropertyText.h"

#include <algorithm>

namespace ImportCommon {

namespace {

using Value = IFC2X3PropertySingleValue;

constexpr int kindLength = 1;
constexpr int kindAngleInDegrees = 2;

} // namespace

PSetBuilder::PSetBuilder(IFC2X3_PSet_Custom_s& set, const wchar_t* name) : set_(set) {
    std::fill_n(set_.globalId, sizeof set_.globalId, '0');
    copyPropertyText<Value::TextSize>(set_.name, name);
}

PSetBuilder& PSetBuilder::text(const wchar_t* name, const wchar_t* value) {
    set_.properties.appendSingleValue(name, Value::ValueType_String, false, 0, 0.0, value);
    return *this;
}

PSetBuilder& PSetBuilder::flag(const wchar_t* name, bool value, bool present) {
    if (present) {
        set_.properties.appendSingleValue(name, Value::ValueType_Boolean, value, 0, 0.0, L"");
    }
    return *this;
}

PSetBuilder& PSetBuilder::integer(const wchar_t* name, int value, bool present) {
    if (present) {
        set_.properties.appendSingleValue(name, Value::ValueType_Integer, false, value, 0.0, L"");
    }
    return *this;
}

PSetBuilder& PSetBuilder::real(const wchar_t* name, double value, bool present) {
    return number(name, Value::ValueType_Real, value, present);
}

PSetBuilder& PSetBuilder::length(const wchar_t* name, double value, bool present) {
    return number(name, Value::ValueType_Length, value, present);
}

PSetBuilder& PSetBuilder::angle(const wchar_t* name, double value, bool present) {
    return number(name, Value::ValueType_PlaneAngle, value, present);
}

PSetBuilder& PSetBuilder::lengthOrAngle(const wchar_t* name, double value, int kind, bool present) {
    length(name, value, present && kind == kindLength);
    return angle(name, value / 180.0 * 3.141592653589793, present && kind == kindAngleInDegrees);
}

PSetBuilder& PSetBuilder::number(const wchar_t* name, Value::ValueType_t type, double value, bool present) {
    if (present) {
        set_.properties.appendSingleValue(name, type, false, 0, value, L"");
    }
    return *this;
}

} // namespace ImportCommon
