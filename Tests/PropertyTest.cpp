#include "DescribeProperties.h"
#include "FailingAllocator.h"

#include <ImportCommon/CIFC2X3Property.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <memory>
#include <new>
#include <numeric>
#include <set>
#include <string>
#include <utility>
#include <vector>

using namespace ImportCommon;
using Value = IFC2X3PropertySingleValue;
using Set = IFC2X3PropertySet;

namespace {

IFC2X3Property text(const wchar_t* name) {
    return createPropertySingleValueString(name, L"d", L"value");
}

/** A set whose last property holds the set of one level less, down to an empty one. */
Set nested(int levels) {
    Set set;
    for (int level = 0; level < levels; ++level) {
        const IFC2X3Property complex = createPropertyComplex(L"c", L"", L"usage", set);
        set.addProperty(text(L"t"));
        set.addProperty(complex);
    }
    return set;
}

TEST(Property, gettersAnswerForTheirTypesOnly) {
    testing::internal::CaptureStderr();
    for (int type = -1; type <= 12; ++type) {
        SCOPED_TRACE(type);
        const CIFC2X3PropertySingleValue value(static_cast<Value::ValueType_t>(type), true, Value::Logical_True, 7,
                                               1LL << 40, 2.5, L"text");
        EXPECT_EQ(value.getValueType(), type);
        for (int call = 0; call < 2; ++call) { // the first misuse is reported, the second isn't
            EXPECT_EQ(value.getStringValue(), std::wstring(type == 1 ? L"text" : L""));
            EXPECT_EQ(value.getStringValue2(), std::wstring(type == 1 ? L"text" : L""));
            EXPECT_EQ(value.getBooleanValue(), type == 2);
            EXPECT_EQ(value.getIntValue(), type == 3 ? 7 : 0);
            EXPECT_EQ(value.getRealValue(), type == 0 || (type >= 4 && type <= 9) ? 2.5 : 0.0);
            EXPECT_EQ(value.getInt64Value(), type == 10 ? 1LL << 40 : 0);
            EXPECT_EQ(value.getLogicalValue(), type == 11 ? Value::Logical_True : Value::Logical_Unknown);
        }
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(Property, factoriesKeepTheValueOfTheirTypes) {
    for (int type = -1; type <= 12; ++type) {
        SCOPED_TRACE(type);
        const auto given = static_cast<Value::ValueType_t>(type);
        const bool real = type == 0 || (type >= 4 && type <= 9);
        const std::wstring fallback = L"n/d=0:0;";
        for (int call = 0; call < 2; ++call) {
            EXPECT_EQ(describe(createPropertySingleValueInteger(L"n", L"d", given, INT_MIN)),
                      type == 3 ? L"n/d=3:-2147483648;" : fallback);
            EXPECT_EQ(describe(createPropertySingleValueInteger64(L"n", L"d", given, LLONG_MIN)),
                      type == 10 ? L"n/d=10:-9223372036854775808;" : fallback);
            EXPECT_EQ(describe(createPropertySingleValueReal(L"n", L"d", given, -2.5)),
                      real ? L"n/d=" + std::to_wstring(type) + L":-2.5;" : fallback);
        }
    }
    EXPECT_EQ(describe(createPropertySingleValueString(L"n", L"d", L"v")), L"n/d=1:v;");
    for (const bool value : {false, true})
        EXPECT_EQ(describe(createPropertySingleValueBoolean(L"n", L"d", value)), value ? L"n/d=2:1;" : L"n/d=2:0;");
    for (int state = Value::Logical_False; state <= Value::Logical_Unknown; ++state) {
        EXPECT_EQ(describe(createPropertySingleValueLogical(L"n", L"d", static_cast<Value::Logical_s>(state))),
                  L"n/d=11:" + std::to_wstring(state) + L";");
    }
    EXPECT_EQ(describe(createPropertyComplex(L"n", L"d", L"u", nested(1))), L"n/d=u{t/d=1:value;c/=usage{};};");
}

TEST(Property, textsAreCutAt256Characters) {
    IFC2X3Property reused;
    for (const std::size_t length : {1000u, 257u, 256u, 255u, 1u, 0u}) {
        SCOPED_TRACE(length);
        // A block of just what may be read: no terminator stands behind 256 characters.
        std::vector<wchar_t> given(std::max<std::size_t>(length, std::min<std::size_t>(length + 1, 256)));
        std::iota(given.begin(), given.begin() + static_cast<std::ptrdiff_t>(length), L'A');
        const std::wstring kept(given.data(), std::min<std::size_t>(length, 256));
        const wchar_t* const text = given.data();
        const IFC2X3Property single = createPropertySingleValueString(text, text, text);
        const IFC2X3Property complex = createPropertyComplex(text, text, text, Set());
        EXPECT_EQ(describe(single), kept + L"/" + kept + L"=1:" + kept + L";");
        EXPECT_EQ(describe(complex), kept + L"/" + kept + L"=" + kept + L"{};");
        for (const IFC2X3Property& property : {single, complex}) {
            reused = property;
            EXPECT_EQ(describe(reused), describe(property));
            EXPECT_STREQ(reused.getName2(), kept.c_str());
            EXPECT_STREQ(reused.getDescription2(), kept.c_str());
        }
        EXPECT_STREQ(reused.getPropertyComplex().getUsageName2(), kept.c_str());
    }
}

TEST(Property, whatIsMissingIsASharedNullObject) {
    const Set empty;
    Set one;
    one.addProperty(text(L"t"));
    const IFC2X3Property& none = empty.getProperty(0);
    EXPECT_EQ(&one.getProperty(1), &none);
    EXPECT_EQ(&one.getProperty(UINT_MAX), &none);
    const IFC2X3Property complex = createPropertyComplex(L"c", L"", L"usage", one);
    for (const IFC2X3Property& property : {none, IFC2X3Property()}) {
        EXPECT_EQ(property.getType(), IFC2X3Property::Type_Null);
        EXPECT_EQ(describe(property), L"/=;");
        EXPECT_EQ(&property.getPropertySingleValue(), &complex.getPropertySingleValue());
        EXPECT_EQ(&property.getPropertyComplex(), &one.getProperty(0).getPropertyComplex());
    }
    EXPECT_EQ(describe(none.getPropertySingleValue()), L"0:0");
    EXPECT_STREQ(none.getPropertyComplex().getUsageName(), L"");
    EXPECT_EQ(none.getPropertyComplex().getPropertySet().getCount(), 0u);
}

TEST(Property, copiesAreDeep) {
    auto source = std::make_unique<Set>(nested(5));
    auto property = std::make_unique<IFC2X3Property>(createPropertyComplex(L"c", L"d", L"u", *source));
    const std::wstring all = describe(*source);
    const Set copy(*source);
    Set assigned = nested(2);
    assigned = *source;
    IFC2X3Property replaced = *property;
    replaced = text(L"t");
    EXPECT_EQ(describe(replaced), L"t/d=1:value;");
    EXPECT_EQ(&replaced.getPropertyComplex(), &IFC2X3Property().getPropertyComplex());
    replaced = *property;
    source->clear();
    source->addProperty(text(L"other"));
    source.reset();
    property.reset();
    EXPECT_EQ(describe(copy), all);
    EXPECT_EQ(describe(assigned), all);
    EXPECT_EQ(describe(replaced), L"c/d=u{" + all + L"};");
}

TEST(Property, assignmentFromItselfOrFromInside) {
    Set set = nested(4);
    const Set& sameSet = set;
    const std::wstring all = describe(set);
    set = sameSet;
    EXPECT_EQ(describe(set), all);
    IFC2X3Property property = createPropertyComplex(L"c", L"d", L"u", set);
    const IFC2X3Property& sameProperty = property;
    property = sameProperty;
    EXPECT_EQ(describe(property), L"c/d=u{" + all + L"};");

    for (unsigned int index : {7u, 5u, 3u, 0u}) {
        const Set& held = property.getPropertyComplex().getPropertySet();
        const std::wstring inside = describe(held.getProperty(index));
        property = held.getProperty(index);
        EXPECT_EQ(describe(property), inside);
    }
    for (int level = 3; level >= 0; --level) {
        set = set.getProperty(set.getCount() - 1).getPropertyComplex().getPropertySet();
        EXPECT_EQ(describe(set), describe(nested(level)));
    }
}

TEST(Property, movedFromObjectsAreEmptyAndUsable) {
    Set set = nested(3);
    const std::wstring all = describe(set);
    Set taken(std::move(set));
    EXPECT_EQ(set.getCount(), 0u);
    set = nested(1);
    set = std::move(taken);
    EXPECT_EQ(taken.getCount(), 0u);
    taken.addProperty(text(L"t"));
    EXPECT_EQ(describe(taken), L"t/d=1:value;");
    EXPECT_EQ(describe(set), all);

    IFC2X3Property property = createPropertyComplex(L"c", L"d", L"u", set);
    IFC2X3Property first(std::move(property));
    EXPECT_EQ(describe(property), L"/=;");
    property = text(L"t");
    property = std::move(first);
    EXPECT_EQ(describe(first), L"/=;");
    IFC2X3Property& same = property;
    property = std::move(same);
    taken.clear();
    taken.addProperty(std::move(property));
    EXPECT_EQ(describe(property), L"/=;");
    EXPECT_EQ(describe(taken), L"c/d=u{" + all + L"};");
}

TEST(PropertySet, growsAndClears) {
    Set set;
    for (unsigned int round = 0; round < 2; ++round) {
        std::wstring expected = L"0/d=1:value;";
        set.addProperty(text(L"0"));
        const IFC2X3Property* const first = &set.getProperty(0);
        for (unsigned int i = 1; i <= 151; ++i) {
            ASSERT_EQ(set.getCount(), i);
            // The property that is added may be one of the set, also while the list grows.
            set.addProperty(i % 50 == 0 ? set.getProperty(i - 1) : text(std::to_wstring(i).c_str()));
            expected += std::to_wstring(i % 50 == 0 ? i - 1 : i) + L"/d=1:value;";
        }
        EXPECT_EQ(&set.getProperty(0), first);
        EXPECT_EQ(describe(set), expected);
        set.clear();
        EXPECT_EQ(set.getCount(), 0u);
        EXPECT_EQ(set.getProperty(0).getType(), IFC2X3Property::Type_Null);
    }
}

/** Whether adding a property without memory silently does nothing, which tells that the list had to grow. */
bool isFull(Set set) {
    const unsigned int count = set.getCount();
    const IFC2X3Property property = text(L"t");
    const FailingAllocator noMemory(1);
    try {
        set.addProperty(property);
        return set.getCount() == count;
    } catch (const std::bad_alloc&) {
        return false;
    }
}

TEST(PropertySet, listGrowsInStepsOf50) {
    if (!FailingAllocator::isAvailable())
        GTEST_SKIP();
    Set one;
    one.addProperty(text(L"t"));
    for (unsigned int count = 0; count <= 101; ++count) {
        Set set;
        Set cleared(one);
        cleared.clear(); // room for one property stays
        for (unsigned int i = 0; i < count; ++i) {
            set.addProperty(text(L"t"));
            cleared.addProperty(text(L"t"));
        }
        EXPECT_TRUE(isFull(set)) << count; // copies are exactly sized
        EXPECT_EQ(isFull(std::move(set)), count % 50 == 0) << count;
        EXPECT_EQ(isFull(std::move(cleared)), count % 50 == 1) << count;
    }
}

TEST(PropertySet, everyAllocationOfACopyMayFail) {
    const Set old = nested(1);
    const Set source = nested(2);
    // Without memory for its list a copied set is empty, at any level.
    const std::set<std::wstring> incomplete = {L"", L"t/d=1:value;c/=usage{};t/d=1:value;c/=usage{};"};
    bool failed = FailingAllocator::isAvailable();
    for (int which = 1; failed; ++which) {
        for (const auto extent : {FailingAllocator::Once, FailingAllocator::FromThenOn}) {
            SCOPED_TRACE(testing::Message() << "allocation " << which << ", extent " << extent);
            Set set = old;
            bool thrown = false;
            {
                const FailingAllocator failing(which, extent);
                try {
                    set = source;
                } catch (const std::bad_alloc&) {
                    thrown = true;
                }
                failed = FailingAllocator::hasFailed();
            }
            ASSERT_TRUE(failed || which > 3);
            const std::wstring result = describe(set);
            if (thrown || !failed)
                EXPECT_EQ(result, describe(thrown ? old : source));
            else
                EXPECT_EQ(incomplete.count(result), 1u) << testing::PrintToString(result);
            set.addProperty(text(L"usable"));
            EXPECT_EQ(describe(set), result + L"usable/d=1:value;");
        }
    }
}

} // namespace
