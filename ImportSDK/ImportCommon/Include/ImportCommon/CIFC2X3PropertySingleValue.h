/**
 * @file CIFC2X3PropertySingleValue.h
 * Constructs single values.
 */
#pragma once

#include <ImportCommon/IFC2X3PropertySingleValue.h>

namespace ImportCommon {

/** A single value that is filled at construction; otherwise just an IFC2X3PropertySingleValue. */
class IMPORT_COMMON_API CIFC2X3PropertySingleValue : public IFC2X3PropertySingleValue {
public:
    /**
     * Stores every field as given; of @p text the first 256 characters.
     *
     * REQUIRES: @p text is not null, and has 256 characters or a zero before.
     *
     * @param type          says which of the values counts
     * @param boolValue     the flag
     * @param logicalValue  the three-state value
     * @param intValue      the 32-bit integer
     * @param int64Value    the 64-bit integer
     * @param realValue     the real number
     * @param text          the text
     */
    CIFC2X3PropertySingleValue(ValueType_t type, bool boolValue, Logical_s logicalValue, int intValue,
                               long long int64Value, double realValue, const wchar_t* text)
        : IFC2X3PropertySingleValue(type, boolValue, logicalValue, intValue, int64Value, realValue, text) {}
};

} // namespace ImportCommon
