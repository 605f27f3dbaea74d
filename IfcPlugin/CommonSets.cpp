#include "CommonSets.h"

#include "WideText.h"

#include <ImportCommon/IFC2X3_PSet_BeamCommon.h>
#include <ImportCommon/IFC2X3_PSet_ColumnCommon.h>
#include <ImportCommon/IFC2X3_PSet_CurtainWallCommon.h>
#include <ImportCommon/IFC2X3_PSet_DoorCommon.h>
#include <ImportCommon/IFC2X3_PSet_DoorWindowGlazingType.h>
#include <ImportCommon/IFC2X3_PSet_DoorWindowShadingType.h>
#include <ImportCommon/IFC2X3_PSet_MemberCommon.h>
#include <ImportCommon/IFC2X3_PSet_RailingCommon.h>
#include <ImportCommon/IFC2X3_PSet_RampCommon.h>
#include <ImportCommon/IFC2X3_PSet_RoofCommon.h>
#include <ImportCommon/IFC2X3_PSet_SlabCommon.h>
#include <ImportCommon/IFC2X3_PSet_StairCommon.h>
#include <ImportCommon/IFC2X3_PSet_WallCommon.h>
#include <ImportCommon/IFC2X3_PSet_WindowCommon.h>

#include <algorithm>
#include <functional>

using namespace ImportCommon;

namespace {

using Kind = IfcValue::Kind;
constexpr double pi = 3.141592653589793;

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
        : Field(fieldName, {Kind::Text}, nullptr, [=](Record& record, const IfcValue& value) {
              const std::wstring wide = wideText(value.text);
              std::copy_n(wide.data(), std::min<std::size_t>(wide.size(), 256), record.*text);
          }) {}

    Field(Name fieldName, bool Record::*flag, bool Record::*present = nullptr)
        : Field(fieldName, {Kind::Boolean}, present,
                [=](Record& record, const IfcValue& value) { record.*flag = value.flag; }) {}

    Field(Name fieldName, int Record::*count, bool Record::*present = nullptr)
        : Field(fieldName, {Kind::Integer}, present,
                [=](Record& record, const IfcValue& value) { record.*count = static_cast<int>(value.integer); }) {}

    /** A number that measures one kind of thing; an angle is kept in radians. */
    Field(Name fieldName, Kind kind, double Record::*number, bool Record::*present)
        : Field(fieldName, {kind}, present, [=](Record& record, const IfcValue& value) {
              record.*number = kind == Kind::Angle ? value.number / 180.0 * pi : value.number;
          }) {}

    /** A length, or an angle in degrees. */
    Field(Name fieldName, double Record::*number, int Record::*kind, bool Record::*present)
        : Field(fieldName, {Kind::Length, Kind::Angle}, present, [=](Record& record, const IfcValue& value) {
              record.*number = value.number;
              record.*kind = value.kind == Kind::Length ? 1 : 2;
          }) {}

