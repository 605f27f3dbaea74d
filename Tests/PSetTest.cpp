#include "DescribeProperties.h"
#include "FailingAllocator.h"

#include <ImportCommon/ImportCommon.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <functional>
#include <memory>
#include <new>
#include <string>
#include <type_traits>

using namespace ImportCommon;
using Value = IFC2X3PropertySingleValue;

namespace {

/** One property of a set: what fills the fields of the record R that it comes from, and what it should become. */
template <typename R>
struct Entry {
    std::function<void(R&, unsigned int number, unsigned int round)> fill;
    std::function<IFC2X3Property(const R&)> property;
    bool R::*has;
    int R::*kind; // 1 makes the number a length, 2 an angle in degrees, any other leaves it out
};

/** No two fields of a type get the same value in all rounds. In the rounds 2, 3 ... texts have no terminator. */
template <typename T>
void fillField(T& field, unsigned int number, unsigned int round) {
    if constexpr (std::is_array_v<T>) {
        std::fill_n(field, 256, L'\0');
        std::fill_n(field, round > 1 ? 256 : number, static_cast<wchar_t>(L'a' + number));
    } else if constexpr (std::is_same_v<T, bool>) {
        field = (number >> round & 1) != 0;
    } else {
        field = static_cast<T>(number * -33.3);
    }
}

template <typename T>
IFC2X3Property propertyOf(const wchar_t* name, Value::ValueType_t type, const T& value) {
    if constexpr (std::is_array_v<T>)
        return createPropertySingleValueString(name, L"", value);
    else if constexpr (std::is_same_v<T, bool>)
        return createPropertySingleValueBoolean(name, L"", value);
    else if constexpr (std::is_same_v<T, int>)
        return createPropertySingleValueInteger(name, L"", Value::ValueType_Integer, value);
    else
        return createPropertySingleValueReal(name, L"", type, value);
}

template <typename R, typename T>
Entry<R> entry(const wchar_t* name, T R::*field, bool R::*has = nullptr,
               Value::ValueType_t type = Value::ValueType_Real) {
    return {[=](R& record, unsigned int number, unsigned int round) { fillField(record.*field, number, round); },
            [=](const R& record) { return propertyOf(name, type, record.*field); }, has, nullptr};
}

template <typename R>
Entry<R> lengthOrAngle(const wchar_t* name, double R::*field, bool R::*has, int R::*kind) {
    Entry<R> result = entry(name, field, has);
    result.property = [=](const R& record) {
        return record.*kind == 1
                   ? propertyOf(name, Value::ValueType_Length, record.*field)
                   : propertyOf(name, Value::ValueType_PlaneAngle, record.*field / 180.0 * 3.141592653589793);
    };
    result.kind = kind;
    return result;
}

std::wstring padded(std::wstring text) {
    text.resize(256);
    return text;
}

/**
 * Converts records with no option present, each one alone, and all. Fields without an entry are false and empty in some
 * rounds, true and unterminated in others: they must not count.
 */
template <typename R, typename... Entries>
void expectSet(const wchar_t* name, Entries... list) {
    const Entry<R> entries[] = {list...};
    constexpr std::size_t count = sizeof...(list);
    for (unsigned int run = 0; run < 6 * (count + 2); ++run) {
        const unsigned int round = run % 6;
        const std::size_t present = run / 6; // count: none; count + 1: all
        R record;
        std::memset(&record, round % 2, sizeof record);
        for (unsigned int i = 0; i < count; ++i) {
            entries[i].fill(record, i + 1, round);
            if (entries[i].has != nullptr)
                record.*entries[i].has = present == i || present > count;
            if (entries[i].kind != nullptr)
                record.*entries[i].kind = static_cast<int>((i + round) % 4);
        }
        IFC2X3PropertySet expected;
        for (const Entry<R>& entry : entries) {
            const int kind = entry.kind != nullptr ? record.*entry.kind : 1;
            if ((entry.has == nullptr || record.*entry.has) && (kind == 1 || kind == 2))
                expected.addProperty(entry.property(record));
        }
        SCOPED_TRACE(testing::Message() << "round " << round << ", present " << present);
        const IFC2X3_PSet_Custom_s set = record;
        EXPECT_EQ(std::string(set.globalId, sizeof set.globalId), std::string(22, '0'));
        EXPECT_EQ(std::wstring(set.name, 256), padded(name));
        EXPECT_EQ(std::wstring(set.description, 256), padded(L""));
        EXPECT_EQ(describe(set.properties), describe(expected));
    }
}

// Only the preprocessor gets from the name of a field to its text and to the name of its presence flag.
#define ALWAYS(field) entry(L"" #field, &R::field)
#define OPTION(field) entry(L"" #field, &R::field, &R::has##field)
#define LENGTH(field) entry(L"" #field, &R::field, &R::has##field, Value::ValueType_Length)
#define RADIANS(field) entry(L"" #field, &R::field, &R::has##field, Value::ValueType_PlaneAngle)
#define MEASURE(field) lengthOrAngle(L"" #field, &R::field, &R::has##field, &R::field##Kind)

TEST(PSet, beam) {
    using R = IFC2X3_PSet_BeamCommon_s;
    expectSet<R>(L"Pset_BeamCommon", ALWAYS(Reference), MEASURE(Span), MEASURE(Slope), ALWAYS(FireRating),
                 ALWAYS(IsExternal), ALWAYS(IsLoadBearing));
}

TEST(PSet, column) {
    using R = IFC2X3_PSet_ColumnCommon_s;
    expectSet<R>(L"Pset_ColumnCommon", ALWAYS(Reference), MEASURE(Slope), ALWAYS(FireRating), ALWAYS(IsExternal),
                 ALWAYS(IsLoadBearing));
}

TEST(PSet, curtainWall) {
    using R = IFC2X3_PSet_CurtainWallCommon_s; // nothing comes from AcousticRating
    expectSet<R>(L"Pset_IFC2X3_PSet_CurtainWallCommon", ALWAYS(Reference), ALWAYS(FireRating),
                 ALWAYS(SurfaceSpreadOfFlame), OPTION(ThermalTransmittance), OPTION(Combustible), ALWAYS(IsExternal));
}

TEST(PSet, door) {
    using R = IFC2X3_PSet_DoorCommon_s; // nothing comes from FireExit
    expectSet<R>(L"Pset_DoorCommon", ALWAYS(Reference), ALWAYS(FireRating), ALWAYS(AcousticRating),
                 ALWAYS(SecurityRating), OPTION(Infiltration), OPTION(ThermalTransmittance),
                 OPTION(GlazingAreaFraction), OPTION(HandicapAccessible), entry(L"FireExit", &R::IsExternal),
                 ALWAYS(SelfClosing), ALWAYS(SmokeStop), ALWAYS(IsExternal));
}

TEST(PSet, glazing) {
    using R = IFC2X3_PSet_DoorWindowGlazingType_s;
    expectSet<R>(L"Pset_DoorWindowGlazingType", ALWAYS(FillGas), ALWAYS(GlassColor), LENGTH(GlassThickness1),
                 LENGTH(GlassThickness2), LENGTH(GlassThickness3), OPTION(IsTempered), OPTION(IsLaminated),
                 OPTION(IsCoated), OPTION(IsWired), OPTION(Translucency), OPTION(Reflectivity),
                 OPTION(BeamRadiationTransmittance), OPTION(SolarHeatGainTransmittance),
                 OPTION(ThermalTransmittanceSummer), OPTION(ThermalTransmittanceWinter), ALWAYS(GlassLayers));
}

TEST(PSet, shading) {
    using R = IFC2X3_PSet_DoorWindowShadingType_s;
    expectSet<R>(L"Pset_DoorWindowShadingType", OPTION(ExternalShadingCoefficient), OPTION(InternalShadingCoefficient),
                 OPTION(InsetShadingCoefficient));
}

TEST(PSet, member) {
    using R = IFC2X3_PSet_MemberCommon_s;
    expectSet<R>(L"Pset_MemberCommon", ALWAYS(Reference), ALWAYS(FireRating), MEASURE(Span), MEASURE(Slope),
                 ALWAYS(IsExternal), ALWAYS(IsLoadBearing));
}

TEST(PSet, railing) {
    using R = IFC2X3_PSet_RailingCommon_s;
    expectSet<R>(L"Pset_RailingCommon", ALWAYS(Reference), LENGTH(Height), LENGTH(Diameter), ALWAYS(IsExternal));
}

TEST(PSet, ramp) {
    using R = IFC2X3_PSet_RampCommon_s;
    expectSet<R>(L"Pset_RampCommon", ALWAYS(Reference), ALWAYS(FireRating), MEASURE(Slope), LENGTH(RequiredHeadroom),
                 OPTION(HasNonSkidSurface), ALWAYS(IsHandicapAccessible), ALWAYS(IsExternal), ALWAYS(FireExit));
}

TEST(PSet, roof) {
    using R = IFC2X3_PSet_RoofCommon_s;
    expectSet<R>(L"Pset_RoofCommon", ALWAYS(Reference), ALWAYS(FireRating), ALWAYS(IsExternal));
}

TEST(PSet, slab) {
    using R = IFC2X3_PSet_SlabCommon_s;
    expectSet<R>(L"Pset_SlabCommon", ALWAYS(Reference), ALWAYS(AcousticRating), ALWAYS(SurfaceSpreadOfFlame),
                 ALWAYS(FireRating), OPTION(Compartmentation), OPTION(Combustible), OPTION(ThermalTransmittance),
                 RADIANS(PitchAngle), ALWAYS(IsExternal), ALWAYS(IsLoadBearing));
}

TEST(PSet, stair) {
    using R = IFC2X3_PSet_StairCommon_s;
    expectSet<R>(L"Pset_StairCommon", ALWAYS(Reference), ALWAYS(FireRating), OPTION(NumberOfRiser),
                 OPTION(NumberOfTreads), LENGTH(RiserHeight), LENGTH(TreadLength), LENGTH(RequiredHeadroom),
                 ALWAYS(IsHandicapAccessible), ALWAYS(IsExternal), ALWAYS(FireExit), ALWAYS(HasNonSkidSurface));
}

TEST(PSet, wall) {
    using R = IFC2X3_PSet_WallCommon_s; // nothing comes from IsExternal and IsLoadBearing
    expectSet<R>(L"Pset_WallCommon", ALWAYS(Reference), ALWAYS(AcousticRating), ALWAYS(FireRating),
                 ALWAYS(SurfaceSpreadOfFlame), OPTION(ThermalTransmittance), OPTION(Combustible),
                 OPTION(ExtendToStructure), OPTION(Compartmentation));
}

TEST(PSet, window) {
    using R = IFC2X3_PSet_WindowCommon_s;
    expectSet<R>(L"Pset_WindowCommon", ALWAYS(Reference), ALWAYS(FireRating), ALWAYS(AcousticRating),
                 ALWAYS(SecurityRating), OPTION(Infiltration), OPTION(ThermalTransmittance),
                 OPTION(GlazingAreaFraction), OPTION(SmokeStop), ALWAYS(IsExternal));
}

TEST(PSet, withoutMemoryItLeavesPropertiesOutOrThrows) {
    const std::wstring all = L"Reference/=1:;FireRating/=1:;IsExternal/=2:0;";
    bool failed = FailingAllocator::isAvailable();
    for (int which = 1; failed; ++which) {
        auto failing = std::make_unique<FailingAllocator>(which, FailingAllocator::Once);
        try {
            const IFC2X3_PSet_Custom_s set = IFC2X3_PSet_RoofCommon_s{};
            failed = FailingAllocator::hasFailed();
            failing.reset();
            // The list grows just once, for the first property; the others find room.
            EXPECT_EQ(describe(set.properties), failed ? all.substr(all.find(L"FireRating")) : all);
            EXPECT_TRUE(failed || which > 1);
        } catch (const std::bad_alloc&) {
            EXPECT_GT(which, 1);
        }
    }
}

} // namespace
