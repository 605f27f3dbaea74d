/**
 * @file DescribeProperties.h
 * Properties as text: everything that a caller can read of them, for comparison.
 */
#pragma once

#include <ImportCommon/IFC2X3Property.h>

#include <sstream>
#include <string>

inline std::wstring describe(const ImportCommon::IFC2X3PropertySingleValue& value) {
    using Value = ImportCommon::IFC2X3PropertySingleValue;
    const auto type = value.getValueType();
    std::wostringstream out;
    out.precision(17);
    out << static_cast<int>(type) << L':';
    if (Value::isRealType(type)) {
        out << value.getRealValue();
    } else if (type == Value::ValueType_String) {
        out << value.getStringValue();
    } else if (type == Value::ValueType_Logical) {
        out << static_cast<int>(value.getLogicalValue());
    } else { // the getters of other types give 0
        out << value.getInt64Value() + value.getIntValue() + (value.getBooleanValue() ? 1 : 0);
    }
    return out.str();
}

/** Such as `Width/of the door=5:0.9;`, and for a nested set `Size/=usage{...};`. */
inline std::wstring describe(const ImportCommon::IFC2X3PropertySet& set) {
    using ImportCommon::IFC2X3Property;
    std::wstring out;
    for (unsigned int i = 0; i < set.getCount(); ++i) {
        const IFC2X3Property& property = set.getProperty(i);
        out.append(property.getName()).append(L"/").append(property.getDescription()).append(L"=");
        if (property.getType() == IFC2X3Property::Type_SingleValue) {
            out += describe(property.getPropertySingleValue());
        } else if (property.getType() == IFC2X3Property::Type_Complex) {
            const auto& complex = property.getPropertyComplex();
            out.append(complex.getUsageName()).append(L"{").append(describe(complex.getPropertySet())).append(L"}");
        }
        out += L';';
    }
    return out;
}

inline std::wstring describe(const ImportCommon::IFC2X3Property& property) {
    ImportCommon::IFC2X3PropertySet set;
    set.addProperty(property);
    return describe(set);
}
