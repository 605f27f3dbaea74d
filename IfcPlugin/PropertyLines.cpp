#include "PropertyLines.h"

#include "CommonSets.h"

#include <PluginKit/Number.h>
#include <PluginKit/Utf8.h>

#include <iterator>

using namespace IfcReader;
using namespace PluginKit;

namespace {

constexpr double pi = 3.141592653589793;

void setValue(PropertyLine& line, const IfcValue& value) {
    switch (value.kind) {
    case IfcValue::Kind::Boolean:
        line.type = "boolean";
        line.value = value.flag ? "true" : "false";
        return;
    case IfcValue::Kind::Logical:
        line.type = "logical";
        line.value = value.unknown ? "unknown" : value.flag ? "true" : "false";
        return;
    case IfcValue::Kind::Integer:
        line.type = "integer";
        line.value = std::to_string(value.integer);
        return;
    case IfcValue::Kind::Real:
    case IfcValue::Kind::Length:
        line.type = value.kind == IfcValue::Kind::Real ? "real" : "length";
        line.value = numberText(value.number);
        line.factor = value.factor;
        return;
    case IfcValue::Kind::Angle:
        line.type = "angle";
        line.value = numberText(value.number / 180.0 * pi);
        return;
    case IfcValue::Kind::Text:
    case IfcValue::Kind::Absent:
        line.type = "text";
        line.value = value.text;
    }
}

/** With the properties inside of it; the reader lets them nest a few levels deep. */
void writeProperty(const IfcProperty& property, std::string_view nameInSet, std::size_t depth, StreamWriter& writer) {
    PropertyLine line;
    line.depth = depth;
    line.name = nameInSet;
    line.description = property.description;
    line.nameInFile = nameInSet == property.name ? "" : property.name;
    if (property.isComplex) {
        line.type = "complex";
        line.value = property.usageName;
    } else {
        setValue(line, property.value);
    }
    writer.property(line);
    for (const IfcProperty& inner : property.nested) {
        writeProperty(inner, inner.name, depth + 1, writer);
    }
}

} // namespace

void writeProperties(const Product& product, const SetLine& owner, StreamWriter& writer) {
    for (const IfcPropertySet& source : product.properties) {
        SetLine line = owner;
        line.setGlobalId = source.globalId;
        line.name = source.name;
        line.description = source.description;
        const std::optional<CommonSet> common = commonSetOf(product.className, source);
        if (common) {
            line.form = common->record;
            line.name = toUtf8(common->set.name, std::size(common->set.name));
            line.nameInFile = line.name == source.name ? "" : source.name;
            writer.set(line);
            for (const CommonSet::Held& held : common->held) {
                writeProperty(*held.property, held.name, 0, writer);
            }
            if (common->held.size() == source.properties.size()) {
                continue;
            }
        }
        line.form = "custom";
        line.name = source.name;
        line.nameInFile.clear();
        writer.set(line);
        for (const IfcProperty& property : source.properties) {
            if (!common || !common->holds(property)) {
                writeProperty(property, property.name, 0, writer);
            }
        }
    }
}
