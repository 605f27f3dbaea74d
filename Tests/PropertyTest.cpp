#include "Support/Breakpoints.h"
#include "Support/DescribeProperties.h"
#include "Support/FailingAllocator.h"

#include <ImportCommon/CIFC2X3Property.h>
#include <ImportCommon/IFC2X3_PSet_Custom.h>

#include <algorithm>
#include <climits>
#include <functional>
#include <iostream>
#include <memory>
#include <new>
#include <numeric>
#include <random>
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

TEST(PropertyTest, valuesBelongToTheirTypes) {
    const std::wstring fallback = L"n/d=0:0;";
    for (int type = -1; type <= 12; ++type) {
        SCOPED_TRACE(type);
        const auto given = static_cast<Value::ValueType_t>(type);
        const bool real = type == 0 || (type >= 4 && type <= 9);
        const CIFC2X3PropertySingleValue value(given, true, Value::Logical_True, 7, 1LL << 40, 2.5, L"text");
        EXPECT_EQ(value.getValueType(), type);
        for (int call = 0; call < 2; ++call) {
            EXPECT_EQ(value.getStringValue(), std::wstring(type == 1 ? L"text" : L""));
            EXPECT_EQ(value.getStringValue2(), std::wstring(type == 1 ? L"text" : L""));
            EXPECT_EQ(value.getBooleanValue(), type == 2);
            EXPECT_EQ(value.getIntValue(), type == 3 ? 7 : 0);
            EXPECT_EQ(value.getRealValue(), real ? 2.5 : 0.0);
            EXPECT_EQ(value.getInt64Value(), type == 10 ? 1LL << 40 : 0);
            EXPECT_EQ(value.getLogicalValue(), type == 11 ? Value::Logical_True : Value::Logical_Unknown);
        }
        EXPECT_EQ(describe(createPropertySingleValueInteger(L"n", L"d", given, INT_MIN)),
                  type == 3 ? L"n/d=3:-2147483648;" : fallback);
        EXPECT_EQ(describe(createPropertySingleValueInteger64(L"n", L"d", given, LLONG_MIN)),
                  type == 10 ? L"n/d=10:-9223372036854775808;" : fallback);
        EXPECT_EQ(describe(createPropertySingleValueReal(L"n", L"d", given, -2.5)),
                  real ? L"n/d=" + std::to_wstring(type) + L":-2.5;" : fallback);
    }
    EXPECT_EQ(describe(createPropertySingleValueBoolean(L"n", L"d", true)), L"n/d=2:1;");
    EXPECT_EQ(describe(createPropertySingleValueLogical(L"n", L"d", Value::Logical_True)),
              L"n/d=11:" + std::to_wstring(Value::Logical_True) + L";");
    EXPECT_EQ(describe(createPropertyComplex(L"n", L"d", L"u", nested(1))), L"n/d=u{t/d=1:value;c/=usage{};};");
}

// Called so that it runs before the other tests of the program, which misuse the functions too.
TEST(PropertyDeathTest, theFirstMisuseOfEachFunctionStopsInADebugger) {
    const CIFC2X3PropertySingleValue number(Value::ValueType_Real, false, Value::Logical_True, 0, 0, 1.0, L"");
    const CIFC2X3PropertySingleValue flag(Value::ValueType_Boolean, true, Value::Logical_True, 0, 0, 1.0, L"");
    const std::vector<std::function<void()>> misuses = {
        [&] { number.getBooleanValue(); },
        [&] { number.getLogicalValue(); },
        [&] { number.getIntValue(); },
        [&] { number.getInt64Value(); },
        [&] { flag.getRealValue(); },
        [&] { number.getStringValue(); },
        [&] { number.getStringValue2(); },
        [] { createPropertySingleValueInteger(L"n", L"d", Value::ValueType_Integer64, 1); },
        [] { createPropertySingleValueInteger64(L"n", L"d", Value::ValueType_Integer, 1); },
        [] { createPropertySingleValueReal(L"n", L"d", Value::ValueType_Integer, 1); },
    };
    std::vector<std::function<void()>> actions;
    std::string expected;
    for (const auto& misuse : misuses) {
        actions.insert(actions.end(), {misuse, misuse});
        expected += "!..";
    }
    actions.emplace_back([&] { number.getRealValue(); });
    const std::string stops = stopsOf(actions);
    if (stops.empty()) {
        GTEST_SKIP() << "no process may trace another here";
    }
    EXPECT_EQ(stops, expected + ".");
}

