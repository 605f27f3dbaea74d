/**
 * @file CIFC2X3Property.h
 * Constructs properties.
 */
#pragma once

#include <ImportCommon/CIFC2X3PropertyComplex.h>
#include <ImportCommon/CIFC2X3PropertySingleValue.h>
#include <ImportCommon/IFC2X3Property.h>

namespace ImportCommon {

/**
 * A property that is filled at construction; otherwise just an IFC2X3Property. The first 256 characters of each text
 * are copied. Only the constructor with a nested set, and createPropertyComplex, need memory, and throw
 * `std::bad_alloc` without it.
 *
 * REQUIRES, here and below: no text is null, and each has 256 characters or a zero before.
 */
class IMPORT_COMMON_API CIFC2X3Property : public IFC2X3Property {
public:
    /**
     * A property with a single value, of which every field is stored as given.
     * @param name          name of the property
     * @param description   its description
     * @param type          says which of the values counts
     * @param boolValue     the flag
     * @param logicalValue  the three-state value
     * @param intValue      the 32-bit integer
     * @param int64Value    the 64-bit integer
     * @param realValue     the real number
     * @param text          the text
     */
    CIFC2X3Property(const wchar_t* name, const wchar_t* description, IFC2X3PropertySingleValue::ValueType_t type,
                    bool boolValue, IFC2X3PropertySingleValue::Logical_s logicalValue, int intValue,
                    long long int64Value, double realValue, const wchar_t* text)
        : IFC2X3Property(name, description, type, boolValue, logicalValue, intValue, int64Value, realValue, text) {}

    /**
     * A property with a nested set, which is copied.
     * @param name         name of the property
     * @param description  its description
     * @param usageName    what the nested set is used for
     * @param set          the nested set
     */
    CIFC2X3Property(const wchar_t* name, const wchar_t* description, const wchar_t* usageName,
                    const IFC2X3PropertySet& set)
        : IFC2X3Property(name, description, usageName, set) {}
};

/**
 * A property with a text.
 * @param name         name of the property
 * @param description  its description
 * @param value        the text
 * @return the property
 */
IMPORT_COMMON_API IFC2X3Property createPropertySingleValueString(const wchar_t* name, const wchar_t* description,
                                                                 const wchar_t* value);

/**
 * A property with a flag.
 * @param name         name of the property
 * @param description  its description
 * @param value        the flag
 * @return the property
 */
IMPORT_COMMON_API IFC2X3Property createPropertySingleValueBoolean(const wchar_t* name, const wchar_t* description,
                                                                  bool value);

/**
 * A property with a three-state value.
 * @param name         name of the property
 * @param description  its description
 * @param value        the state
 * @return the property
 */
IMPORT_COMMON_API IFC2X3Property createPropertySingleValueLogical(const wchar_t* name, const wchar_t* description,
                                                                  IFC2X3PropertySingleValue::Logical_s value);

/**
 * A property with a 32-bit integer.
 * @param name         name of the property
 * @param description  its description
 * @param type  ValueType_Integer; with any other type the value is dropped, the property is of ValueType_Default, and
 *              the first time in a process an attached debugger stops
 * @param value        the number
 * @return the property
 */
IMPORT_COMMON_API IFC2X3Property createPropertySingleValueInteger(const wchar_t* name, const wchar_t* description,
                                                                  IFC2X3PropertySingleValue::ValueType_t type,
                                                                  int value);

/**
 * A property with a 64-bit integer.
 * @param name         name of the property
 * @param description  its description
 * @param type  ValueType_Integer64; any other is treated as createPropertySingleValueInteger does
 * @param value        the number
 * @return the property
 */
IMPORT_COMMON_API IFC2X3Property createPropertySingleValueInteger64(const wchar_t* name, const wchar_t* description,
                                                                    IFC2X3PropertySingleValue::ValueType_t type,
                                                                    long long value);

/**
 * A property with a real number.
 * @param name         name of the property
 * @param description  its description
 * @param type  a real-valued type; any other is treated as createPropertySingleValueInteger does
 * @param value        the number
 * @return the property
 */
IMPORT_COMMON_API IFC2X3Property createPropertySingleValueReal(const wchar_t* name, const wchar_t* description,
                                                               IFC2X3PropertySingleValue::ValueType_t type,
                                                               double value);

/**
 * A property with a nested set, which is copied.
 * @param name         name of the property
 * @param description  its description
 * @param usageName    what the nested set is used for
 * @param set          the nested set
 * @return the property
 */
IMPORT_COMMON_API IFC2X3Property createPropertyComplex(const wchar_t* name, const wchar_t* description,
                                                       const wchar_t* usageName, const IFC2X3PropertySet& set);

} // namespace ImportCommon