    /** Whether the value went into the record: it has to be of a kind that the conversion gives it again. */
    bool fill(Record& record, const IfcValue& value) const {
        if (std::find(kinds_.begin(), kinds_.end(), value.kind) == kinds_.end() ||
            value.integer != static_cast<int>(value.integer)) {
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
const Fields<IFC2X3_PSet_BeamCommon_s>& fieldsOf() {
    using R = IFC2X3_PSet_BeamCommon_s;
    static const Fields<R> fields = {{"Reference", &R::Reference},
                                     {"Span", &R::Span, &R::SpanKind, &R::hasSpan},
                                     {"Slope", &R::Slope, &R::SlopeKind, &R::hasSlope},
                                     {"FireRating", &R::FireRating},
                                     {"IsExternal", &R::IsExternal},
                                     {{"LoadBearing", "IsLoadBearing"}, &R::IsLoadBearing}};
    return fields;
}

template <>
const Fields<IFC2X3_PSet_ColumnCommon_s>& fieldsOf() {
    using R = IFC2X3_PSet_ColumnCommon_s;
    static const Fields<R> fields = {{"Reference", &R::Reference},
                                     {"Slope", &R::Slope, &R::SlopeKind, &R::hasSlope},
                                     {"FireRating", &R::FireRating},
                                     {"IsExternal", &R::IsExternal},
                                     {{"LoadBearing", "IsLoadBearing"}, &R::IsLoadBearing}};
    return fields;
}

template <>
const Fields<IFC2X3_PSet_CurtainWallCommon_s>& fieldsOf() {
    using R = IFC2X3_PSet_CurtainWallCommon_s;
    static const Fields<R> fields = {
        {"Reference", &R::Reference},
        {"FireRating", &R::FireRating},
        {"SurfaceSpreadOfFlame", &R::SurfaceSpreadOfFlame},
        {"ThermalTransmittance", Kind::Real, &R::ThermalTransmittance, &R::hasThermalTransmittance},
        {"Combustible", &R::Combustible, &R::hasCombustible},
        {"IsExternal", &R::IsExternal}};
    return fields;
}

/** Without "FireExit": the set says of it what the record says of "IsExternal". */
template <>
const Fields<IFC2X3_PSet_DoorCommon_s>& fieldsOf() {
    using R = IFC2X3_PSet_DoorCommon_s;
    static const Fields<R> fields = {
        {"Reference", &R::Reference},
        {"FireRating", &R::FireRating},
        {"AcousticRating", &R::AcousticRating},
        {"SecurityRating", &R::SecurityRating},
        {"Infiltration", Kind::Real, &R::Infiltration, &R::hasInfiltration},
        {"ThermalTransmittance", Kind::Real, &R::ThermalTransmittance, &R::hasThermalTransmittance},
        {"GlazingAreaFraction", Kind::Real, &R::GlazingAreaFraction, &R::hasGlazingAreaFraction},
        {"HandicapAccessible", &R::HandicapAccessible, &R::hasHandicapAccessible},
        {"SelfClosing", &R::SelfClosing},
        {"SmokeStop", &R::SmokeStop},
        {"IsExternal", &R::IsExternal}};
    return fields;
}

template <>
const Fields<IFC2X3_PSet_DoorWindowGlazingType_s>& fieldsOf() {
    using R = IFC2X3_PSet_DoorWindowGlazingType_s;
    static const Fields<R> fields = {
        {"FillGas", &R::FillGas},
        {"GlassColor", &R::GlassColor},
        {"GlassThickness1", Kind::Length, &R::GlassThickness1, &R::hasGlassThickness1},
        {"GlassThickness2", Kind::Length, &R::GlassThickness2, &R::hasGlassThickness2},
        {"GlassThickness3", Kind::Length, &R::GlassThickness3, &R::hasGlassThickness3},
        {"IsTempered", &R::IsTempered, &R::hasIsTempered},
        {"IsLaminated", &R::IsLaminated, &R::hasIsLaminated},
        {"IsCoated", &R::IsCoated, &R::hasIsCoated},
        {"IsWired", &R::IsWired, &R::hasIsWired},
        {"Translucency", Kind::Real, &R::Translucency, &R::hasTranslucency},
        {"Reflectivity", Kind::Real, &R::Reflectivity, &R::hasReflectivity},
        {"BeamRadiationTransmittance", Kind::Real, &R::BeamRadiationTransmittance, &R::hasBeamRadiationTransmittance},
        {"SolarHeatGainTransmittance", Kind::Real, &R::SolarHeatGainTransmittance, &R::hasSolarHeatGainTransmittance},
        {"ThermalTransmittanceSummer", Kind::Real, &R::ThermalTransmittanceSummer, &R::hasThermalTransmittanceSummer},
        {"ThermalTransmittanceWinter", Kind::Real, &R::ThermalTransmittanceWinter, &R::hasThermalTransmittanceWinter},
        {"GlassLayers", &R::GlassLayers}};
    return fields;
}

template <>
const Fields<IFC2X3_PSet_DoorWindowShadingType_s>& fieldsOf() {
    using R = IFC2X3_PSet_DoorWindowShadingType_s;
    static const Fields<R> fields = {
        {"ExternalShadingCoefficient", Kind::Real, &R::ExternalShadingCoefficient, &R::hasExternalShadingCoefficient},
        {"InternalShadingCoefficient", Kind::Real, &R::InternalShadingCoefficient, &R::hasInternalShadingCoefficient},
        {"InsetShadingCoefficient", Kind::Real, &R::InsetShadingCoefficient, &R::hasInsetShadingCoefficient}};
    return fields;
}

template <>
const Fields<IFC2X3_PSet_MemberCommon_s>& fieldsOf() {
    using R = IFC2X3_PSet_MemberCommon_s;
    static const Fields<R> fields = {{"Reference", &R::Reference},
                                     {"FireRating", &R::FireRating},
                                     {"Span", &R::Span, &R::SpanKind, &R::hasSpan},
                                     {"Slope", &R::Slope, &R::SlopeKind, &R::hasSlope},
                                     {"IsExternal", &R::IsExternal},
                                     {{"LoadBearing", "IsLoadBearing"}, &R::IsLoadBearing}};
    return fields;
}

template <>
const Fields<IFC2X3_PSet_RailingCommon_s>& fieldsOf() {
    using R = IFC2X3_PSet_RailingCommon_s;
    static const Fields<R> fields = {{"Reference", &R::Reference},
                                     {"Height", Kind::Length, &R::Height, &R::hasHeight},
                                     {"Diameter", Kind::Length, &R::Diameter, &R::hasDiameter},
                                     {"IsExternal", &R::IsExternal}};
    return fields;
}

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
const Fields<IFC2X3_PSet_RoofCommon_s>& fieldsOf() {
    using R = IFC2X3_PSet_RoofCommon_s;
    static const Fields<R> fields = {
        {"Reference", &R::Reference}, {"FireRating", &R::FireRating}, {"IsExternal", &R::IsExternal}};
    return fields;
}

template <>
const Fields<IFC2X3_PSet_SlabCommon_s>& fieldsOf() {
    using R = IFC2X3_PSet_SlabCommon_s;
    static const Fields<R> fields = {
        {"Reference", &R::Reference},
        {"AcousticRating", &R::AcousticRating},
        {"SurfaceSpreadOfFlame", &R::SurfaceSpreadOfFlame},
        {"FireRating", &R::FireRating},
        {"Compartmentation", &R::Compartmentation, &R::hasCompartmentation},
        {"Combustible", &R::Combustible, &R::hasCombustible},
        {"ThermalTransmittance", Kind::Real, &R::ThermalTransmittance, &R::hasThermalTransmittance},
        {"PitchAngle", Kind::Angle, &R::PitchAngle, &R::hasPitchAngle},
        {"IsExternal", &R::IsExternal},
        {{"LoadBearing", "IsLoadBearing"}, &R::IsLoadBearing}};
    return fields;
}

template <>
const Fields<IFC2X3_PSet_StairCommon_s>& fieldsOf() {
    using R = IFC2X3_PSet_StairCommon_s;
    static const Fields<R> fields = {{"Reference", &R::Reference},
                                     {"FireRating", &R::FireRating},
                                     {"NumberOfRiser", &R::NumberOfRiser, &R::hasNumberOfRiser},
                                     {"NumberOfTreads", &R::NumberOfTreads, &R::hasNumberOfTreads},
                                     {"RiserHeight", Kind::Length, &R::RiserHeight, &R::hasRiserHeight},
                                     {"TreadLength", Kind::Length, &R::TreadLength, &R::hasTreadLength},
                                     {"RequiredHeadroom", Kind::Length, &R::RequiredHeadroom, &R::hasRequiredHeadroom},
                                     {{"HandicapAccessible", "IsHandicapAccessible"}, &R::IsHandicapAccessible},
                                     {"IsExternal", &R::IsExternal},
                                     {"FireExit", &R::FireExit},
                                     {"HasNonSkidSurface", &R::HasNonSkidSurface}};
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

template <>
const Fields<IFC2X3_PSet_WindowCommon_s>& fieldsOf() {
    using R = IFC2X3_PSet_WindowCommon_s;
    static const Fields<R> fields = {
        {"Reference", &R::Reference},
        {"FireRating", &R::FireRating},
        {"AcousticRating", &R::AcousticRating},
        {"SecurityRating", &R::SecurityRating},
        {"Infiltration", Kind::Real, &R::Infiltration, &R::hasInfiltration},
        {"ThermalTransmittance", Kind::Real, &R::ThermalTransmittance, &R::hasThermalTransmittance},
        {"GlazingAreaFraction", Kind::Real, &R::GlazingAreaFraction, &R::hasGlazingAreaFraction},
        {"SmokeStop", &R::SmokeStop, &R::hasSmokeStop},
        {"IsExternal", &R::IsExternal}};
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
    {"IFCBEAM", "Pset_BeamCommon", "IFC2X3_PSet_BeamCommon", convert<IFC2X3_PSet_BeamCommon_s>},
    {"IFCCOLUMN", "Pset_ColumnCommon", "IFC2X3_PSet_ColumnCommon", convert<IFC2X3_PSet_ColumnCommon_s>},
    {"IFCCURTAINWALL", "Pset_CurtainWallCommon", "IFC2X3_PSet_CurtainWallCommon",
     convert<IFC2X3_PSet_CurtainWallCommon_s>},
    {"IFCDOOR", "Pset_DoorCommon", "IFC2X3_PSet_DoorCommon", convert<IFC2X3_PSet_DoorCommon_s>},
    {"IFCMEMBER", "Pset_MemberCommon", "IFC2X3_PSet_MemberCommon", convert<IFC2X3_PSet_MemberCommon_s>},
    {"IFCRAILING", "Pset_RailingCommon", "IFC2X3_PSet_RailingCommon", convert<IFC2X3_PSet_RailingCommon_s>},
    {"IFCRAMP", "Pset_RampCommon", "IFC2X3_PSet_RampCommon", convert<IFC2X3_PSet_RampCommon_s>},
    {"IFCROOF", "Pset_RoofCommon", "IFC2X3_PSet_RoofCommon", convert<IFC2X3_PSet_RoofCommon_s>},
    {"IFCSLAB", "Pset_SlabCommon", "IFC2X3_PSet_SlabCommon", convert<IFC2X3_PSet_SlabCommon_s>},
    {"IFCSTAIR", "Pset_StairCommon", "IFC2X3_PSet_StairCommon", convert<IFC2X3_PSet_StairCommon_s>},
    {"IFCWALL", "Pset_WallCommon", "IFC2X3_PSet_WallCommon", convert<IFC2X3_PSet_WallCommon_s>},
    {"IFCWALLSTANDARDCASE", "Pset_WallCommon", "IFC2X3_PSet_WallCommon", convert<IFC2X3_PSet_WallCommon_s>},
    {"IFCWINDOW", "Pset_WindowCommon", "IFC2X3_PSet_WindowCommon", convert<IFC2X3_PSet_WindowCommon_s>},
    {"", "Pset_DoorWindowGlazingType", "IFC2X3_PSet_DoorWindowGlazingType",
     convert<IFC2X3_PSet_DoorWindowGlazingType_s>},
    {"", "Pset_DoorWindowShadingType", "IFC2X3_PSet_DoorWindowShadingType",
     convert<IFC2X3_PSet_DoorWindowShadingType_s>}};

} // namespace

std::optional<CommonSet> commonSetOf(std::string_view className, const IfcPropertySet& set) {
    for (const Converter& converter : converters) {
        if (converter.setName == set.name && (converter.className.empty() || converter.className == className)) {
            return converter.convert(converter.recordName, set);
        }
    }
    return std::nullopt;
}
