/**
 * @file IfcSolidTest.cpp
 * Every kind of solid, surface and half-space, in three units, against what its formula gives.
 */
#include "Support/IfcShapeModel.h"

#include <gtest/gtest.h>

#include <random>

using namespace IfcReader;

namespace {

constexpr double pi = 3.14159265358979323846;
constexpr double flat = 1e-6; ///< tolerance of what has no curves

struct SolidCase {
    const char* name;
    std::string text; ///< the item is #100
    double volume;
    Vector low;
    Vector high;
    double tolerance = 0.005; ///< of the volume, as a part of it
    bool closed = true;
};

void expectSolid(const SolidCase& test, const ModelUnits& units) {
    SCOPED_TRACE(test.name);
    const ShapeModel model(ifcText(test.text + productOf100, units));
    const Shape shape = model.builder.build(30);
    for (const std::string& doubt : shape.doubts) {
        ADD_FAILURE() << doubt;
    }
    ASSERT_FALSE(shape.parts.empty());
    const ShapeNumbers found(shape);
    EXPECT_EQ(found.closed, test.closed);
    EXPECT_LT(found.gap, 1e-6);
    EXPECT_NEAR(found.volume, test.volume, test.volume * test.tolerance + 1e-12);
    EXPECT_LT(length(found.low - test.low), 1e-3) << found.low.x << ' ' << found.low.y << ' ' << found.low.z;
    EXPECT_LT(length(found.high - test.high), 1e-3) << found.high.x << ' ' << found.high.y << ' ' << found.high.z;
}

class IfcSolidTest : public testing::TestWithParam<ModelUnits> {
protected:
    template <std::size_t size>
    void expectAll(const SolidCase (&cases)[size]) {
        for (const SolidCase& test : cases) {
            expectSolid(test, GetParam());
        }
    }
};

std::string rectangle(int id, const char* x, const char* y) {
    return '#' + std::to_string(id) + "=IFCRECTANGLEPROFILEDEF(.AREA.,$,#13,{" + x + "},{" + y + "});\n";
}

/** A place in space, and the placement that is one number lower. */
std::string place(int id, const char* point, const char* axes = "$,$") {
    return '#' + std::to_string(id) + "=IFCAXIS2PLACEMENT3D(#" + std::to_string(id + 1) + ',' + axes + ");\n#" +
           std::to_string(id + 1) + "=IFCCARTESIANPOINT((" + point + "));\n";
}

/** A disk of radius 0.1 along #101, which is what @p path says, between the trims. */
std::string disk(const std::string& trims, const std::string& path) {
    return "#100=IFCSWEPTDISKSOLID(#101,{0.1},$," + trims + ");\n#101=" + path + ";\n";
}

TEST_P(IfcSolidTest, partsOfPaths) {
    const std::string corner = "#102=IFCCARTESIANPOINT(({1},{0},{0}));\n#103=IFCCARTESIANPOINT(({1},{1},{0}));\n"
                               "#104=IFCCARTESIANPOINT(({2},{0},{0}));\n#105=IFCCIRCLE(#11,{1});\n"
                               "#106=IFCLINE(#10,#107);\n#107=IFCVECTOR(#15,{2});\n";
    const std::string upperHalf =
        "IFCTRIMMEDCURVE(#105,(IFCPARAMETERVALUE([0])),(IFCPARAMETERVALUE([180])),.T.,.PARAMETER.)";
    const std::string twoSegments = "IFCCOMPOSITECURVE((#108,#109),.F.);\n"
                                    "#108=IFCCOMPOSITECURVESEGMENT(.CONTINUOUS.,.T.,#110);\n"
                                    "#109=IFCCOMPOSITECURVESEGMENT(.CONTINUOUS.,.F.,#111);\n"
                                    "#110=IFCBEZIERCURVE(1,(#10,#102,#104),.UNSPECIFIED.,.F.,.F.);\n"
                                    "#111=IFCTRIMMEDCURVE(#112,(#113),(#104),.F.,.CARTESIAN.);\n"
                                    "#112=IFCLINE(#104,#107);\n#113=IFCCARTESIANPOINT(({6},{0},{0}))";
    const SolidCase cases[] = {
        {"an edge", disk("0.,1.", "IFCPOLYLINE((#10,#102,#103))") + corner, 0.01 * pi, {0, -0.1, -0.1}, {1, 0.1, 0.1}},
        {"from a corner on, though one corner is there twice",
         disk("2.,$", "IFCPOLYLINE((#10,#10,#102,#103))") + corner,
         0.01 * pi,
         {0.9, 0, -0.1},
         {1.1, 1, 0.1}},
        {"part of an arc", disk("[0],[90]", upperHalf) + corner, 0.005 * pi * pi, {0, 0, -0.1}, {1.1, 1.1, 0.1}},
        {"part of an arc, a turn further on",
         disk("[450],[600]", upperHalf) + corner,
         0.005 * pi * pi,
         {-1.1, 0, -0.1},
         {0, 1.1, 0.1}},
        {"part of a line",
         disk("0.,2.", "IFCTRIMMEDCURVE(#106,(IFCPARAMETERVALUE(5.)),(IFCPARAMETERVALUE(0.)),.F.,.PARAMETER.)") +
             corner,
         0.04 * pi,
         {0, -0.1, -0.1},
         {4, 0.1, 0.1}},
        {"half a Bezier curve",
         disk("$,0.5", "IFCBEZIERCURVE(2,(#10,#102,#104),.UNSPECIFIED.,.F.,.F.)") + corner,
         0.01 * pi,
         {0, -0.1, -0.1},
         {1, 0.1, 0.1}},
        {"a segment and a half, the second backwards both ways",
         disk("1.,3.", twoSegments) + corner,
         0.03 * pi,
         {1, -0.1, -0.1},
         {4, 0.1, 0.1}}};
    expectAll(cases);
    const ShapeModel none(ifcText(disk("3.,4.", "IFCPOLYLINE((#10,#102,#103))") + corner + productOf100, GetParam()));
    EXPECT_EQ(none.builder.build(30).doubts,
              std::vector<std::string>{"IFCPOLYLINE: nothing of it lies between its trims"});
}

TEST_P(IfcSolidTest, swept) {
    const SolidCase cases[] = {
        {"slanted extrusion",
         rectangle(101, "0.4", "0.6") +
             "#100=IFCEXTRUDEDAREASOLID(#101,#11,#102,{2});\n#102=IFCDIRECTION((2.,0.,2.));\n",
         0.24 * std::sqrt(2.0),
         {-0.2, -0.3, 0},
         {0.2 + std::sqrt(2.0), 0.3, std::sqrt(2.0)},
         flat},
        {"extruded downwards in a turned place",
         rectangle(101, "0.4", "0.6") + place(102, "{1},{2},{3}", "#15,#16") +
             "#100=IFCEXTRUDEDAREASOLID(#101,#102,#104,{2});\n#104=IFCDIRECTION((0.,0.,-1.));\n",
         0.48,
         {-1, 1.8, 2.7},
         {1, 2.2, 3.3},
         flat},
        {"quarter of a revolution",
         rectangle(101, "0.2", "0.4") + "#100=IFCREVOLVEDAREASOLID(#101,#11,#102,[90]);\n#102=IFCAXIS1PLACEMENT(#103,"
                                        "#16);\n#103=IFCCARTESIANPOINT(({1},{0},{0}));\n",
         0.04 * pi,
         {-0.1, -0.2, 0},
         {1, 0.2, 1.1}},
        {"whole revolution",
         rectangle(101, "0.2", "0.4") + "#100=IFCREVOLVEDAREASOLID(#101,#11,#102,[360]);\n#102=IFCAXIS1PLACEMENT("
                                        "#103,#16);\n#103=IFCCARTESIANPOINT(({1},{0},{0}));\n",
         0.16 * pi,
         {-0.1, -0.2, -1.1},
         {2.1, 0.2, 1.1}},
        {"revolution around an edge",
         rectangle(101, "0.2", "0.4") + "#100=IFCREVOLVEDAREASOLID(#101,#11,#102,[360]);\n#102=IFCAXIS1PLACEMENT("
                                        "#103,#16);\n#103=IFCCARTESIANPOINT(({-0.1},{0},{0}));\n",
         0.016 * pi,
         {-0.3, -0.2, -0.2},
         {0.1, 0.2, 0.2}},
        {"pipe",
         "#100=IFCSWEPTDISKSOLID(#101,{0.1},{0.05},0.,1.);\n#101=IFCPOLYLINE((#102,#103));\n"
         "#102=IFCCARTESIANPOINT(({0},{0},{0}));\n#103=IFCCARTESIANPOINT(({2},{0},{0}));\n",
         0.015 * pi,
         {0, -0.1, -0.1},
         {2, 0.1, 0.1}},
        {"bent bar",
         "#100=IFCSWEPTDISKSOLID(#101,{0.1},$,0.,2.);\n#101=IFCPOLYLINE((#102,#103,#104));\n"
         "#102=IFCCARTESIANPOINT(({0},{0},{0}));\n#103=IFCCARTESIANPOINT(({1},{0},{0}));\n"
         "#104=IFCCARTESIANPOINT(({1},{1},{0}));\n",
         0.02 * pi,
         {0, -0.1, -0.1},
         {1.1, 1, 0.1}},
        {"part of a bent bar",
         "#100=IFCSWEPTDISKSOLID(#101,{0.1},$,0.5,1.25);\n#101=IFCPOLYLINE((#102,#103,#104));\n"
         "#102=IFCCARTESIANPOINT(({0},{0},{0}));\n#103=IFCCARTESIANPOINT(({1},{0},{0}));\n"
         "#104=IFCCARTESIANPOINT(({1},{1},{0}));\n",
         0.0075 * pi,
         {0.5, -0.1, -0.1},
         {1.1, 0.25, 0.1}},
        {"half a ring",
         "#100=IFCSWEPTDISKSOLID(#101,{0.1},$,[0],[180]);\n#101=IFCCIRCLE(#11,{1});\n",
         0.01 * pi * pi,
         {-1.1, 0, -0.1},
         {1.1, 1.1, 0.1}},
        {"whole ring",
         "#100=IFCSWEPTDISKSOLID(#101,{0.1},{0.05},[0],[360]);\n#101=IFCCIRCLE(#11,{1});\n",
         0.015 * pi * pi,
         {-1.1, -1.1, -0.1},
         {1.1, 1.1, 0.1}},
        {"part of an arc that passes half a turn, in a composite path",
         "#100=IFCSWEPTDISKSOLID(#101,{0.1},$,[0],[45]);\n#101=IFCCOMPOSITECURVE((#102),.F.);\n"
         "#102=IFCCOMPOSITECURVESEGMENT(.CONTINUOUS.,.T.,#103);\n#104=IFCCIRCLE(#11,{1});\n"
         "#103=IFCTRIMMEDCURVE(#104,(IFCPARAMETERVALUE([135])),(IFCPARAMETERVALUE([225])),.T.,.PARAMETER.);\n",
         0.0025 * pi * pi,
         {-1.1, 0, -0.1},
         {-0.6364, 0.7778, 0.1}},
        {"part of a composite path",
         "#100=IFCSWEPTDISKSOLID(#101,{0.1},$,0.5,1.5);\n#101=IFCCOMPOSITECURVE((#102,#103),.F.);\n"
         "#102=IFCCOMPOSITECURVESEGMENT(.CONTINUOUS.,.T.,#104);\n#104=IFCPOLYLINE((#106,#107));\n"
         "#103=IFCCOMPOSITECURVESEGMENT(.CONTINUOUS.,.F.,#105);\n#105=IFCPOLYLINE((#108,#107));\n"
         "#106=IFCCARTESIANPOINT(({0},{0},{0}));\n#107=IFCCARTESIANPOINT(({1},{0},{0}));\n"
         "#108=IFCCARTESIANPOINT(({3},{0},{0}));\n",
         0.015 * pi,
         {0.5, -0.1, -0.1},
         {2, 0.1, 0.1}},
        {"along a curve on a plane",
         rectangle(101, "0.1", "0.2") + "#100=IFCSURFACECURVESWEPTAREASOLID(#101,#11,#102,[0],[90],#103);\n"
                                        "#102=IFCCIRCLE(#11,{1});\n#103=IFCPLANE(#11);\n",
         0.01 * pi,
         {0, 0, -0.05},
         {1.1, 1.1, 0.05}},
        {"along a line with a bend, on an upright surface",
         rectangle(101, "0.1", "0.2") +
             "#100=IFCSURFACECURVESWEPTAREASOLID(#101,#11,#102,0.,2.,#103);\n#102=IFCPOLYLINE((#10,#104,#105));\n"
             "#104=IFCCARTESIANPOINT(({2},{0},{0}));\n#105=IFCCARTESIANPOINT(({2},{2},{0}));\n"
             "#103=IFCSURFACEOFLINEAREXTRUSION(#106,#11,#14,{1});\n#106=IFCARBITRARYOPENPROFILEDEF(.CURVE.,$,#107);\n"
             "#107=IFCPOLYLINE((#108,#109,#110));\n#108=IFCCARTESIANPOINT(({-1},{0}));\n"
             "#109=IFCCARTESIANPOINT(({2},{0}));\n#110=IFCCARTESIANPOINT(({2},{3}));\n",
         0.08,
         {0, -0.05, -0.1},
         {2.05, 2, 0.1},
         flat},
        {"sectioned spine",
         "#100=IFCSECTIONEDSPINE(#103,(#101,#102),(#11,#104));\n" + rectangle(101, "1", "1") +
             rectangle(102, "0.5", "0.5") + place(104, "{0},{0},{2}") +
             "#103=IFCCOMPOSITECURVE((#106),.F.);\n#106=IFCCOMPOSITECURVESEGMENT(.CONTINUOUS.,.T.,#107);\n"
             "#107=IFCPOLYLINE((#10,#105));\n",
         3.5 / 3.0,
         {-0.5, -0.5, 0},
         {0.5, 0.5, 2},
         flat},
        {"open profile",
         "#101=IFCARBITRARYOPENPROFILEDEF(.CURVE.,$,#102);\n#102=IFCPOLYLINE((#103,#104));\n"
         "#103=IFCCARTESIANPOINT(({0},{0}));\n#104=IFCCARTESIANPOINT(({1},{0}));\n"
         "#100=IFCEXTRUDEDAREASOLID(#101,#11,#14,{3});\n",
         0.0,
         {0, 0, 0},
         {1, 0, 3},
         flat,
         false}};
    expectAll(cases);
}

const std::string block = "#110=IFCBLOCK(#11,{1},{1},{1});\n";

std::string combination(const char* operation, const std::string& second) {
    return block + "#100=IFCBOOLEANRESULT(." + operation + ".,#110,#111);\n" + second;
}

TEST_P(IfcSolidTest, constructed) {
    const SolidCase cases[] = {
        {"block", "#100=IFCBLOCK(#11,{1},{2},{3});\n", 6, {0, 0, 0}, {1, 2, 3}, flat},
        {"pyramid", "#100=IFCRECTANGULARPYRAMID(#11,{1},{2},{3});\n", 2, {0, 0, 0}, {1, 2, 3}, flat},
        {"cylinder", "#100=IFCRIGHTCIRCULARCYLINDER(#11,{2},{0.5});\n", pi / 2, {-0.5, -0.5, 0}, {0.5, 0.5, 2}},
        {"cone", "#100=IFCRIGHTCIRCULARCONE(#11,{3},{0.5});\n", pi / 4, {-0.5, -0.5, 0}, {0.5, 0.5, 3}},
        {"sphere",
         "#100=IFCCSGSOLID(#101);\n#101=IFCSPHERE(#11,{0.5});\n",
         pi / 6,
         {-0.5, -0.5, -0.5},
         {0.5, 0.5, 0.5}},
        {"union",
         combination("UNION", "#111=IFCBLOCK(#112,{1},{1},{1});\n" + place(112, "{0.5},{0.5},{0}")),
         1.75,
         {0, 0, 0},
         {1.5, 1.5, 1},
         flat},
        {"union of two that touch",
         combination("UNION", "#111=IFCBLOCK(#112,{1},{1},{1});\n" + place(112, "{1},{0},{0}")),
         2,
         {0, 0, 0},
         {2, 1, 1},
         flat},
        {"intersection",
         combination("INTERSECTION", "#111=IFCBLOCK(#112,{1},{1},{1});\n" + place(112, "{0.5},{0.25},{-0.5}")),
         0.1875,
         {0.5, 0.25, 0},
         {1, 1, 0.5},
         flat},
        {"difference",
         combination("DIFFERENCE",
                     "#111=IFCRIGHTCIRCULARCYLINDER(#112,{2},{0.25});\n" + place(112, "{0.5},{0.5},{-1}")),
         1 - pi / 16,
         {0, 0, 0},
         {1, 1, 1}},
        {"hollow inside",
         combination("DIFFERENCE", "#111=IFCBLOCK(#112,{0.5},{0.5},{0.5});\n" + place(112, "{0.25},{0.25},{0.25}")),
         0.875,
         {0, 0, 0},
         {1, 1, 1},
         flat},
        {"unions within a union: four that meet at an edge",
         combination("UNION", "#111=IFCBOOLEANRESULT(.UNION.,#120,#121);\n#120=IFCBLOCK(#122,{1},{1},{1});\n" +
                                  place(122, "{1},{1},{0}") + "#121=IFCBOOLEANRESULT(.UNION.,#126,#127);\n" +
                                  "#126=IFCBLOCK(#128,{1},{1},{1});\n" + place(128, "{1},{0},{0}") +
                                  "#127=IFCBLOCK(#131,{1},{1},{1});\n" + place(131, "{0},{1},{0}")),
         4,
         {0, 0, 0},
         {2, 2, 1},
         flat},
        {"tree of combinations",
         combination("DIFFERENCE", "#111=IFCBOOLEANRESULT(.UNION.,#120,#121);\n#120=IFCBLOCK(#122,{2},{0.5},{2});\n" +
                                       place(122, "{-0.5},{0.25},{0.5}") + "#121=IFCBLOCK(#124,{0.5},{2},{2});\n" +
                                       place(124, "{0.25},{-0.5},{0.5}")),
         0.5 + 0.125,
         {0, 0, 0},
         {1, 1, 1},
         flat}};
    expectAll(cases);
}

TEST_P(IfcSolidTest, halfSpaces) {
    const std::string plane = "#112=IFCPLANE(#113);\n" + place(113, "{5},{-7},{0.6}");
    const std::string openLine = "#113=IFCARBITRARYOPENPROFILEDEF(.CURVE.,$,#114);\n#114=IFCPOLYLINE((#115,#116,#117));"
                                 "\n#115=IFCCARTESIANPOINT(({0.2},{0.1}));\n#116=IFCCARTESIANPOINT(({0.5},{0.5}));\n"
                                 "#117=IFCCARTESIANPOINT(({0.8},{0.1}));\n";
    const SolidCase cases[] = {
        {"below a plane",
         combination("DIFFERENCE", "#111=IFCHALFSPACESOLID(#112,.T.);\n" + plane),
         0.4,
         {0, 0, 0.6},
         {1, 1, 1},
         flat},
        {"above a plane",
         combination("DIFFERENCE", "#111=IFCHALFSPACESOLID(#112,.F.);\n" + plane),
         0.6,
         {0, 0, 0},
         {1, 1, 0.6},
         flat},
        {"what a plane takes nothing of",
         combination("DIFFERENCE",
                     "#111=IFCHALFSPACESOLID(#112,.F.);\n#112=IFCPLANE(#113);\n" + place(113, "{5},{5},{1}")),
         1,
         {0, 0, 0},
         {1, 1, 1},
         flat},
        {"half-space first",
         block + "#100=IFCBOOLEANRESULT(.INTERSECTION.,#111,#110);\n#111=IFCHALFSPACESOLID(#112,.T.);\n" + plane,
         0.6,
         {0, 0, 0},
         {1, 1, 0.6},
         flat},
        {"a wedge of two half-spaces",
         combination("DIFFERENCE", "#111=IFCCSGSOLID(#118);\n#118=IFCBOOLEANRESULT(.INTERSECTION.,#119,#120);\n"
                                   "#119=IFCHALFSPACESOLID(#112,.F.);\n#120=IFCHALFSPACESOLID(#121,.T.);\n"
                                   "#121=IFCPLANE(#122);\n#122=IFCAXIS2PLACEMENT3D(#123,#15,#16);\n"
                                   "#123=IFCCARTESIANPOINT(({0.25},{9},{9}));\n" +
                                       plane),
         0.9,
         {0, 0, 0},
         {1, 1, 1},
         flat},
        {"within a polygon",
         combination("DIFFERENCE", "#111=IFCPOLYGONALBOUNDEDHALFSPACE(#112,.F.,#11,#118);\n" + plane +
                                       "#118=IFCPOLYLINE((#12,#119,#120,#12));\n#119=IFCCARTESIANPOINT(({1},{0}));\n"
                                       "#120=IFCCARTESIANPOINT(({0},{1}));\n"),
         0.8,
         {0, 0, 0},
         {1, 1, 1},
         flat},
        {"within a box",
         combination("DIFFERENCE", "#111=IFCBOXEDHALFSPACE(#112,.F.,#118);\n" + plane +
                                       "#118=IFCBOUNDINGBOX(#119,{2},{0.5},{2});\n"
                                       "#119=IFCCARTESIANPOINT(({-0.5},{-0.25},{-0.5}));\n"),
         0.9,
         {0, 0, 0},
         {1, 1, 1},
         flat},
        {"inside an extruded circle",
         combination("DIFFERENCE", "#111=IFCHALFSPACESOLID(#112,.T.);\n"
                                   "#112=IFCSURFACEOFLINEAREXTRUSION(#113,#11,#14,{1});\n"
                                   "#113=IFCCIRCLEPROFILEDEF(.CURVE.,$,#13,{0.5});\n"),
         1 - pi / 16,
         {0, 0, 0},
         {1, 1, 1}},
        {"outside an extruded circle",
         combination("DIFFERENCE", "#111=IFCHALFSPACESOLID(#112,.F.);\n"
                                   "#112=IFCSURFACEOFLINEAREXTRUSION(#113,#11,#14,{1});\n"
                                   "#113=IFCCIRCLEPROFILEDEF(.CURVE.,$,#13,{0.5});\n"),
         pi / 16,
         {0, 0, 0},
         {0.5, 0.5, 1}},
        {"beside an open line",
         combination("INTERSECTION", "#111=IFCHALFSPACESOLID(#112,.T.);\n"
                                     "#112=IFCSURFACEOFLINEAREXTRUSION(#113,#11,#14,{1});\n" +
                                         openLine),
         1 - 0.75 * 0.5 / 2, // what lies above a roof whose slopes go on downwards
         {0, 0, 0},
         {1, 1, 1},
         flat},
        {"inside a revolved surface",
         combination("DIFFERENCE", "#111=IFCHALFSPACESOLID(#112,.T.);\n#112=IFCSURFACEOFREVOLUTION(#113,#11,#118);\n"
                                   "#113=IFCARBITRARYOPENPROFILEDEF(.CURVE.,$,#114);\n#114=IFCPOLYLINE((#115,#116));\n"
                                   "#115=IFCCARTESIANPOINT(({0.5},{-1}));\n#116=IFCCARTESIANPOINT(({0.5},{2}));\n"
                                   "#118=IFCAXIS1PLACEMENT(#10,#16);\n"),
         1 - pi / 16,
         {0, 0, 0},
         {1, 1, 1}}};
    expectAll(cases);
    const ShapeModel united(
        ifcText(combination("UNION", "#111=IFCHALFSPACESOLID(#112,.T.);\n" + plane) + productOf100, GetParam()));
    const Shape uncut = united.builder.build(30);
    EXPECT_EQ(uncut.doubts, std::vector<std::string>{"IFCHALFSPACESOLID: nothing bounds it"});
    EXPECT_NEAR(ShapeNumbers(uncut).volume, 1.0, flat);
}

/** The six sides of a box as polyloops; those whose bit is set in @p turned are turned inwards. */
std::string boxFaces(int id, double low, double high, unsigned int turned = 0) {
    std::string text;
    for (int i = 0; i < 8; ++i) {
        const auto c = [&](int bit) { return '{' + std::to_string((i >> bit & 1) != 0 ? high : low) + '}'; };
        text += '#' + std::to_string(id + i) + "=IFCCARTESIANPOINT((" + c(0) + ',' + c(1) + ',' + c(2) + "));\n";
    }
    const int corners[6][4] = {{0, 2, 3, 1}, {4, 5, 7, 6}, {0, 1, 5, 4}, {2, 6, 7, 3}, {0, 4, 6, 2}, {1, 3, 7, 5}};
    for (int f = 0; f < 6; ++f) {
        const std::string loop = std::to_string(id + 8 + 3 * f);
        text += '#' + loop + "=IFCPOLYLOOP((";
        for (int k = 0; k < 4; ++k) {
            const int corner = corners[f][(turned >> f & 1) != 0 ? 3 - k : k];
            text += (k > 0 ? ",#" : "#") + std::to_string(id + corner);
        }
        text += "));\n#" + std::to_string(id + 9 + 3 * f) + "=IFCFACEOUTERBOUND(#" + loop + ",.T.);\n#" +
                std::to_string(id + 10 + 3 * f) + "=IFCFACE((#" + std::to_string(id + 9 + 3 * f) + "));\n";
    }
    return text;
}

/** The numbers of the faces @p from to @p to of boxFaces(). */
std::string faceList(int id, int from, int to) {
    std::string text;
    for (int f = from; f < to; ++f) {
        text += (f > from ? ",#" : "#") + std::to_string(id + 10 + 3 * f);
    }
    return text;
}

TEST_P(IfcSolidTest, givenByFaces) {
    const std::string brep = "#100=IFCFACETEDBREP(#101);\n#101=IFCCLOSEDSHELL((" + faceList(200, 0, 6) + "));\n";
    // A plate with a hole: top and bottom have holes in their faces, which are turned like the face.
    std::string plate = boxFaces(200, 0, 1) + boxFaces(300, 0.25, 0.75);
    for (int i = 0; i < 4; ++i) {
        plate += "#" + std::to_string(400 + i) + "=IFCCARTESIANPOINT(({0." + (i == 1 || i == 2 ? "75" : "25") +
                 "},{0." + (i > 1 ? "75" : "25") + "},{0}));\n#" + std::to_string(410 + i) + "=IFCCARTESIANPOINT(({0." +
                 (i == 1 || i == 2 ? "75" : "25") + "},{0." + (i > 1 ? "75" : "25") + "},{1}));\n";
    }
    plate += "#420=IFCPOLYLOOP((#400,#401,#402,#403));\n#421=IFCFACEBOUND(#420,.T.);\n"
             "#422=IFCPOLYLOOP((#410,#411,#412,#413));\n#423=IFCFACEBOUND(#422,.T.);\n"
             "#424=IFCFACE((#421,#209));\n#425=IFCFACE((#212,#423));\n";
    for (int i = 0; i < 4; ++i) {
        const auto corner = [&](int base) {
            return "#" + std::to_string(base + i) + ",#" + std::to_string(base + (i + 1) % 4);
        };
        const std::string id = std::to_string(430 + 3 * i);
        plate += "#" + id + "=IFCPOLYLOOP((" + corner(400) + ",#" + std::to_string(410 + (i + 1) % 4) + ",#" +
                 std::to_string(410 + i) + "));\n#" + std::to_string(431 + 3 * i) + "=IFCFACEOUTERBOUND(#" + id +
                 ",.F.);\n#" + std::to_string(432 + 3 * i) + "=IFCFACE((#" + std::to_string(431 + 3 * i) + "));\n";
    }
    plate += "#100=IFCFACETEDBREP(#101);\n#101=IFCCLOSEDSHELL((#424,#425," + faceList(200, 2, 6) +
             ",#432,#435,#438,#441));\n";
    const SolidCase cases[] = {
        {"brep", boxFaces(200, 0, 1) + brep, 1, {0, 0, 0}, {1, 1, 1}, flat},
        {"brep turned inwards", boxFaces(200, 0, 1, 63) + brep, 1, {0, 0, 0}, {1, 1, 1}, flat},
        {"brep turned anyhow", boxFaces(200, 0, 1, 21) + brep, 1, {0, 0, 0}, {1, 1, 1}, flat},
        {"brep with holes in faces", plate, 0.75, {0, 0, 0}, {1, 1, 1}, flat},
        {"brep with a void",
         boxFaces(200, 0, 1) + boxFaces(300, 0.25, 0.75) +
             "#100=IFCFACETEDBREPWITHVOIDS(#101,(#102));\n#101=IFCCLOSEDSHELL((" + faceList(200, 0, 6) +
             "));\n#102=IFCCLOSEDSHELL((" + faceList(300, 0, 6) + "));\n",
         0.875,
         {0, 0, 0},
         {1, 1, 1},
         flat},
        {"shell turned anyhow",
         boxFaces(200, 0, 1, 42) + "#100=IFCSHELLBASEDSURFACEMODEL((#101));\n#101=IFCOPENSHELL((" +
             faceList(200, 0, 6) + "));\n",
         1,
         {0, 0, 0},
         {1, 1, 1},
         flat},
        {"sets of faces that close together",
         boxFaces(200, 0, 1, 42) + "#100=IFCFACEBASEDSURFACEMODEL((#101,#102));\n#101=IFCCONNECTEDFACESET((" +
             faceList(200, 0, 2) + "));\n#102=IFCCONNECTEDFACESET((" + faceList(200, 2, 6) + "));\n",
         1,
         {0, 0, 0},
         {1, 1, 1},
         flat},
        {"open shell",
         boxFaces(200, 0, 1) + "#100=IFCSHELLBASEDSURFACEMODEL((#101));\n#101=IFCOPENSHELL((" + faceList(200, 0, 5) +
             "));\n",
         0,
         {0, 0, 0},
         {1, 1, 1},
         flat,
         false}};
    expectAll(cases);
}

TEST_P(IfcSolidTest, mapped) {
    const std::string source = "#101=IFCREPRESENTATIONMAP(#11,#102);\n"
                               "#102=IFCSHAPEREPRESENTATION(#18,'Body','CSG',(#103));\n" +
                               place(105, "{1},{0},{0}") + "#103=IFCBLOCK(#105,{1},{2},{3});\n";
    const std::string at = "#110=IFCCARTESIANPOINT(({10},{0},{0}));\n";
    const SolidCase cases[] = {
        {"moved",
         source + at +
             "#100=IFCMAPPEDITEM(#101,#104);\n"
             "#104=IFCCARTESIANTRANSFORMATIONOPERATOR3D($,$,#110,$,$);\n",
         6,
         {11, 0, 0},
         {12, 2, 3},
         flat},
        {"turned and scaled",
         source + at +
             "#100=IFCMAPPEDITEM(#101,#104);\n"
             "#104=IFCCARTESIANTRANSFORMATIONOPERATOR3D(#16,$,#110,2.,#14);\n",
         48,
         {6, 2, 0},
         {10, 4, 6},
         flat},
        {"mirrored",
         source + "#100=IFCMAPPEDITEM(#101,#104);\n#112=IFCDIRECTION((0.,-1.,0.));\n"
                  "#104=IFCCARTESIANTRANSFORMATIONOPERATOR3D(#15,#112,#10,1.,#14);\n",
         6,
         {1, -2, 0},
         {2, 0, 3},
         flat},
        {"mirrored by the second axis that is left out",
         source + "#100=IFCMAPPEDITEM(#101,#104);\n#112=IFCDIRECTION((-1.,0.,0.));\n"
                  "#104=IFCCARTESIANTRANSFORMATIONOPERATOR3D(#112,$,#10,1.,#14);\n",
         6,
         {-2, 0, 0},
         {-1, 2, 3},
         flat},
        {"scaled unevenly",
         source + "#100=IFCMAPPEDITEM(#101,#104);\n"
                  "#104=IFCCARTESIANTRANSFORMATIONOPERATOR3DNONUNIFORM($,$,#10,1.,$,2.,0.5);\n",
         6,
         {1, 0, 0},
         {2, 4, 1.5},
         flat},
        {"mapped within mapped",
         source + at +
             "#100=IFCMAPPEDITEM(#120,#104);\n#104=IFCCARTESIANTRANSFORMATIONOPERATOR3D($,$,#110,$,$);\n"
             "#120=IFCREPRESENTATIONMAP(#11,#121);\n"
             "#121=IFCSHAPEREPRESENTATION(#18,'Body','MappedRepresentation',(#122,#123));\n"
             "#122=IFCMAPPEDITEM(#101,#104);\n#123=IFCMAPPEDITEM(#101,#124);\n"
             "#124=IFCCARTESIANTRANSFORMATIONOPERATOR3D($,$,#10,$,$);\n",
         12,
         {11, 0, 0},
         {22, 2, 3},
         flat},
        {"origin elsewhere",
         source + "#100=IFCMAPPEDITEM(#120,#104);\n#104=IFCCARTESIANTRANSFORMATIONOPERATOR3D($,$,#10,$,$);\n" +
             place(121, "{0},{0},{5}") + "#120=IFCREPRESENTATIONMAP(#121,#102);\n",
         6,
         {1, 0, 5},
         {2, 2, 8},
         flat}};
    expectAll(cases);
}

INSTANTIATE_TEST_SUITE_P(Units, IfcSolidTest, testing::Values(metres, millimetres, feet),
                         [](const auto& test) { return std::string(test.param.name); });

} // namespace
