/**
 * @file StepTextTest.cpp
 * Arguments and texts of STEP files.
 */
#include "step/StepText.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <random>

using namespace IfcReader;

namespace {

TEST(StepTextTest, textsOfEveryEncodingBecomeUtf8) {
    const std::pair<const char*, const char*> texts[] = {{"", ""},
                                                         {"It''s \\\\ plain", "It's \\ plain"},
                                                         {"\\X\\E9\\X\\e9", "\u00E9\u00E9"},
                                                         {"\\X2\\00E94E2D\\X0\\!", "\u00E9\u4E2D!"},
                                                         {"\\X2\\D83DDE00\\X0\\", "\U0001F600"},
                                                         {"\\X4\\0001F6000000004F\\X0\\", "\U0001F600O"},
                                                         {"\\S\\i\\S\\D", "\u00E9\u00C4"},
                                                         {"\\S\\'' 5 ''a''", "\u00A7 5 'a'"},
                                                         {"\\PE\\\\S\\P\\PG\\\\S\\a\\PA\\\\S\\a", "\u0430\u03B1\u00E1"},
                                                         {"\\PB\\\\S\\1 \\PI\\\\S\\P", "\u0105 \u011E"},
                                                         {"\\PF\\\\S\\!", "\uFFFD"},
                                                         {"caf\u00E9", "caf\u00E9"},
                                                         {"broken\r\nline", "brokenline"},
                                                         {"cut \\X2\\00", "cut 00"},
                                                         {"cut \\S\\", "cut \\S\\"},
                                                         {"\\X\\G1", "?G1"},
                                                         {"\\Q\\", "\\Q\\"}};
    for (const auto& [encoded, text] : texts) {
        EXPECT_EQ(decodeStepText(encoded), text) << encoded;
    }
    EXPECT_EQ(decodeStepText(std::string(100000, 'x')).size(), 100000u);
}

TEST(StepTextTest, argumentsEndWhereTheyEnd) {
    StepArguments arguments("'a,b'')',  (1,(2,3)),$ ,*,.T.,#12, IFCLABEL ( 'x' ),-1.5E-3 ),'behind'");
    EXPECT_EQ(stepText(arguments.nextAfter(0)), "a,b')");
    StepArguments list = listMembers(arguments.nextAfter(0));
    EXPECT_EQ(stepInteger(list.nextAfter(0)), 1);
    EXPECT_EQ(list.next(), "(2,3)");
    EXPECT_FALSE(list.next());
    EXPECT_EQ(stepEnumeration(arguments.nextAfter(2)), "T");
    EXPECT_EQ(stepReference(arguments.nextAfter(0)), 12u);
    const auto typed = stepTyped(arguments.nextAfter(0));
    ASSERT_TRUE(typed);
    EXPECT_EQ(typed->keyword, "IFCLABEL");
    EXPECT_EQ(stepText(typed->value), "x");
    EXPECT_EQ(stepReal(arguments.nextAfter(0)), -0.0015);
    EXPECT_FALSE(arguments.next());
    EXPECT_FALSE(StepArguments(")").next());
    EXPECT_FALSE(StepArguments("").next());
}

TEST(StepTextTest, argumentsAreTakenWithoutLookingForTheirEnd) {
    StepArguments arguments("'(',( #7 ,1.5,#8/**/,(#9),-0.25 , $,3),5,(1,2),x");
    EXPECT_FALSE(arguments.nextDecimal());
    EXPECT_TRUE(arguments.skip(1));
    std::optional<StepArguments> list = arguments.nextList();
    ASSERT_TRUE(list);
    EXPECT_EQ(list->nextReference(), 7u);
    EXPECT_EQ(list->nextReference(), 8u);
    EXPECT_FALSE(list->nextReference());
    list = StepArguments("( #7 ,1.5,(2),-0.25 ,3)").nextList();
    EXPECT_TRUE(list->skip(1));
    EXPECT_EQ(list->nextDecimal(), 1.5);
    EXPECT_FALSE(list->nextDecimal());
    EXPECT_EQ(list->next(), "(2)");
    EXPECT_FALSE(list->nextDecimal()) << "a blank stands behind it";
    EXPECT_EQ(list->next(), "-0.25");
    EXPECT_EQ(list->nextDecimal(), 3.0);
    EXPECT_FALSE(list->nextDecimal());
    EXPECT_FALSE(list->skip(1));
    EXPECT_FALSE(StepArguments("5").nextDecimal()) << "it may go on";
    EXPECT_FALSE(StepArguments(")").nextList());
    EXPECT_FALSE(StepArguments("5,(1)").nextList());
}

TEST(StepTextTest, numbersAreRoundedAsTheyHaveToBe) {
    std::mt19937_64 random(5);
    for (int i = 0; i < 20000; ++i) {
        std::string text = std::to_string(random()).substr(0, 1 + random() % 20);
        if (random() % 8 != 0) {
            text.insert(1 + random() % text.size(), ".");
        }
        text = (random() % 2 != 0 ? "-" : "") + text + (random() % 8 == 0 ? "E-" + std::to_string(random() % 30) : "");
        const double expected = std::strtod(text.c_str(), nullptr);
        ASSERT_EQ(stepReal(text), expected) << text;
        ASSERT_EQ(StepArguments(text + ")").nextDecimal().value_or(expected), expected) << text;
    }
    EXPECT_TRUE(std::signbit(*stepReal("-0.")));
    EXPECT_EQ(StepArguments("0.001,").nextDecimal(), 0.001);
    EXPECT_FALSE(stepReal("1.2.3"));
}

TEST(StepTextTest, whatIsNoNumberIsNone) {
    for (const char* const number : {"1", "1.", "+1.", "1.E0", " 1.0 ", "10E-1"}) {
        EXPECT_EQ(stepReal(number), 1.0) << number;
    }
    for (const char* const other :
         {"", "-", "+", "+-1", ".5", "inf", "NaN", "1.E999", "1.x", "1 2", "0x1", "$", "'1'"}) {
        EXPECT_FALSE(stepReal(other)) << other;
    }
    EXPECT_FALSE(stepInteger("1."));
    EXPECT_FALSE(stepInteger("99999999999999999999"));
    EXPECT_FALSE(stepReference("#"));
    EXPECT_FALSE(stepReference("#99999999999999999999"));
}

} // namespace