TEST(PropertyTest, textsAreCutAt256Characters) {
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
            EXPECT_EQ(std::wstring(reused.getDescription(), 256), kept + std::wstring(256 - kept.size(), L'\0'));
        }
        EXPECT_STREQ(reused.getPropertyComplex().getUsageName2(), kept.c_str());
    }
}

TEST(PropertyTest, whatIsMissingIsASharedNullObject) {
    Set one;
    const IFC2X3Property& none = one.getProperty(0);
    one.addProperty(text(L"t"));
    EXPECT_EQ(&one.getProperty(1), &none);
    EXPECT_EQ(&one.getProperty(UINT_MAX), &none);
    EXPECT_EQ(describe(none), L"/=;");
    EXPECT_EQ(describe(none.getPropertySingleValue()), L"0:0");
    EXPECT_EQ(&none.getPropertyComplex(), &one.getProperty(0).getPropertyComplex());
    EXPECT_STREQ(none.getPropertyComplex().getUsageName(), L"");
    EXPECT_EQ(none.getPropertyComplex().getPropertySet().getCount(), 0u);
}

TEST(PropertyTest, copiesAndMovesAgreeWithTheirTexts) {
    constexpr unsigned int seed = 5005;
    std::cout << "seed " << seed << std::endl;
    std::mt19937 random(seed);
    struct {
        Set set;
        IFC2X3Property property;
        std::wstring setText, propertyText = L"/=;";
    } all[3];
    for (int step = 0; step < 5000 && !HasFailure(); ++step) {
        auto& to = all[random() % 3];
        auto& from = all[random() % 3];
        const IFC2X3Property& inside = to.set.getProperty(static_cast<unsigned int>(random() % 60));
        const std::wstring insideText = describe(inside);
        const std::wstring name = std::to_wstring(step);
        switch (random() % 9) {
        case 0: // of itself, too
            to = from;
            break;
        case 1:
            if (&to != &from) {
                to = std::move(from);
                from.setText = L"";
                from.propertyText = L"/=;";
            }
            break;
        case 2: // a part takes the place of the whole
            to.setText = describe(inside.getPropertyComplex().getPropertySet());
            to.set = inside.getPropertyComplex().getPropertySet();
            break;
        case 3:
            to.property = createPropertyComplex(name.c_str(), L"", L"u", from.set);
            to.propertyText = name + L"/=u{" + from.setText + L"};";
            break;
        case 4: {
            const IFC2X3Property& part = to.property.getPropertyComplex().getPropertySet().getProperty(0);
            to.propertyText = describe(part);
            to.property = part;
            break;
        }
        case 5:
            to.property = text(name.c_str());
            to.propertyText = name + L"/d=1:value;";
            break;
        case 6: // one of the set, also while the list grows
            to.set.addProperty(inside);
            to.setText += insideText;
            break;
        default:
            for (int i = 0; i < 9; ++i) {
                to.set.addProperty(from.property);
                to.setText += from.propertyText;
            }
        }
        for (const auto& each : all) {
            EXPECT_EQ(describe(each.set), each.setText) << step;
            EXPECT_EQ(describe(each.property), each.propertyText) << step;
        }
        if (to.setText.size() > 5000) {
            to.set.clear();
            to.setText.clear();
        }
    }
}

