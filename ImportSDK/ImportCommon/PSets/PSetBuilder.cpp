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
    if (present) {
        set_.properties.appendSingleValue(name, Value::ValueType_Real, false, 0, value, L"");
    }
    return *this;
}

PSetBuilder& PSetBuilder::length(const wchar_t* name, double value, bool present) {
    if (present) {
        set_.properties.appendSingleValue(name, Value::ValueType_Length, false, 0, value, L"");
    }
    return *this;
}

PSetBuilder& PSetBuilder::angle(const wchar_t* name, double value, bool present) {
    if (present) {
        set_.properties.appendSingleValue(name, Value::ValueType_PlaneAngle, false, 0, value, L"");
    }
    return *this;
}

PSetBuilder& PSetBuilder::lengthOrAngle(const wchar_t* name, double value, int kind, bool present) {
    length(name, value, present && kind == kindLength);
    return angle(name, value / 180.0 * 3.141592653589793, present && kind == kindAngleInDegrees);
}

} // namespace ImportCommon
