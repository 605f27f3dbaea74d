/**
 * @file IFC2X3PropertySingleValue.h
 * The typed value of an IFC 2x3 property.
 */
#pragma once

#include <ImportCommon/Export.h>

namespace ImportCommon {

/**
 * One typed value: a plain record, copied bit by bit.
 *
 * Each getter serves the types named at it. Called on another type it gives a neutral result and, the first time in a
 * process, stops in an attached debugger. Nothing here allocates or throws.
 */
class IMPORT_COMMON_API IFC2X3PropertySingleValue {
public:
    /** Number of characters that a text of the property model holds; longer text is cut. A zero follows them. */
    static constexpr unsigned int TextSize = 256;

    /** Types of value; the numbers are part of the interface. */
    enum ValueType_t : int {
        ValueType_Default = 0,      ///< a new value; reads as the real number 0.0
        ValueType_String = 1,       ///< label, identifier or text
        ValueType_Boolean = 2,      ///< flag
        ValueType_Integer = 3,      ///< count; 32 bits
        ValueType_Real = 4,         ///< plain real number: ratio, coefficient, transmittance
        ValueType_Length = 5,       ///< length, in the length unit of the model
        ValueType_RealMeasure6 = 6, ///< further real-valued measure
        ValueType_RealMeasure7 = 7, ///< further real-valued measure
        ValueType_RealMeasure8 = 8, ///< further real-valued measure
        ValueType_PlaneAngle = 9,   ///< angle in radians
        ValueType_Integer64 = 10,   ///< 64-bit integer
        ValueType_Logical = 11      ///< three-state value
    };

    /** A three-state value. The library itself produces only Logical_Unknown and interprets none. */
    enum Logical_s : int {
        Logical_False = 0,  ///< false
        Logical_True = 1,   ///< true
        Logical_Unknown = 2 ///< neither is known
    };

    /** A value of type ValueType_Default. */
    IFC2X3PropertySingleValue();

    /**
     * The type, which says which getter serves.
     * @return the type
     */
    ValueType_t getValueType() const;

    /**
     * The flag of a ValueType_Boolean; false for any other type.
     * @return the flag
     */
    bool getBooleanValue() const;

    /**
     * The state of a ValueType_Logical; Logical_Unknown for any other type.
     * @return the state
     */
    Logical_s getLogicalValue() const;

    /**
     * The number of a ValueType_Integer; 0 for any other type.
     * @return the number
     */
    int getIntValue() const;

    /**
     * The number of a ValueType_Integer64; 0 for any other type.
     * @return the number
     */
    long long getInt64Value() const;

    /**
     * The number of a real-valued type: ValueType_Default, Real, Length, RealMeasure6 to 8 and PlaneAngle; 0.0 for any
     * other type.
     * @return the number
     */
    double getRealValue() const;

    /**
     * The zero-terminated text of a ValueType_String, owned by this object; empty for any other type.
     *
     * It is the first TextSize characters of what was given; nothing tells whether there were more. Characters beyond
     * U+FFFF are kept here, and dropped when StringOperations::ConvertToUTF8 encodes the text: a value that was written
     * as UTF-8 and read again may be shorter than this one. Compare values in the form in which both have been stored.
     *
     * @return the text
     */
    const wchar_t* getStringValue() const;

    /** @copydoc getStringValue */
    const wchar_t* getStringValue2() const;

    /**
     * Whether values of the type are real numbers.
     * @param type  a type of value
     * @return whether they are
     */
    static constexpr bool isRealType(ValueType_t type) {
        return type == ValueType_Default || (type >= ValueType_Real && type <= ValueType_PlaneAngle);
    }

protected:
    /**
     * All fields; at most TextSize characters of @p text are read and stored.
     *
     * REQUIRES: @p text is not null, and has TextSize characters or a zero before.
     *
     * @param type          says which of the values counts
     * @param boolValue     the flag
     * @param logicalValue  the three-state value
     * @param intValue      the 32-bit integer
     * @param int64Value    the 64-bit integer
     * @param realValue     the real number
     * @param text          the text
     */
    IFC2X3PropertySingleValue(ValueType_t type, bool boolValue, Logical_s logicalValue, int intValue,
                              long long int64Value, double realValue, const wchar_t* text);

private:
    friend class IFC2X3Property;

    ValueType_t valueType_;
    bool boolValue_;
    Logical_s logicalValue_;
    int intValue_;
    double realValue_;
    long long int64Value_;
    wchar_t stringValue_[TextSize + 1];
};

} // namespace ImportCommon