TEST(PropertyTest, setsNestToAnyDepth) {
    constexpr int levels = 200000; // far beyond what a stack holds
    auto whole = std::make_unique<Set>();
    const auto setInside = [](const Set& set) -> const Set& {
        return set.getProperty(0).getPropertyComplex().getPropertySet();
    };
    // A property copies the set it is made with, so the levels are hung into each other from outside.
    Set* set = whole.get();
    for (int level = 0; level < levels; ++level) {
        set->addProperty(createPropertyComplex(L"c", L"", L"usage", Set()));
        set = const_cast<Set*>(&setInside(*set));
    }
    IFC2X3Property property = createPropertyComplex(L"whole", L"", L"", *whole);
    whole.reset();
    int depth = 0;
    for (const Set* at = &property.getPropertyComplex().getPropertySet(); at->getCount() == 1; ++depth) {
        at = &setInside(*at);
    }
    EXPECT_EQ(depth, levels);
    property = IFC2X3Property();
}

/** How many properties a set of this room takes before its list has to grow; without memory that is silent. */
unsigned int roomOf(Set& set) {
    const IFC2X3Property property;
    for (;;) {
        const unsigned int count = set.getCount();
        bool listWasFull = true;
        noMemory.during([&] {
            try {
                set.addProperty(property);
                listWasFull = set.getCount() == count;
            } catch (const std::bad_alloc&) { // for the property itself
                listWasFull = false;
            }
        });
        if (listWasFull) {
            return count;
        }
        if (set.getCount() == count) {
            set.addProperty(property);
        }
    }
}

TEST_F(AllocationFailureTest, listsGrowByFiftyAndKeepTheirRoom) {
    Set set;
    for (const unsigned int room : {0u, 50u, 100u, 150u}) {
        EXPECT_EQ(roomOf(set), room);
        const Set copy(set);
        Set grown(copy);
        EXPECT_EQ(roomOf(grown), room) << "a copy has just the room that it needs";
        set.addProperty(text(L"t"));
    }
    set.clear();
    EXPECT_EQ(set.getCount(), 0u);
    EXPECT_EQ(roomOf(set), 200u);
}

TEST_F(AllocationFailureTest, mostPropertiesShareABlock) {
    Set set;
    int blocks = 0;
    while (set.getCount() < 50) {
        const IFC2X3Property property;
        const unsigned int count = set.getCount();
        noMemory.during([&] {
            try {
                set.addProperty(property);
            } catch (const std::bad_alloc&) {
            }
        });
        if (set.getCount() == count) {
            ++blocks;
            set.addProperty(property);
        }
    }
    EXPECT_LE(blocks, 8);
}

TEST_F(AllocationFailureTest, copiedSetIsOldOrNewOrEmptyInside) {
    IFC2X3_PSet_Custom_s old;
    old.name[0] = L'o';
    old.properties = nested(1);
    IFC2X3_PSet_Custom_s source;
    source.name[0] = L's';
    source.properties = nested(2);
    // Without memory for its list a copied set is empty, at any level.
    const std::set<std::wstring> incomplete = {L"", L"t/d=1:value;c/=usage{};t/d=1:value;c/=usage{};"};
    forEachFailure([&](const Failure& failure) {
        IFC2X3_PSet_Custom_s set = old;
        bool thrown = false;
        const bool failed = failure.during([&] {
            try {
                set = source;
            } catch (const std::bad_alloc&) {
                thrown = true;
            }
        });
        const std::wstring result = describe(set.properties);
        EXPECT_EQ(set.name[0], thrown ? L'o' : L's');
        if (thrown || !failed) {
            EXPECT_EQ(result, describe(thrown ? old.properties : source.properties));
        } else {
            EXPECT_EQ(incomplete.count(result), 1u) << testing::PrintToString(result);
        }
        set.properties.addProperty(text(L"usable"));
        EXPECT_EQ(describe(set.properties), result + L"usable/d=1:value;");
        return failed;
    });
}

} // namespace
