#include "properties/Values.h"

#include "step/StepText.h"

namespace IfcReader {

namespace {

using Kind = IfcValue::Kind;

IfcValue textValue(std::string text) {
    IfcValue value;
    value.kind = Kind::Text;
    value.text = std::move(text);
    return value;
}

IfcValue stateValue(std::string_view state, bool isLogical) {
    IfcValue value;
    value.kind = isLogical || state == "U" ? Kind::Logical : Kind::Boolean;
    value.flag = state == "T";
    value.unknown = state == "U";
    return value;
}

bool isState(std::string_view word) {
    return word == "T" || word == "F" || word == "U";
}

Kind kindOfNumber(std::string_view type) {
    if (type == "IFCLENGTHMEASURE" || type == "IFCPOSITIVELENGTHMEASURE") {
        return Kind::Length;
    }
    if (type == "IFCPLANEANGLEMEASURE" || type == "IFCPOSITIVEPLANEANGLEMEASURE") {
        return Kind::Angle;
    }
    if (type == "IFCINTEGER" || type == "IFCCOUNTMEASURE" || type == "IFCTIMESTAMP") {
        return Kind::Integer;
    }
    return Kind::Real;
}

/** The number of a type; text when @p argument is no number or too large for one. */
IfcValue numberValue(std::string_view type, std::string_view argument, const Units& units) {
    IfcValue value;
    value.kind = kindOfNumber(type);
    const auto integer = value.kind == Kind::Integer ? stepInteger(argument) : std::nullopt;
    const auto real = integer ? std::nullopt : stepReal(argument);
    if (!integer && !real) {
        return textValue(std::string(argument));
    }
    value.integer = integer.value_or(0);
    value.number = real.value_or(0.0);
    if (value.kind == Kind::Integer && !integer) {
        value.kind = Kind::Real;
    }
    if (value.kind == Kind::Real || value.kind == Kind::Length) {
        value.factor = units.factorOf(unitTypeOf(type));
    }
    return value;
}

} // namespace

IfcValue valueOf(std::string_view argument, const Units& units) {
    std::string_view type;
    if (const auto typed = stepTyped(argument)) {
        type = typed->keyword;
        argument = typed->value;
    }
    if (argument.empty() || argument[0] == '$' || argument[0] == '*' || argument[0] == '#') {
        return {};
    }
    if (argument[0] == '\'') {
        return textValue(stepText(argument));
    }
    if (argument[0] == '(') {
        return listValueOf(argument);
    }
    const std::string_view word = stepEnumeration(argument);
    if (isState(word)) {
        return stateValue(word, type == "IFCLOGICAL");
    }
    return word.empty() ? numberValue(type, argument, units) : textValue(std::string(word));
}

IfcValue listValueOf(std::string_view list) {
    if (list.empty() || list[0] != '(') {
        return {};
    }
    IfcValue value = textValue("");
    StepArguments members = listMembers(list);
    for (auto member = members.next(); member; member = members.next()) {
        value.text += (value.text.empty() ? "" : ", ") + valueText(*member);
    }
    return value;
}

std::string valueText(std::string_view argument) {
    if (const auto typed = stepTyped(argument)) {
        argument = typed->value;
    }
    if (stepQuoted(argument)) {
        return stepText(argument);
    }
    const std::string_view word = stepEnumeration(argument);
    if (!word.empty()) {
        return std::string(word);
    }
    if (argument == "$") {
        return "";
    }
    return std::string(argument.substr(0, argument.find_first_of(" \t\r\n/")));
}

} // namespace IfcReader
