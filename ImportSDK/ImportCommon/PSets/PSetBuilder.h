/**
 * @file PSetBuilder.h
 * What the conversions of the common property sets share.
 */
#pragma once

#include <ImportCommon/IFC2X3_PSet_Custom.h>

namespace ImportCommon {

/**
 * Builds a named set property by property. Each property is constructed where the set keeps it, since its inline text
 * makes copying expensive. The last argument of each function says whether the property is there at all.
 */
class PSetBuilder {
public:
    /** Fills @p set, which is new and outlives the builder. */
    PSetBuilder(IFC2X3_PSet_Custom_s& set, const wchar_t* name);

    PSetBuilder& text(const wchar_t* name, const wchar_t* value);
    PSetBuilder& flag(const wchar_t* name, bool value, bool present = true);
    PSetBuilder& integer(const wchar_t* name, int value, bool present = true);
    PSetBuilder& real(const wchar_t* name, double value, bool present);
    PSetBuilder& length(const wchar_t* name, double value, bool present);

    /** An angle in radians. */
    PSetBuilder& angle(const wchar_t* name, double value, bool present);

    /** A length if @p kind is 1, an angle in degrees if it is 2; nothing for any other kind. */
    PSetBuilder& lengthOrAngle(const wchar_t* name, double value, int kind, bool present);

private:
    PSetBuilder& number(const wchar_t* name, IFC2X3PropertySingleValue::ValueType_t type, double value, bool present);

    IFC2X3_PSet_Custom_s& set_;
};

} // namespace ImportCommon
