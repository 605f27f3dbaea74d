#include "Support/DescribeProperties.h"

#include <ImportCommon/ImportCommon.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <iostream>
#include <random>
#include <string>
#include <type_traits>

using namespace ImportCommon;
using Value = IFC2X3PropertySingleValue;

namespace {

/** One property of a set: fills the fields of the record that it comes from, and adds what it should become. */
template <typename R>
struct Entry {
    std::function<void(R& record, std::mt19937& random)> fill;
    std::function<void(const R& record, IFC2X3PropertySet& expected)> add;
};

/** Half of the texts have no terminator. */
template <typename T>
void fillField(T& field, std::mt19937& random) {
    if constexpr (std::is_array_v<T>) {
        std::fill_n(field, 256, L'\0');
        std::fill_n(field, random() % 2 == 0 ? 256 : random() % 20, static_cast<wchar_t>(L'a' + random() % 26));
    } else if constexpr (std::is_same_v<T, bool>) {
        field = random() % 2 != 0;
    } else {
        field = static_cast<T>(static_cast<int>(random() % 10000) * -33.3);
    }
}

template <typename T>
IFC2X3Property propertyOf(const wchar_t* name, Value::ValueType_t type, const T& value) {
    if constexpr (std::is_array_v<T>) {
        return createPropertySingleValueString(name, L"", value);
    } else if constexpr (std::is_same_v<T, bool>) {
        return createPropertySingleValueBoolean(name, L"", value);
    } else if constexpr (std::is_same_v<T, int>) {
        return createPropertySingleValueInteger(name, L"", Value::ValueType_Integer, value);
    } else {
        return createPropertySingleValueReal(name, L"", type, value);
    }
}

template <typename R, typename T>
Entry<R> entry(const wchar_t* name, T R::*field, bool R::*has = nullptr,
               Value::ValueType_t type = Value::ValueType_Real) {
    return {[=](R& record, std::mt19937& random) {
                fillField(record.*field, random);
                if (has != nullptr) {
                    record.*has = random() % 2 != 0;
                }
            },
            [=](const R& record, IFC2X3PropertySet& expected) {
                if (has == nullptr || record.*has) {
                    expected.addProperty(propertyOf(name, type, record.*field));
                }
            }};
}

/** The kind 1 makes the number a length, 2 an angle in degrees, any other leaves it out. */
template <typename R>
Entry<R> lengthOrAngle(const wchar_t* name, double R::*field, bool R::*has, int R::*kind) {
    return {[=](R& record, std::mt19937& random) {
                entry(name, field, has).fill(record, random);
                record.*kind = static_cast<int>(random() % 4);
            },
            [=](const R& record, IFC2X3PropertySet& expected) {
                const double angle = record.*field / 180.0 * 3.141592653589793;
                if (record.*has && record.*kind == 1) {
                    expected.addProperty(propertyOf(name, Value::ValueType_Length, record.*field));
                }
                if (record.*has && record.*kind == 2) {
                    expected.addProperty(propertyOf(name, Value::ValueType_PlaneAngle, angle));
                }
            }};
}

/** Converts random records. Fields without an entry are alike in each: they must not count. */
template <typename R, typename... Entries>
void expectSet(std::wstring name, Entries... entries) {
    constexpr unsigned int seed = 20261;
    std::cout << "seed " << seed << std::endl;
    std::mt19937 random(seed);
    name.resize(256);
    for (int round = 0; round < 300; ++round) {
        R record;
        std::memset(&record, round % 2, sizeof record);
        IFC2X3PropertySet expected;
        (entries.fill(record, random), ...);
        (entries.add(record, expected), ...);
        const IFC2X3_PSet_Custom_s set = record;
        EXPECT_EQ(std::string(set.globalId, sizeof set.globalId), std::string(22, '0'));
        EXPECT_EQ(std::wstring(set.name, 256), name);
        EXPECT_EQ(std::wstring(set.description, 256), std::wstring(256, L'\0'));
        EXPECT_EQ(describe(set.properties), describe(expected)) << "round " << round;
    }
}

// Only the preprocessor gets from the name of a field to its text and to the name of its presence flag.
#define ALWAYS(field) entry(L"" #field, &R::field)
#define OPTION(field) entry(L"" #field, &R::field, &R::has##field)
#define LENGTH(field) entry(L"" #field, &R::field, &R::has##field, Value::ValueType_Length)
#define RADIANS(field) entry(L"" #field, &R::field, &R::has##field, Value::ValueType_PlaneAngle)
#define MEASURE(field) lengthOrAngle(L"" #field, &R::field, &R::has##field, &R::field##Kind)

#define PSET(record, ...)                                                                                              \
    TEST(PSet, record) {                                                                                               \
        using R = IFC2X3_PSet_##record##_s;                                                                            \
        expectSet<R>(__VA_ARGS__);                                                                                     \
    }

PSET(BeamCommon, L"Pset_BeamCommon", ALWAYS(Reference), MEASURE(Span), MEASURE(Slope), ALWAYS(FireRating),
     ALWAYS(IsExternal), ALWAYS(IsLoadBearing))
PSET(ColumnCommon, L"Pset_ColumnCommon", ALWAYS(Reference), MEASURE(Slope), ALWAYS(FireRating), ALWAYS(IsExternal),
     ALWAYS(IsLoadBearing))
// Nothing comes from AcousticRating.
PSET(CurtainWallCommon, L"Pset_IFC2X3_PSet_CurtainWallCommon", ALWAYS(Reference), ALWAYS(FireRating),
     ALWAYS(SurfaceSpreadOfFlame), OPTION(ThermalTransmittance), OPTION(Combustible), ALWAYS(IsExternal))
// Nothing comes from FireExit.
PSET(DoorCommon, L"Pset_DoorCommon", ALWAYS(Reference), ALWAYS(FireRating), ALWAYS(AcousticRating),
     ALWAYS(SecurityRating), OPTION(Infiltration), OPTION(ThermalTransmittance), OPTION(GlazingAreaFraction),
     OPTION(HandicapAccessible), entry(L"FireExit", &R::IsExternal), ALWAYS(SelfClosing), ALWAYS(SmokeStop),
     ALWAYS(IsExternal))
PSET(DoorWindowGlazingType, L"Pset_DoorWindowGlazingType", ALWAYS(FillGas), ALWAYS(GlassColor), LENGTH(GlassThickness1),
     LENGTH(GlassThickness2), LENGTH(GlassThickness3), OPTION(IsTempered), OPTION(IsLaminated), OPTION(IsCoated),
     OPTION(IsWired), OPTION(Translucency), OPTION(Reflectivity), OPTION(BeamRadiationTransmittance),
     OPTION(SolarHeatGainTransmittance), OPTION(ThermalTransmittanceSummer), OPTION(ThermalTransmittanceWinter),
     ALWAYS(GlassLayers))
PSET(DoorWindowShadingType, L"Pset_DoorWindowShadingType", OPTION(ExternalShadingCoefficient),
     OPTION(InternalShadingCoefficient), OPTION(InsetShadingCoefficient))
PSET(MemberCommon, L"Pset_MemberCommon", ALWAYS(Reference), ALWAYS(FireRating), MEASURE(Span), MEASURE(Slope),
     ALWAYS(IsExternal), ALWAYS(IsLoadBearing))
PSET(RailingCommon, L"Pset_RailingCommon", ALWAYS(Reference), LENGTH(Height), LENGTH(Diameter), ALWAYS(IsExternal))
PSET(RampCommon, L"Pset_RampCommon", ALWAYS(Reference), ALWAYS(FireRating), MEASURE(Slope), LENGTH(RequiredHeadroom),
     OPTION(HasNonSkidSurface), ALWAYS(IsHandicapAccessible), ALWAYS(IsExternal), ALWAYS(FireExit))
PSET(RoofCommon, L"Pset_RoofCommon", ALWAYS(Reference), ALWAYS(FireRating), ALWAYS(IsExternal))
PSET(SlabCommon, L"Pset_SlabCommon", ALWAYS(Reference), ALWAYS(AcousticRating), ALWAYS(SurfaceSpreadOfFlame),
     ALWAYS(FireRating), OPTION(Compartmentation), OPTION(Combustible), OPTION(ThermalTransmittance),
     RADIANS(PitchAngle), ALWAYS(IsExternal), ALWAYS(IsLoadBearing))
PSET(StairCommon, L"Pset_StairCommon", ALWAYS(Reference), ALWAYS(FireRating), OPTION(NumberOfRiser),
     OPTION(NumberOfTreads), LENGTH(RiserHeight), LENGTH(TreadLength), LENGTH(RequiredHeadroom),
     ALWAYS(IsHandicapAccessible), ALWAYS(IsExternal), ALWAYS(FireExit), ALWAYS(HasNonSkidSurface))
// Nothing comes from IsExternal and IsLoadBearing.
PSET(WallCommon, L"Pset_WallCommon", ALWAYS(Reference), ALWAYS(AcousticRating), ALWAYS(FireRating),
     ALWAYS(SurfaceSpreadOfFlame), OPTION(ThermalTransmittance), OPTION(Combustible), OPTION(ExtendToStructure),
     OPTION(Compartmentation))
PSET(WindowCommon, L"Pset_WindowCommon", ALWAYS(Reference), ALWAYS(FireRating), ALWAYS(AcousticRating),
     ALWAYS(SecurityRating), OPTION(Infiltration), OPTION(ThermalTransmittance), OPTION(GlazingAreaFraction),
     OPTION(SmokeStop), ALWAYS(IsExternal))

TEST(PSetTest, customSetsAreValues) {
    IFC2X3_PSet_RoofCommon_s roof{};
    roof.FireRating[0] = L'F';
    const IFC2X3_PSet_Custom_s set = roof;
    const std::wstring text = describe(set.properties);
    IFC2X3_PSet_Custom_s copy(set);
    IFC2X3_PSet_Custom_s assigned;
    EXPECT_EQ(describe(assigned.properties), L"");
    assigned = copy;
    copy.properties.clear();
    EXPECT_EQ(describe(assigned.properties), text);
    EXPECT_EQ(std::wstring(assigned.name), L"Pset_RoofCommon");
    IFC2X3_PSet_Custom_s moved(std::move(assigned));
    copy = std::move(moved);
    EXPECT_EQ(describe(copy.properties), text);
    EXPECT_EQ(std::wstring(copy.name), L"Pset_RoofCommon");
}

} // namespace
