#include <PluginKit/Number.h>
#include <PluginKit/StreamWriter.h>
#include <PluginKit/Utf8.h>

#include <cmath>

using ImportCommon::IFC2X3_PSet_Custom_s;
using ImportCommon::IFC2X3Property;
using ImportCommon::IFC2X3PropertySet;
using ImportCommon::IFC2X3PropertySingleValue;

namespace PluginKit {

namespace {

PropertyLine propertyOf(std::string name, const char* type, std::string value) {
    PropertyLine line;
    line.name = std::move(name);
    line.type = type;
    line.value = std::move(value);
    return line;
}

const char* textOf(bool value) {
    return value ? "true" : "false";
}

/** Type and value of a line for a value of the library. */
void setValue(PropertyLine& line, const IFC2X3PropertySingleValue& value) {
    using Value = IFC2X3PropertySingleValue;
    const auto set = [&line](const char* type, std::string text) {
        line.type = type;
        line.value = std::move(text);
    };
    switch (value.getValueType()) {
    case Value::ValueType_String:
        set("text", toUtf8(value.getStringValue(), Value::TextSize));
        break;
    case Value::ValueType_Boolean:
        set("boolean", textOf(value.getBooleanValue()));
        break;
    case Value::ValueType_Logical:
        set("logical", value.getLogicalValue() == Value::Logical_Unknown
                           ? "unknown"
                           : textOf(value.getLogicalValue() == Value::Logical_True));
        break;
    case Value::ValueType_Integer:
        set("integer", std::to_string(value.getIntValue()));
        break;
    case Value::ValueType_Integer64:
        set("integer", std::to_string(value.getInt64Value()));
        break;
    case Value::ValueType_Length:
        set("length", numberText(value.getRealValue()));
        break;
    case Value::ValueType_PlaneAngle:
        set("angle", numberText(value.getRealValue()));
        break;
    default:
        set("real", numberText(value.getRealValue()));
    }
}

PropertyLine lineOf(const IFC2X3Property& property, std::size_t depth) {
    constexpr std::size_t size = IFC2X3PropertySingleValue::TextSize;
    PropertyLine line;
    line.depth = depth;
    line.name = toUtf8(property.getName(), size);
    line.description = toUtf8(property.getDescription(), size);
    if (property.getType() == IFC2X3Property::Type_Complex) {
        line.type = "complex";
        line.value = toUtf8(property.getPropertyComplex().getUsageName(), size);
    } else {
        setValue(line, property.getPropertySingleValue());
    }
    return line;
}

template <typename Number>
bool isNumber(std::string_view text, Number (*read)(std::string_view)) {
    try {
        return std::isfinite(static_cast<double>(read(text)));
    } catch (const std::runtime_error&) {
        return false;
    }
}

} // namespace

std::string faultOf(const PropertyLine& line) {
    const bool isState = line.value == "true" || line.value == "false";
    const bool isRight = line.type == "text" || line.type == "complex" ? true
                         : line.type == "boolean"                      ? isState
                         : line.type == "logical"                      ? isState || line.value == "unknown"
                         : line.type == "integer"                      ? isNumber(line.value, toLong)
                         : line.type == "real" || line.type == "length" || line.type == "angle"
                             ? isNumber(line.value, toDouble)
                             : false;
    return isRight ? "" : "'" + printable(line.value) + "' is not a value of type '" + printable(line.type) + "'";
}

PropertyLine textProperty(std::string name, std::string value) {
    return propertyOf(std::move(name), "text", std::move(value));
}

PropertyLine booleanProperty(std::string name, bool value) {
    return propertyOf(std::move(name), "boolean", textOf(value));
}

PropertyLine integerProperty(std::string name, long long value) {
    return propertyOf(std::move(name), "integer", std::to_string(value));
}

PropertyLine realProperty(std::string name, double value) {
    return propertyOf(std::move(name), "real", numberText(value));
}

PropertyLine complexProperty(std::string name, std::string usageName) {
    return propertyOf(std::move(name), "complex", std::move(usageName));
}

void StreamWriter::propertySet(const SetLine& owner, const IFC2X3_PSet_Custom_s& set, const IsGiven& isGiven) {
    SetLine line = owner;
    const std::string_view globalId(set.globalId, sizeof set.globalId);
    line.setGlobalId = globalId.substr(0, globalId.find('\0'));
    line.name = toUtf8(set.name, sizeof set.name / sizeof set.name[0]);
    line.description = toUtf8(set.description, sizeof set.description / sizeof set.description[0]);
    this->set(line);

    // Sets within sets by a list of what is still to come: they nest as deep as a file says.
    struct Place {
        const IFC2X3PropertySet* set;
        unsigned int next;
    };
    std::vector<Place> places = {{&set.properties, 0}};
    while (!places.empty()) {
        Place& place = places.back();
        if (place.next == place.set->getCount()) {
            places.pop_back();
            continue;
        }
        const std::size_t depth = places.size() - 1;
        const IFC2X3Property& current = place.set->getProperty(place.next++);
        if (current.getType() == IFC2X3Property::Type_Null) {
            continue;
        }
        const PropertyLine written = lineOf(current, depth);
        if (depth == 0 && isGiven && !isGiven(written.name)) {
            continue;
        }
        property(written);
        if (written.type == "complex") {
            places.push_back({&current.getPropertyComplex().getPropertySet(), 0});
        }
    }
}

} // namespace PluginKit
