#include "PropertyModel.h"

#include "CommonSets.h"
#include "Streams.h"
#include "WideText.h"

#include <ImportCommon/CIFC2X3Property.h>
#include <ImportCommon/StringOperations.h>

#include <algorithm>
#include <limits>
#include <new>

using namespace ImportCommon;

namespace {

using Value = IFC2X3PropertySingleValue;
using PropertyPointers = std::vector<const IfcProperty*>;
constexpr double pi = 3.141592653589793;

IFC2X3Property integerProperty(const wchar_t* name, const wchar_t* description, long long value) {
    if (value >= std::numeric_limits<int>::min() && value <= std::numeric_limits<int>::max()) {
        return createPropertySingleValueInteger(name, description, Value::ValueType_Integer, static_cast<int>(value));
    }
    return createPropertySingleValueInteger64(name, description, Value::ValueType_Integer64, value);
}

IFC2X3PropertySet toPropertySet(const PropertyPointers& properties);

IFC2X3Property toProperty(const IfcProperty& property) {
    const std::wstring nameText = wideText(property.name);
    const std::wstring descriptionText = wideText(property.description);
    const wchar_t* name = nameText.c_str();
    const wchar_t* description = descriptionText.c_str();
    if (property.isComplex) {
        PropertyPointers nested;
        for (const IfcProperty& inner : property.nested) {
            nested.push_back(&inner);
        }
        return createPropertyComplex(name, description, wideText(property.usageName).c_str(), toPropertySet(nested));
    }

    const IfcValue& value = property.value;
    const auto real = [&](Value::ValueType_t type, double number) {
        return createPropertySingleValueReal(name, description, type, number);
    };
    switch (value.kind) {
    case IfcValue::Kind::Boolean:
        return createPropertySingleValueBoolean(name, description, value.flag);
    case IfcValue::Kind::Logical:
        return createPropertySingleValueLogical(name, description,
                                                value.unknown ? Value::Logical_Unknown
                                                : value.flag  ? Value::Logical_True
                                                              : Value::Logical_False);
    case IfcValue::Kind::Integer:
        return integerProperty(name, description, value.integer);
    case IfcValue::Kind::Real:
        return real(Value::ValueType_Real, value.number);
    case IfcValue::Kind::Length:
        return real(Value::ValueType_Length, value.number);
    case IfcValue::Kind::Angle:
        return real(Value::ValueType_PlaneAngle, value.number / 180.0 * pi);
    case IfcValue::Kind::Text:
    case IfcValue::Kind::Absent:
        break;
    }
    return createPropertySingleValueString(name, description, wideText(value.text).c_str());
}

IFC2X3PropertySet toPropertySet(const PropertyPointers& properties) {
    IFC2X3PropertySet set;
    for (const IfcProperty* property : properties) {
        set.addProperty(toProperty(*property));
    }
    if (set.getCount() != properties.size()) {
        throw std::bad_alloc(); // a set that can't grow drops properties silently
    }
    return set;
}

void identify(IFC2X3_PSet_Custom_s& set, const IfcPropertySet& source) {
    std::fill(std::begin(set.globalId), std::end(set.globalId), '0');
    if (source.globalId.size() == sizeof set.globalId) {
        std::copy(source.globalId.begin(), source.globalId.end(), set.globalId);
    }
}

IFC2X3_PSet_Custom_s customSet(const IfcPropertySet& source, const PropertyPointers& properties) {
    IFC2X3_PSet_Custom_s set;
    identify(set, source);
    const std::wstring name = wideText(source.name);
    const std::wstring description = wideText(source.description);
    std::copy_n(name.data(), std::min<std::size_t>(name.size(), 256), set.name);
    std::copy_n(description.data(), std::min<std::size_t>(description.size(), 256), set.description);
    set.properties = toPropertySet(properties);
    return set;
}

const IFC2X3Property& propertyNamed(std::string_view name, const IFC2X3PropertySet& set) {
    const std::wstring wanted = wideText(name);
    unsigned int i = 0;
    while (i < set.getCount() && wanted != set.getProperty(i).getName()) {
        ++i;
    }
    return set.getProperty(i);
}

/** Writes a set in parts of no more than a few megabytes, which is what a thousand properties take in memory. */
void writeCustomSets(const Product& product, const IfcPropertySet& source, const PropertyPointers& properties,
                     bool isObject, Streams& streams) {
    constexpr std::size_t maxPart = 1000;
    auto begin = properties.begin();
    do {
        const auto end = begin + std::min<std::ptrdiff_t>(maxPart, properties.end() - begin);
        const PropertyPointers part(begin, end);
        const IFC2X3_PSet_Custom_s custom = customSet(source, part);
        streams.propertySet(product, isObject, "custom", custom, source, source.name);
        for (unsigned int i = 0; i < part.size(); ++i) {
            streams.property(custom.properties.getProperty(i), *part[i], part[i]->name);
        }
        begin = end;
    } while (begin != properties.end());
}

} // namespace

void writeProperties(const Product& product, const std::vector<IfcPropertySet>& sets, bool isObject, Streams& streams) {
    for (const IfcPropertySet& source : sets) {
        PropertyPointers others;
        std::optional<CommonSet> common = commonSetOf(product.className, source);
        for (const IfcProperty& property : source.properties) {
            if (!common || !common->holds(property)) {
                others.push_back(&property);
            }
        }

        if (common) {
            identify(common->set, source);
            const std::string name = StringOperations::ConvertToCurrentLocale(std::wstring(common->set.name));
            streams.propertySet(product, isObject, common->record, common->set, source, name);
            for (const CommonSet::Held& held : common->held) {
                streams.property(propertyNamed(held.name, common->set.properties), *held.property, held.name);
            }
        }
        if (!common || !others.empty()) {
            writeCustomSets(product, source, others, isObject, streams);
        }
    }
}
