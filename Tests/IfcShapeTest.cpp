/**
 * @file IfcShapeTest.cpp
 * Shapes of products: where they stand, their openings, and what is told of those that can't be built.
 */
#include "Support/IfcShapeModel.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstring>
#include <thread>

using namespace IfcReader;

namespace {

std::string number(int id) {
    return '#' + std::to_string(id);
}

/** A product with one body; it takes the numbers up to @p id + 2. */
std::string product(int id, const char* keyword, const std::string& placement, int item, const char* name = "Body") {
    char globalId[23];
    std::snprintf(globalId, sizeof globalId, "%022d", id);
    return number(id) + '=' + keyword + "('" + globalId + "',$,$,$,$," + placement + ',' + number(id + 1) + ",$);\n" +
           number(id + 1) + "=IFCPRODUCTDEFINITIONSHAPE($,$,(" + number(id + 2) + "));\n" + number(id + 2) +
           "=IFCSHAPEREPRESENTATION(#18,'" + name + "','Any',(" + number(item) + "));\n";
}

/** A placement in another one; it takes the numbers up to @p id + 2. */
std::string placement(int id, const std::string& in, const std::string& point, const std::string& axes = "$,$") {
    return number(id) + "=IFCLOCALPLACEMENT(" + in + ',' + number(id + 1) + ");\n" + number(id + 1) +
           "=IFCAXIS2PLACEMENT3D(" + number(id + 2) + ',' + axes + ");\n" + number(id + 2) + "=IFCCARTESIANPOINT((" +
           point + "));\n";
}

std::string relation(int id, const char* keyword, const std::string& whole, const std::string& parts) {
    char globalId[23];
    std::snprintf(globalId, sizeof globalId, "%022d", id);
    return number(id) + '=' + keyword + "('" + globalId + "',$,$,$," + whole + ',' + parts + ");\n";
}

const std::string block = "#100=IFCBLOCK(#11,{1},{2},{3});\n";

/** A wall, block #100, with two openings in it, somewhere in the world. */
std::string wallWithOpenings(const char* where) {
    return block + placement(40, "$", where, "#14,#16") + placement(43, "#40", "{0.25},{0.5},{1}") +
           placement(46, "#43", "{0},{0},{1}") + "#101=IFCBLOCK(#11,{0.5},{0.5},{0.5});\n" +
           "#102=IFCRIGHTCIRCULARCYLINDER(#11,{0.5},{0.1});\n" + product(30, "IFCWALL", "#40", 100) +
           product(50, "IFCOPENINGELEMENT", "#43", 101) + product(53, "IFCOPENINGELEMENT", "#46", 102) +
           relation(60, "IFCRELVOIDSELEMENT", "#30", "#50") + relation(61, "IFCRELVOIDSELEMENT", "#30", "#53");
}

bool sameParts(const Shape& a, const Shape& b) {
    if (a.parts.size() != b.parts.size() || a.doubts != b.doubts) {
        return false;
    }
    for (std::size_t i = 0; i < a.parts.size(); ++i) {
        const ShapePart& p = a.parts[i];
        const ShapePart& q = b.parts[i];
        if (p.items != q.items || p.sizes != q.sizes || p.corners != q.corners || p.closed != q.closed ||
            p.vertices.size() != q.vertices.size() ||
            std::memcmp(p.vertices.data(), q.vertices.data(), p.vertices.size() * sizeof(Point)) != 0) {
            return false;
        }
    }
    return true;
}

TEST(IfcShapeTest, openingsAreCutWhereverTheModelStands) {
    const Shape here = ShapeModel(ifcText(wallWithOpenings("{1},{0},{0}"))).builder.build(30);
    const Shape farAway = ShapeModel(ifcText(wallWithOpenings("{100000},{-300000},{7}"))).builder.build(30);
    EXPECT_TRUE(here.doubts.empty());
    const ShapeNumbers numbers(here);
    EXPECT_NEAR(numbers.volume, 6 - 0.125 - 0.005 * 3.1415, 1e-4);
    EXPECT_LT(numbers.gap, 1e-9);
    EXPECT_NEAR(numbers.low.x, -1.0, 1e-9); // turned by a quarter
    EXPECT_NEAR(numbers.high.x, 1.0, 1e-9);
    EXPECT_EQ(here.parts.at(0).items, std::vector<std::uint64_t>{100});
    EXPECT_EQ(farAway.origin.y, -300000.0);
    EXPECT_TRUE(sameParts(here, farAway));
}

TEST(IfcShapeTest, openingsOfWholesAreCutFromTheirParts) {
    const ShapeModel model(
        ifcText(block + "#101=IFCBLOCK(#11,{0.5},{5},{1});\n#102=IFCBLOCK(#11,{1},{1},{1});\n" +
                product(30, "IFCWALL", "#17", 100) + product(33, "IFCOPENINGELEMENT", "#17", 101) +
                product(36, "IFCMEMBER", "#17", 102) +
                "#40=IFCELEMENTASSEMBLY('0000000000000000000040',$,$,$,$,#17,$,$,.SITE.,.NOTDEFINED.);\n" +
                relation(41, "IFCRELAGGREGATES", "#40", "(#30)") + relation(42, "IFCRELNESTS", "#30", "(#36)") +
                relation(43, "IFCRELVOIDSELEMENT", "#40", "#33")));
    EXPECT_NEAR(ShapeNumbers(model.builder.build(30)).volume, 6 - 1, 1e-9);
    EXPECT_NEAR(ShapeNumbers(model.builder.build(36)).volume, 0.5, 1e-9);
    EXPECT_TRUE(model.builder.build(40).parts.empty());
    EXPECT_TRUE(model.builder.build(40).doubts.empty());
    EXPECT_NEAR(ShapeNumbers(model.builder.build(33)).volume, 2.5, 1e-9);
}

TEST(IfcShapeTest, openingsThatOverlapAreCutOnce) {
    // From left to right: one by itself, two that overlap, one that touches the second of them, one inside another one.
    const char* const openings[][2] = {
        {"{1},{-1},{1}", "IFCBLOCK(#11,{0.5},{3},{1})"},   {"{3},{-1},{1}", "IFCBLOCK(#11,{1},{3},{1})"},
        {"{3.5},{-1},{1.5}", "IFCBLOCK(#11,{1},{3},{1})"}, {"{4.5},{-1},{1.5}", "IFCBLOCK(#11,{0.5},{3},{1})"},
        {"{7},{-1},{1}", "IFCBLOCK(#11,{1},{3},{1})"},     {"{7.25},{-1},{1.25}", "IFCBLOCK(#11,{0.5},{3},{0.5})"}};
    std::string text = "#100=IFCBLOCK(#11,{10},{0.5},{3});\n" + product(30, "IFCWALL", "#17", 100);
    int id = 200;
    for (const auto& [where, solid] : openings) {
        text += placement(id, "#17", where) + number(id + 3) + '=' + solid + ";\n" +
                product(id + 4, "IFCOPENINGELEMENT", number(id), id + 3) +
                relation(id + 7, "IFCRELVOIDSELEMENT", "#30", number(id + 4));
        id += 10;
    }
    const Shape shape = ShapeModel(ifcText(text)).builder.build(30);
    EXPECT_TRUE(shape.doubts.empty());
    const ShapeNumbers numbers(shape);
    EXPECT_NEAR(numbers.volume, (30 - 0.5 - (2 - 0.25) - 0.5 - 1) * 0.5, 1e-9);
    EXPECT_LT(numbers.gap, 1e-9);
    const double reveals = 3 + (6 + 1) + 4; // of the one, the three that hang together, and the last two
    EXPECT_NEAR(numbers.area, 2 * (30 - 3.75) + 26 * 0.5 + reveals * 0.5, 1e-6);
}

TEST(IfcShapeTest, gridPlacements) {
    const std::string grid =
        block + placement(40, "$", "{10},{0},{5}", "#14,#16") + product(30, "IFCCOLUMN", "#60", 100) +
        "#50=IFCGRID('0000000000000000000050',$,$,$,$,#40,$,(#51),(#52),$);\n"
        "#51=IFCGRIDAXIS('A',#53,.T.);\n#52=IFCGRIDAXIS('1',#55,.F.);\n"
        "#53=IFCLINE(#54,#56);\n#54=IFCCARTESIANPOINT(({0},{1}));\n#56=IFCVECTOR(#57,{1});\n#57=IFCDIRECTION((1.,0.));"
        "\n"
        "#55=IFCPOLYLINE((#58,#59));\n#58=IFCCARTESIANPOINT(({3},{5}));\n#59=IFCCARTESIANPOINT(({3},{9}));\n"
        "#60=IFCGRIDPLACEMENT(#61,$);\n";
    // In the grid's own coordinates: lines y = 1 and x = 3, the first moved to its left, the second, which runs
    // downwards, to its left as well.
    const ShapeModel model(ifcText(grid + "#61=IFCVIRTUALGRIDINTERSECTION((#51,#52),({0.5},{0.25},{2}));\n"));
    const Shape shape = model.builder.build(30);
    EXPECT_TRUE(shape.doubts.empty());
    EXPECT_NEAR(shape.origin.x, 10 - 1.5, 1e-9);
    EXPECT_NEAR(shape.origin.y, 3.25, 1e-9);
    EXPECT_NEAR(shape.origin.z, 7, 1e-9);
    EXPECT_NEAR(ShapeNumbers(shape).high.y, 4.25, 1e-9);
    // Turned towards another crossing.
    const ShapeModel turned(ifcText(grid + "#61=IFCVIRTUALGRIDINTERSECTION((#51,#52),(0.,0.));\n"
                                           "#62=IFCVIRTUALGRIDINTERSECTION((#51,#52),({1},0.));\n"));
    EXPECT_EQ(turned.builder.build(30).doubts.size(), 0u);
}

TEST(IfcShapeTest, representations) {
    // Only the body counts where there is one, in the first context that shows it; curves have none.
    const ShapeModel model(ifcText(
        block +
        "#101=IFCPOLYLINE((#10,#102));\n#102=IFCCARTESIANPOINT(({1},{0},{0}));\n"
        "#103=IFCBOUNDINGBOX(#10,{9},{9},{9});\n#104=IFCSPHERE(#11,{0});\n"
        "#30=IFCWALL('0000000000000000000030',$,$,$,$,#17,#31,$);\n"
        "#31=IFCPRODUCTDEFINITIONSHAPE($,$,(#32,#35,#33,#36,#34));\n"
        "#35=IFCSHAPEREPRESENTATION(#37,'Body','Curve2D',(#101));\n"
        "#36=IFCSHAPEREPRESENTATION(#37,'Body','CSG',(#100));\n"
        "#37=IFCGEOMETRICREPRESENTATIONSUBCONTEXT('Body','Model',*,*,*,*,#18,$,.SKETCH_VIEW.,$);\n#32="
        "IFCSHAPEREPRESENTATION(#18,'Axis','Curve2D',(#101));\n"
        "#33=IFCSHAPEREPRESENTATION(#18,'Body','CSG',(#100));\n"
        "#34=IFCSHAPEREPRESENTATION(#18,'Box','BoundingBox',(#103));\n" +
        product(40, "IFCWALL", "#17", 101, "Axis") + product(43, "IFCWALL", "#17", 101) +
        "#50=IFCWALL('0000000000000000000050',$,$,$,$,#17,#51,$);\n#51=IFCPRODUCTDEFINITIONSHAPE($,$,(#52,#34));\n"
        "#52=IFCSHAPEREPRESENTATION(#18,'Body','CSG',(#104));\n"
        "#60=IFCWALL('0000000000000000000060',$,$,$,$,$,$,$);\n"));
    EXPECT_NEAR(ShapeNumbers(model.builder.build(30)).volume, 6, 1e-9);
    for (const std::uint64_t bodyless : {40u, 43u, 60u}) {
        EXPECT_TRUE(model.builder.build(bodyless).parts.empty());
        EXPECT_TRUE(model.builder.build(bodyless).doubts.empty());
    }
    // What can't be built has its bounding box, which encloses nothing that may be counted.
    const Shape boxed = model.builder.build(50);
    ASSERT_EQ(boxed.doubts.size(), 1u);
    EXPECT_NE(boxed.doubts[0].find("IFCSPHERE"), std::string::npos);
    EXPECT_FALSE(boxed.parts.at(0).closed);
    EXPECT_NEAR(ShapeNumbers(boxed).high.z, 9, 1e-9);
}

TEST(IfcShapeTest, itemsFromTheOutermostToTheInnermost) {
    const ShapeModel model(ifcText(
        "#100=IFCMAPPEDITEM(#101,#104);\n#101=IFCREPRESENTATIONMAP(#11,#102);\n"
        "#102=IFCSHAPEREPRESENTATION(#18,'Body','CSG',(#103,#107));\n"
        "#104=IFCCARTESIANTRANSFORMATIONOPERATOR3D($,$,#10,$,$);\n#103=IFCBOOLEANRESULT(.DIFFERENCE.,#105,#106);\n"
        "#105=IFCBLOCK(#11,{1},{2},{3});\n#106=IFCBLOCK(#11,{0.5},{0.5},{0.5});\n#107=IFCCSGSOLID(#105);\n" +
        std::string(productOf100)));
    const Shape shape = model.builder.build(30);
    ASSERT_EQ(shape.parts.size(), 2u);
    EXPECT_EQ(shape.parts[0].items, (std::vector<std::uint64_t>{100, 103, 105}));
    EXPECT_EQ(shape.parts[1].items, (std::vector<std::uint64_t>{100, 107, 105}));
}

/** One doubt for a product that asks for too much, soon, and the same however often and by how many it is asked. */
TEST(IfcShapeTest, bombs) {
    std::string doubling = "#300=IFCSHAPEREPRESENTATION(#18,'Body','CSG',(#100));\n#100=IFCBLOCK(#11,{1},{1},{1});\n"
                           "#299=IFCCARTESIANTRANSFORMATIONOPERATOR3D($,$,#10,$,$);\n";
    for (int i = 0; i < 60; ++i) { // each shape is the one before it, ten times
        doubling += number(400 + i) + "=IFCREPRESENTATIONMAP(#11," + number(300 + i) + ");\n" + number(500 + i) +
                    "=IFCMAPPEDITEM(" + number(400 + i) + ",#299);\n" + number(301 + i) +
                    "=IFCSHAPEREPRESENTATION(#18,'Body','CSG',(" + number(500 + i);
        for (int k = 1; k < 10; ++k) {
            doubling += ',' + number(500 + i);
        }
        doubling += "));\n";
    }
    const std::string cases[] = {
        doubling + product(30, "IFCWALL", "#17", 559),
        // a shape within itself
        "#100=IFCMAPPEDITEM(#101,#104);\n#101=IFCREPRESENTATIONMAP(#11,#102);\n"
        "#102=IFCSHAPEREPRESENTATION(#18,'Body','CSG',(#100));\n"
        "#104=IFCCARTESIANTRANSFORMATIONOPERATOR3D($,$,#10,$,$);\n" +
            product(30, "IFCWALL", "#17", 100),
        "#100=IFCBOOLEANRESULT(.UNION.,#100,#100);\n" + product(30, "IFCWALL", "#17", 100),
        "#100=IFCCSGSOLID(#100);\n" + product(30, "IFCWALL", "#17", 100),
        "#100=IFCEXTRUDEDAREASOLID(#101,#11,#14,{3});\n#101=IFCCOMPOSITEPROFILEDEF(.AREA.,$,(#101,#101),$);\n" +
            product(30, "IFCWALL", "#17", 100),
        "#100=IFCEXTRUDEDAREASOLID(#101,#11,#14,{3});\n#101=IFCARBITRARYCLOSEDPROFILEDEF(.AREA.,$,#102);\n"
        "#102=IFCCOMPOSITECURVE((#103,#103),.F.);\n#103=IFCCOMPOSITECURVESEGMENT(.CONTINUOUS.,.T.,#102);\n" +
            product(30, "IFCWALL", "#17", 100),
        // placements in a circle
        block + "#40=IFCLOCALPLACEMENT(#41,#11);\n#41=IFCLOCALPLACEMENT(#40,#11);\n" +
            product(30, "IFCWALL", "#40", 100),
    };
    for (const std::string& text : cases) {
        SCOPED_TRACE(text.substr(0, 120));
        const ShapeModel model(ifcText(text));
        const Shape shape = model.builder.build(30);
        EXPECT_EQ(shape.doubts.size(), 1u);
        EXPECT_TRUE(sameParts(shape, model.builder.build(30)));
    }
}

TEST(IfcShapeTest, wrongNumbersAreDoubts) {
    const char* const items[] = {
        "#100=IFCBLOCK(#101,{1},{1},{1});\n#101=IFCAXIS2PLACEMENT3D(#102,$,$);\n#102=IFCCARTESIANPOINT((1.E300,0.,0.));"
        "\n",
        "#100=IFCBLOCK(#101,{1},{1},{1});\n#101=IFCAXIS2PLACEMENT3D(#102,$,$);\n#102=IFCCARTESIANPOINT(());\n",
        "#100=IFCBLOCK(#101,{1},{1},{1});\n#101=IFCAXIS2PLACEMENT3D(#102,$,$);\n#102=IFCCARTESIANPOINT((1.,2.,3.,4.));"
        "\n",
        "#100=IFCBLOCK(#101,{1},{1},{1});\n#101=IFCAXIS2PLACEMENT3D(#10,#102,$);\n#102=IFCDIRECTION((0.,0.,0.));\n",
        "#100=IFCREVOLVEDAREASOLID(#101,#11,#102,0.);\n#101=IFCCIRCLEPROFILEDEF(.AREA.,$,#13,{1});\n"
        "#102=IFCAXIS1PLACEMENT(#10,$);\n",
        "#100=IFCSWEPTDISKSOLID(#101,{0.1},{0.2},0.,1.);\n#101=IFCPOLYLINE((#10,#102));\n#102=IFCCARTESIANPOINT((1.,0.,"
        "0.));\n",
        "#100=IFCSWEPTDISKSOLID(#101,{0.1},$,0.,1.);\n#101=IFCPOLYLINE((#10,#10));\n",
        "#100=IFCFACETEDBREP(#101);\n#101=IFCCLOSEDSHELL(());\n",
        "#100=IFCMAPPEDITEM(#101,#104);\n#101=IFCREPRESENTATIONMAP(#11,#102);\n"
        "#102=IFCSHAPEREPRESENTATION(#18,'Body','CSG',(#103));\n#103=IFCBLOCK(#11,{1},{1},{1});\n"
        "#104=IFCCARTESIANTRANSFORMATIONOPERATOR3D($,$,#10,0.,$);\n",
        "#100=IFCNOSUCHSOLID(#11);\n",
        "#100=IFCBOOLEANRESULT(.DIFFERENCE.,#101,#102);\n#101=IFCHALFSPACESOLID(#103,.T.);\n#102=IFCBLOCK(#11,{1},{1},{"
        "1});\n"
        "#103=IFCPLANE(#11);\n",
    };
    for (const char* const item : items) {
        SCOPED_TRACE(item);
        const Shape shape = ShapeModel(ifcText(item + std::string(productOf100))).builder.build(30);
        EXPECT_TRUE(shape.parts.empty());
        ASSERT_EQ(shape.doubts.size(), 1u);
        EXPECT_EQ(shape.doubts[0].substr(0, 3), "IFC") << shape.doubts[0];
    }
}

/** A product that is shown by more than curves is there, or told of. */
TEST(IfcShapeTest, nothingVanishesSilently) {
    const std::string square = "#105=IFCCARTESIANPOINT(({2},0.,0.));\n#106=IFCCARTESIANPOINT(({2},{3},0.));\n"
                               "#107=IFCCARTESIANPOINT((0.,{3},0.));\n";
    const std::string boundary = "#100=IFCGEOMETRICSET((#101,#102));\n#101=IFCPOLYLINE((#10,#105));\n" + square;
    const std::string surfaces[] = {
        boundary + "#102=IFCFACEBASEDSURFACEMODEL((#103));\n#103=IFCCONNECTEDFACESET((#104));\n"
                   "#104=IFCFACE((#108));\n#108=IFCFACEOUTERBOUND(#109,.T.);\n"
                   "#109=IFCPOLYLOOP((#10,#105,#106,#107));\n",
        boundary + "#102=IFCRECTANGULARTRIMMEDSURFACE(#103,0.,0.,{2},{3},.T.,.T.);\n#103=IFCPLANE(#11);\n",
        boundary + "#102=IFCCURVEBOUNDEDPLANE(#103,#104,(#108));\n#103=IFCPLANE(#11);\n"
                   "#104=IFCPOLYLINE((#10,#110,#111,#112,#10));\n#110=IFCCARTESIANPOINT(({2},0.));\n"
                   "#111=IFCCARTESIANPOINT(({2},{4}));\n#112=IFCCARTESIANPOINT((0.,{4}));\n"
                   "#108=IFCPOLYLINE((#113,#114,#115,#116,#113));\n#113=IFCCARTESIANPOINT(({0.5},{1}));\n"
                   "#114=IFCCARTESIANPOINT(({1.5},{1}));\n#115=IFCCARTESIANPOINT(({1.5},{3}));\n"
                   "#116=IFCCARTESIANPOINT(({0.5},{3}));\n"};
    for (const std::string& text : surfaces) {
        SCOPED_TRACE(text);
        const Shape shape = ShapeModel(ifcText(text + productOf100)).builder.build(30);
        EXPECT_TRUE(shape.doubts.empty());
        ASSERT_EQ(shape.parts.size(), 1u);
        EXPECT_FALSE(shape.parts[0].closed);
        EXPECT_EQ(shape.parts[0].items.at(1), 102u);
        EXPECT_NEAR(ShapeNumbers(shape).area, 6, 1e-9);
    }
    const std::string box = "#100=IFCBOUNDINGBOX(#10,{1},{2},{3});\n";
    const std::pair<std::string, std::size_t> lacking[] = {
        {box + productOf100, 1},
        {box + product(30, "IFCWALL", "#17", 100, "Box"), 1},
        {"#100=IFCBOOLEANRESULT(.DIFFERENCE.,#101,#101);\n#101=IFCBLOCK(#11,{1},{1},{1});\n" +
             std::string(productOf100),
         0},
        {"#30=IFCWALL('0000000000000000000030',$,$,$,$,#17,#31,$);\n#31=IFCPRODUCTDEFINITIONSHAPE($,$,(#32));\n"
         "#32=IFCSHAPEREPRESENTATION(#18,'Body','Brep',());\n",
         0}};
    for (const auto& [text, parts] : lacking) {
        SCOPED_TRACE(text);
        const Shape shape = ShapeModel(ifcText(text)).builder.build(30);
        EXPECT_EQ(shape.doubts.size(), 1u);
        EXPECT_EQ(shape.parts.size(), parts);
    }
}

/** What is too far away is told of and never has numbers that are no places; what else there is stays. */
TEST(IfcShapeTest, beyondReach) {
    const std::string corner = "#100=IFCEXTRUDEDAREASOLID(#101,#11,#14,{1});\n"
                               "#101=IFCARBITRARYCLOSEDPROFILEDEF(.AREA.,$,#102);\n"
                               "#102=IFCPOLYLINE((#12,#103,#104,#105,#106,#107,#12));\n"
                               "#103=IFCCARTESIANPOINT((2.,0.));\n#104=IFCCARTESIANPOINT((2.,1.));\n"
                               "#105=IFCCARTESIANPOINT((1.,1.));\n#106=IFCCARTESIANPOINT((1.,2.));\n"
                               "#107=IFCCARTESIANPOINT((0.,2.));\n";
    std::string mapped = corner + "#300=IFCSHAPEREPRESENTATION(#18,'Body','CSG',(#100));\n";
    for (int i = 0; i < 21; ++i) { // each is the one before it, scaled: beyond all numbers at last
        mapped += number(400 + i) + "=IFCREPRESENTATIONMAP(#11," + number(300 + i) + ");\n" + number(500 + i) +
                  "=IFCMAPPEDITEM(" + number(400 + i) + ',' + number(600 + i) + ");\n" + number(600 + i) +
                  "=IFCCARTESIANTRANSFORMATIONOPERATOR3D($,$,#10," + (i < 20 ? "1.E15" : "1.E8") + ",$);\n" +
                  number(301 + i) + "=IFCSHAPEREPRESENTATION(#18,'Body','CSG',(" + number(500 + i) + "));\n";
    }
    std::string derived = "#100=IFCEXTRUDEDAREASOLID(#330,#11,#14,{1});\n"
                          "#299=IFCCARTESIANTRANSFORMATIONOPERATOR2D($,$,#12,1.E15);\n"
                          "#300=IFCRECTANGLEPROFILEDEF(.AREA.,$,#13,{1},{1});\n";
    for (int i = 0; i < 30; ++i) {
        derived += number(301 + i) + "=IFCDERIVEDPROFILEDEF(.AREA.,$," + number(300 + i) + ",#299,$);\n";
    }
    const std::string beside = "#150=IFCBLOCK(#11,{1},{2},{3});\n" + product(40, "IFCWALL", "#17", 150);
    const std::string models[] = {mapped + product(30, "IFCWALL", "#17", 520), derived + productOf100,
                                  "#100=IFCBLOCK(#11,{1.1e9},{1},{1});\n" + std::string(productOf100),
                                  block + placement(50, "$", "{1e9},{0},{0}") + product(30, "IFCWALL", "#50", 100)};
    for (const std::string& text : models) {
        SCOPED_TRACE(text.substr(0, 120));
        const ShapeModel model(ifcText(text + beside));
        const Shape shape = model.builder.build(30);
        EXPECT_TRUE(shape.parts.empty());
        ASSERT_EQ(shape.doubts.size(), 1u);
        EXPECT_NE(shape.doubts[0].find("farther than a million kilometres"), std::string::npos) << shape.doubts[0];
        EXPECT_NEAR(ShapeNumbers(model.builder.build(40)).volume, 6, 1e-9);
    }
    // What stands too far away is built all the same, and an opening there cuts nothing.
    const ShapeModel model(ifcText(block + placement(50, "$", "{3.5e9},{0},{0}") + beside +
                                   product(30, "IFCWALL", "#50", 100) + product(33, "IFCOPENINGELEMENT", "#50", 100) +
                                   relation(43, "IFCRELVOIDSELEMENT", "#40", "#33")));
    EXPECT_EQ(model.builder.build(30).doubts.size(), 1u);
    EXPECT_NEAR(ShapeNumbers(model.builder.build(30)).high.x, 1, 1e-9);
    EXPECT_EQ(model.builder.build(40).doubts.size(), 1u);
    EXPECT_NEAR(ShapeNumbers(model.builder.build(40)).volume, 6, 1e-9);
}

/** What is cut by something that can't be built stays uncut, with a doubt. */
TEST(IfcShapeTest, uncutIsBetterThanNothing) {
    const ShapeModel model(ifcText("#100=IFCBOOLEANRESULT(.DIFFERENCE.,#101,#102);\n#101=IFCBLOCK(#11,{1},{1},{1});\n"
                                   "#102=IFCSPHERE(#11,{-1});\n#103=IFCBLOCK(#11,{1},{1},{0});\n" +
                                   std::string(productOf100) + product(40, "IFCOPENINGELEMENT", "#17", 103) +
                                   relation(43, "IFCRELVOIDSELEMENT", "#30", "#40")));
    const Shape shape = model.builder.build(30);
    EXPECT_NEAR(ShapeNumbers(shape).volume, 1, 1e-9);
    EXPECT_EQ(shape.doubts.size(), 2u);
}

/** Of a shape within a shape, what can't be built is told by each product that stands for it, and the rest is there. */
TEST(IfcShapeTest, doubtsOfMappedShapes) {
    const ShapeModel model(ifcText(
        "#99=IFCCARTESIANTRANSFORMATIONOPERATOR3D($,$,#10,$,$);\n#100=IFCMAPPEDITEM(#101,#99);\n"
        "#101=IFCREPRESENTATIONMAP(#11,#102);\n#102=IFCSHAPEREPRESENTATION(#18,'Body','CSG',(#103,#104,#105));\n"
        "#103=IFCBLOCK(#11,{1},{1},{1});\n#104=IFCMAPPEDITEM(#106,#99);\n#105=IFCMAPPEDITEM(#106,#98);\n"
        "#98=IFCCARTESIANTRANSFORMATIONOPERATOR3D($,$,#10,0.,$);\n#106=IFCREPRESENTATIONMAP(#11,#107);\n"
        "#107=IFCSHAPEREPRESENTATION(#18,'Body','CSG',(#108,#109));\n#108=IFCBLOCK(#11,{2},{2},{2});\n"
        "#109=IFCSPHERE(#11,{0});\n" +
        product(30, "IFCCHAIR", "#17", 100) + product(33, "IFCCHAIR", "#17", 104) +
        product(36, "IFCCHAIR", "#17", 100)));
    for (const std::uint64_t chair : {30u, 36u}) {
        const Shape shape = model.builder.build(chair);
        ASSERT_EQ(shape.parts.size(), 2u);
        EXPECT_EQ(shape.parts[0].items, (std::vector<std::uint64_t>{100, 103}));
        EXPECT_EQ(shape.parts[1].items, (std::vector<std::uint64_t>{100, 104, 108}));
        ASSERT_EQ(shape.doubts.size(), 2u);
        EXPECT_EQ(shape.doubts[0].substr(0, 9), "IFCSPHERE");
        EXPECT_EQ(shape.doubts[1].substr(0, 35), "IFCCARTESIANTRANSFORMATIONOPERATOR3");
    }
    EXPECT_EQ(model.builder.build(33).doubts.size(), 1u);
}

TEST(IfcShapeTest, manyThreadsBuildTheSame) {
    std::string text =
        "#101=IFCREPRESENTATIONMAP(#11,#102);\n#102=IFCSHAPEREPRESENTATION(#18,'Body','CSG',(#103,#108));\n"
        "#104=IFCCARTESIANTRANSFORMATIONOPERATOR3D($,$,#10,$,$);\n#108=IFCSPHERE(#11,{0});\n"
        "#103=IFCBOOLEANRESULT(.DIFFERENCE.,#105,#106);\n#105=IFCBLOCK(#11,{1},{2},{3});\n"
        "#106=IFCSPHERE(#11,{0.5});\n#100=IFCMAPPEDITEM(#101,#104);\n";
    constexpr int products = 60;
    for (int i = 0; i < products; ++i) {
        text += product(1000 + 3 * i, "IFCFURNISHINGELEMENT", "#17", 100);
    }
    const ShapeModel model(ifcText(text));
    const ShapeModel other(ifcText(text));
    std::vector<Shape> shapes(products);
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&, t] {
            for (int i = t; i < products; i += 4) {
                shapes[static_cast<std::size_t>(i)] = model.builder.build(static_cast<std::uint64_t>(1000 + 3 * i));
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    for (int i = 0; i < products; ++i) {
        const Shape alone = other.builder.build(static_cast<std::uint64_t>(1000 + 3 * i));
        EXPECT_EQ(alone.doubts.size(), 1u);
        EXPECT_TRUE(sameParts(alone, shapes[static_cast<std::size_t>(i)]));
    }
    EXPECT_EQ(model.builder.work(), other.builder.work());
}

} // namespace
