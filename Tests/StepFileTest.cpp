/**
 * @file StepFileTest.cpp
 * STEP files: which are read, which are refused, and the units that they give.
 */
#include "step/StepFile.h"

#include "IfcReader/IfcError.h"
#include "Units.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

using namespace IfcReader;

namespace {

const std::string begin = "ISO-10303-21;\nHEADER;\nFILE_SCHEMA(('IFC2X3'));\nENDSEC;\nDATA;\n";
const std::string end = "ENDSEC;\nEND-ISO-10303-21;\n";

std::string refusalOf(const std::string& text) {
    try {
        const StepFile file(text);
    } catch (const IfcError& e) {
        return e.what();
    }
    return "";
}

/** Instances as they are read, for comparison. */
std::string listed(const StepFile& file) {
    std::string list;
    for (std::size_t i = 0; i < file.size(); ++i) {
        list += '#' + std::to_string(file[i].id) + '=' + std::string(file[i].keyword) + '|';
        StepArguments arguments(file[i].arguments);
        for (auto argument = arguments.next(); argument; argument = arguments.next()) {
            list += std::string(stepQuoted(*argument) ? stepText(*argument) : *argument) + '|';
        }
        list += '\n';
    }
    return list;
}

TEST(StepFileTest, theSameInstancesInAnyLayout) {
    const std::string plain = begin + "#1=IFCLABELLED('a;b',.T.,(1.E-5,#2));\n#2=MYCLASS($);\n" + end;
    const std::string instances = "#1=IFCLABELLED|a;b|.T.|(1.E-5,#2)|\n#2=MYCLASS|$|\n";
    ASSERT_EQ(listed(StepFile(plain)), instances);
    const std::string layouts[] = {
        "\xEF\xBB\xBF" + plain,
        "/* first */" + plain + "/* last */\r\n" + std::string(3, '\0'),
        begin + "#2=MYCLASS($);#1=IFCLABELLED('a;b',.T.,(1.E-5,#2));" + end,
        begin + "# 1 = IfcLabelled\t( 'a;b'\v,.t.\f,(1.e-5,#2))\r;\r#2\r=\rmyclass\r(\r$\r)\r;\r" + end,
        begin + "/*#9=A();*/#1/*'*/=/**/IFCLABELLED/*;*/(/*(*/'a;b',.T.,(1.E-5,#2)/***/);#2=MYCLASS($/*/*/);" + end,
        "iso-10303-21;header;file_name('ENDSEC;DATA;FILE_SCHEMA((''X''))');file_schema(('Ifc2x3'));endsec;data;"
        "#1=IFCLABELLED('a;b',.T.,(1.E-5,#2));endsec;data;#2=MYCLASS($);endsec;end-iso-10303-21;"};
    for (const std::string& layout : layouts) {
        SCOPED_TRACE(layout);
        const StepFile file(layout);
        EXPECT_EQ(listed(file), instances);
        EXPECT_EQ(file.schema(), "IFC2X3");
    }
    EXPECT_EQ(StepFile(begin + "#1=A('ENDSEC; /* END-ISO-10303-21; */');" + end).size(), 1u);
    EXPECT_EQ(StepFile("ISO-10303-21;HEADER;ENDSEC;DATA;" + end).schema(), "");
}

TEST(StepFileTest, damagedFilesAreRefusedInOneLine) {
    const std::pair<std::string, const char*> files[] = {
        {"", "empty"},
        {"\xEF\xBB\xBF \n", "empty"},
        {"solid cube\nendsolid", "not an IFC file"},
        {std::string("ISO-10303-21;") + '\0' + "HEADER;", "truncated"},
        {begin + "#1=A();", "truncated"},
        {begin + "#1=A('", "truncated"},
        {begin + "#1=A();/*" + end, "truncated"},
        {begin + "#1=A();ENDSEC;END-ISO-10303-21", "truncated"},
        {begin + end + "#1=A();", "follows the end"},
        {begin + "#1=A((1);\n#2=B();" + end, "not closed (line 6)"},
        {begin + "\n\n#1=A(1));" + end, "no semicolon behind #1 (line 8)"},
        {begin + "\r/*\r\n*/\n\r#1=A(1));" + end, "no semicolon behind #1 (line 10)"},
        {begin + "#1=A(1)#2=B();" + end, "no semicolon behind #1"},
        {begin + "#1A();" + end, "no = behind #1"},
        {begin + "#1=A(\"0,#2\");" + end, "a binary value that is none"},
        {begin + "#=A();" + end, "without a number"},
        {begin + "#1=A(#);" + end, "without a number"},
        {begin + "1=A();" + end, "between the instances"},
        {begin + "#99999999999999999999=A();" + end, "too large"},
        {begin + "#5=A(#7777,#5);" + end, "#7777 is referred to and not there"},
        {begin + "#5=A((B(#777777777777)));" + end, "#777777777777 is referred to and not there"},
        {begin + "#3=A();#1=A();#3=B();" + end, "#3 is there more than once"},
        {begin + "#1=IFCDIRECTION((1.,0.),0.);" + end, "#1=IFCDIRECTION has 2 arguments instead of 1"},
        {begin + "#1=IFCWALL();" + end, "#1=IFCWALL has 0 arguments instead of 8"}};
    for (const auto& [text, reason] : files) {
        SCOPED_TRACE(text);
        const std::string refusal = refusalOf(text);
        EXPECT_NE(refusal.find(reason), std::string::npos) << refusal;
        EXPECT_EQ(refusal.find('\n'), std::string::npos) << refusal;
    }
    const std::string whole = begin + "#1=A('x',(#2,$));#2=B(/* c */1.);" + end;
    for (std::size_t size = 0; size < whole.size() - 1; ++size) {
        EXPECT_NE(refusalOf(whole.substr(0, size)), "") << size;
    }
}

TEST(StepFileTest, instancesAreFoundByNumberHoweverTheyAreNumbered) {
    std::mt19937 random(7);
    for (const std::uint64_t spread : {1u, 3u, 1000u, 1000000000u}) {
        std::vector<std::uint64_t> ids;
        std::uint64_t last = random() % spread;
        for (int i = 0; i < 500; ++i) {
            last += 1 + random() % spread;
            ids.push_back(last);
        }
        std::shuffle(ids.begin(), ids.end(), random);
        std::string text = begin;
        for (const std::uint64_t id : ids) {
            text += '#' + std::to_string(id) + "=A(" + std::to_string(id) + ",#" + std::to_string(ids[3]) + ");";
        }
        const StepFile file(text + end);
        ASSERT_EQ(file.size(), ids.size());
        for (const std::uint64_t id : ids) {
            const auto found = file.find(id);
            ASSERT_TRUE(found) << id;
            EXPECT_EQ(StepArguments(found->arguments).nextAfter(0), std::to_string(id));
            EXPECT_EQ(file.find(id + 1).has_value(), std::count(ids.begin(), ids.end(), id + 1) == 1);
        }
        EXPECT_FALSE(file.find(last + 1));
        EXPECT_FALSE(file.find(std::uint64_t{0}));
    }
}

TEST(StepFileTest, unitsOfEveryKind) {
    const std::string units =
        "#1=IFCPROJECT('x',$,$,$,$,$,$,$,#2);#2=IFCUNITASSIGNMENT((#3,#4,#5,#6,#8,#10,#20));"
        "#3=IFCCONVERSIONBASEDUNIT(#9,.LENGTHUNIT.,'FOOT',#30);#30=IFCMEASUREWITHUNIT(IFCLENGTHMEASURE(0.3048),#31);"
        "#31=IFCSIUNIT(*,.LENGTHUNIT.,$,.METRE.);#9=IFCDIMENSIONALEXPONENTS(1,0,0,0,0,0,0);"
        "#4=IFCSIUNIT(*,.AREAUNIT.,.CENTI.,.SQUARE_METRE.);#5=IFCSIUNIT(*,.VOLUMEUNIT.,.MILLI.,.CUBIC_METRE.);"
        "#6=IFCSIUNIT(*,.MASSUNIT.,.KILO.,.GRAM.);#8=IFCSIUNIT(*,.TIMEUNIT.,$,.SECOND.);"
        "#10=IFCDERIVEDUNIT((#11,#12),.THERMALTRANSMITTANCEUNIT.,$);#11=IFCDERIVEDUNITELEMENT(#13,1);"
        "#12=IFCDERIVEDUNITELEMENT(#3,-2);#13=IFCSIUNIT(*,.POWERUNIT.,.KILO.,.WATT.);"
        "#20=IFCCONVERSIONBASEDUNIT(#9,.PLANEANGLEUNIT.,'LOOP',#21);#21=IFCMEASUREWITHUNIT(IFCREAL(2.),#20);"
        "#99=IFCUNITASSIGNMENT((#31));";
    const StepFile file(begin + units + end);
    const Units read(file);
    EXPECT_DOUBLE_EQ(read.metre, 0.3048);
    EXPECT_TRUE(std::isfinite(read.radian));
    EXPECT_DOUBLE_EQ(read.factorOf("AREAUNIT"), 1e-4);
    EXPECT_DOUBLE_EQ(read.factorOf("VOLUMEUNIT"), 1e-9);
    EXPECT_DOUBLE_EQ(read.factorOf("MASSUNIT"), 1.0);
    EXPECT_DOUBLE_EQ(read.factorOf("THERMALTRANSMITTANCEUNIT"), 1000.0 / 0.3048 / 0.3048);
    EXPECT_DOUBLE_EQ(read.factorOf("FORCEUNIT"), 1.0);
    EXPECT_EQ(unitTypeOf("IFCPOSITIVELENGTHMEASURE"), "LENGTHUNIT");
    EXPECT_EQ(unitTypeOf("IFCTHERMALTRANSMITTANCEMEASURE"), "THERMALTRANSMITTANCEUNIT");
    EXPECT_EQ(unitTypeOf("IFCLABEL"), "");

    const StepFile bare(begin + "#99=IFCUNITASSIGNMENT((#31));#31=IFCSIUNIT(*,.LENGTHUNIT.,.MILLI.,.METRE.);" + end);
    EXPECT_DOUBLE_EQ(Units(bare).metre, 1e-3);
    EXPECT_DOUBLE_EQ(Units(bare).radian, 1.0);
}

} // namespace
