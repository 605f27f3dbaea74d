#include "CommonSets.h"

#include <ImportCommon/IFC2X3_PSet_RampCommon.h>
#include <ImportCommon/IFC2X3_PSet_WallCommon.h>

#include <PluginKit/Utf8.h>

#include <algorithm>
#include <functional>

using namespace ImportCommon;

namespace {

using Kind = IfcValue::Kind;

/** A property's name in the file, and that in the set when it is another one. */
struct Name {
    Name(const char* both) : inFile(both), inSet(both) {}
    Name(const char* file, const char* set) : inFile(file), inSet(set) {}

    std::string_view inFile;
    std::string_view inSet;
};

/** A property of a record, and the field or fields that it fills. */
template <typename Record>
class Field {
public:
    Field(Name fieldName, wchar_t (Record::*text)[256])
        : Field(fieldName, {Kind::Text}, nullptr,
                [=](Record& record, const IfcValue& value) { PluginKit::setText(record.*text, value.text); }) {}

    Field(Name fieldName, bool Record::*flag, bool Record::*present = nullptr)
        : Field(fieldName, {Kind::Boolean}, present,
                [=](Record& record, const IfcValue& value) { record.*flag = value.flag; }) {}

    /** A number that measures one kind of thing. */
    Field(Name fieldName, Kind kind, double Record::*number, bool Record::*present)
        : Field(fieldName, {kind}, present,
                [=](Record& record, const IfcValue& value) { record.*number = value.number; }) {}

    /** A length, or an angle in degrees. */
    Field(Name fieldName, double Record::*number, int Record::*kind, bool Record::*present)
        : Field(fieldName, {Kind::Length, Kind::Angle}, present, [=](Record& record, const IfcValue& value) {
              record.*number = value.number;
              record.*kind = value.kind == Kind::Length ? 1 : 2;
          }) {}

    /** Whether the value went into the record: it has to be of a kind that the conversion gives it again. */
    bool fill(Record& record, const IfcValue& value) const {
        if (std::find(kinds_.begin(), kinds_.end(), value.kind) == kinds_.end()) {
            return false;
        }
        set_(record, value);
        if (present_ != nullptr) {
            record.*present_ = true;
        }
        return true;
    }

    Name name;

private:
    Field(Name fieldName, std::vector<Kind> kinds, bool Record::*present,
          std::function<void(Record&, const IfcValue&)> set)
        : name(fieldName), kinds_(std::move(kinds)), present_(present), set_(std::move(set)) {}

    std::vector<Kind> kinds_;
    bool Record::*present_;
    std::function<void(Record&, const IfcValue&)> set_;
};

template <typename Record>
using Fields = std::vector<Field<Record>>;

/** The fields that the conversion of a record reads. */
template <typename Record>
const Fields<Record>& fieldsOf();

template <>
const Fields<IFC2X3_PSet_RampCommon_s>& fieldsOf() {
    using R = IFC2X3_PSet_RampCommon_s;
    static const Fields<R> fields = {{"Reference", &R::Reference},
                                     {"FireRating", &R::FireRating},
                                     {{"RequiredSlope", "Slope"}, &R::Slope, &R::SlopeKind, &R::hasSlope},
                                     {"RequiredHeadroom", Kind::Length, &R::RequiredHeadroom, &R::hasRequiredHeadroom},
                                     {"HasNonSkidSurface", &R::HasNonSkidSurface, &R::hasHasNonSkidSurface},
                                     {{"HandicapAccessible", "IsHandicapAccessible"}, &R::IsHandicapAccessible},
                                     {"IsExternal", &R::IsExternal},
                                     {"FireExit", &R::FireExit}};
    return fields;
}

template <>
const Fields<IFC2X3_PSet_WallCommon_s>& fieldsOf() {
    using R = IFC2X3_PSet_WallCommon_s;
    static const Fields<R> fields = {
        {"Reference", &R::Reference},
        {"AcousticRating", &R::AcousticRating},
        {"FireRating", &R::FireRating},
        {"SurfaceSpreadOfFlame", &R::SurfaceSpreadOfFlame},
        {"ThermalTransmittance", Kind::Real, &R::ThermalTransmittance, &R::hasThermalTransmittance},
        {"Combustible", &R::Combustible, &R::hasCombustible},
        {"ExtendToStructure", &R::ExtendToStructure, &R::hasExtendToStructure},
        {"Compartmentation", &R::Compartmentation, &R::hasCompartmentation}};
    return fields;
}

template <typename Record>
CommonSet convert(std::string_view recordName, const IfcPropertySet& set) {
    const Fields<Record>& fields = fieldsOf<Record>();
    Record record{};
    std::vector<CommonSet::Held> held;
    for (const IfcProperty& property : set.properties) {
        const auto field = std::find_if(fields.begin(), fields.end(), [&](const Field<Record>& candidate) {
            return candidate.name.inFile == property.name;
        });
        const auto isTaken = [&](const CommonSet::Held& other) { return other.name == field->name.inSet; };
        if (field == fields.end() || std::any_of(held.begin(), held.end(), isTaken)) {
            continue;
        }
        if (field->fill(record, property.value)) {
            held.push_back({field->name.inSet, &property});
        }
    }
    return {recordName, record, std::move(held)};
}

struct Converter {
    std::string_view className;
    std::string_view setName;
    std::string_view recordName;
    CommonSet (*convert)(std::string_view, const IfcPropertySet&);
};

constexpr Converter converters[] = {
    {"IFCRAMP", "Pset_RampCommon", "IFC2X3_PSet_RampCommon", convert<IFC2X3_PSet_RampCommon_s>},
    {"IFCWALL", "Pset_WallCommon", "IFC2X3_PSet_WallCommon", convert<IFC2X3_PSet_WallCommon_s>},
    {"IFCWALLSTANDARDCASE", "Pset_WallCommon", "IFC2X3_PSet_WallCommon", convert<IFC2X3_PSet_WallCommon_s>}};

} // namespace

std::optional<CommonSet> commonSetOf(std::string_view className, const IfcPropertySet& set) {
    for (const Converter& converter : converters) {
        if (converter.setName == set.name && converter.className == className) {
            return converter.convert(converter.recordName, set);
        }
    }
    return std::nullopt;
}
