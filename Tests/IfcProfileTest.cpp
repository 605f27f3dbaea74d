/**
 * @file IfcProfileTest.cpp
 * Every kind of profile and curve, in three units, against the area that its formula gives.
 */
#include "Support/IfcShapeModel.h"

#include <gtest/gtest.h>

#include <functional>

using namespace IfcReader;

namespace {

constexpr double pi = 3.14159265358979323846;
/** What a fillet of radius 1 adds to a corner. */
constexpr double fillet = 1.0 - pi / 4.0;

struct ProfileCase {
    const char* name;
    std::string text; ///< the profile is #101
    double area;
    Vector low; ///< in the plane
    Vector high;
    double tolerance = 0.002; ///< of the area, as a part of it
};

/** The area where @p isIn holds, counted in a box around the origin. */
double counted(double x, double y, const std::function<bool(double, double)>& isIn) {
    constexpr int cells = 2000;
    int count = 0;
    for (int i = 0; i < cells; ++i) {
        for (int k = 0; k < cells; ++k) {
            count += isIn(x * (2.0 * i + 1.0 - cells) / cells, y * (2.0 * k + 1.0 - cells) / cells) ? 1 : 0;
        }
    }
    return 4.0 * x * y * count / (static_cast<double>(cells) * cells);
}

void expectProfile(const ProfileCase& test, const ModelUnits& units) {
    SCOPED_TRACE(test.name);
    const ShapeModel model(ifcText(test.text + productOf100 + "#100=IFCEXTRUDEDAREASOLID(#101,#11,#14,{3});\n", units));
    const Shape shape = model.builder.build(30);
    for (const std::string& doubt : shape.doubts) {
        ADD_FAILURE() << doubt;
    }
    ASSERT_EQ(shape.parts.size(), 1u);
    const ShapeNumbers found(shape);
    EXPECT_TRUE(found.closed);
    EXPECT_LT(found.gap, 1e-9);
    EXPECT_NEAR(found.volume, 3.0 * test.area, 3.0 * test.area * test.tolerance);
    EXPECT_LT(length(found.low - test.low), 1e-3) << found.low.x << ' ' << found.low.y << ' ' << found.low.z;
    EXPECT_LT(length(found.high - test.high - Vector{0, 0, 3}), 1e-3) << found.high.x << ' ' << found.high.y;
}

class IfcProfileTest : public testing::TestWithParam<ModelUnits> {};

TEST_P(IfcProfileTest, parameterized) {
    const double tan3 = std::tan(3.0 * pi / 180.0);
    const double slopedL = counted(
        0.15, 0.25, [=](double x, double y) { return y <= -0.25 + 0.02 - tan3 * x || x <= -0.15 + 0.02 - tan3 * y; });
    const double slopedU =
        counted(0.1, 0.25, [=](double x, double y) { return x <= -0.09 || std::abs(y) >= 0.25 - (0.02 - tan3 * x); });
    const double slopedT = counted(0.15, 0.25, [=](double x, double y) {
        return std::abs(x) <= 0.015 + tan3 * y || y >= 0.25 - (0.03 - tan3 * (std::abs(x) - 0.075));
    });
    const ProfileCase cases[] = {
        {"rectangle", "#101=IFCRECTANGLEPROFILEDEF(.AREA.,$,#13,{0.4},{0.6});\n", 0.24, {-0.2, -0.3}, {0.2, 0.3}},
        {"moved and turned",
         "#101=IFCRECTANGLEPROFILEDEF(.AREA.,$,#102,{0.4},{0.6});\n#102=IFCAXIS2PLACEMENT2D(#103,#104);\n"
         "#103=IFCCARTESIANPOINT(({1},{2}));\n#104=IFCDIRECTION((0.,5.));\n",
         0.24,
         {0.7, 1.8},
         {1.3, 2.2}},
        {"rounded rectangle",
         "#101=IFCROUNDEDRECTANGLEPROFILEDEF(.AREA.,$,#13,{0.4},{0.6},{0.1});\n",
         0.24 - 4 * fillet * 0.01,
         {-0.2, -0.3},
         {0.2, 0.3}},
        {"hollow rectangle",
         "#101=IFCRECTANGLEHOLLOWPROFILEDEF(.AREA.,$,#13,{0.4},{0.6},{0.02},{0.03},{0.05});\n",
         0.24 - 4 * fillet * 0.0025 - 0.36 * 0.56 + 4 * fillet * 0.0009,
         {-0.2, -0.3},
         {0.2, 0.3}},
        {"circle", "#101=IFCCIRCLEPROFILEDEF(.AREA.,$,#13,{0.3});\n", pi * 0.09, {-0.3, -0.3}, {0.3, 0.3}},
        {"large circle", "#101=IFCCIRCLEPROFILEDEF(.AREA.,$,#13,{30});\n", pi * 900, {-30, -30}, {30, 30}, 0.0005},
        {"small circle",
         "#101=IFCCIRCLEPROFILEDEF(.AREA.,$,#13,{0.002});\n",
         pi * 4e-6,
         {-0.002, -0.002},
         {0.002, 0.002},
         0.003},
        {"hollow circle",
         "#101=IFCCIRCLEHOLLOWPROFILEDEF(.AREA.,$,#13,{0.3},{0.02});\n",
         pi * (0.09 - 0.0784),
         {-0.3, -0.3},
         {0.3, 0.3}},
        {"ellipse", "#101=IFCELLIPSEPROFILEDEF(.AREA.,$,#13,{0.3},{0.2});\n", pi * 0.06, {-0.3, -0.2}, {0.3, 0.2}},
        {"trapezium",
         "#101=IFCTRAPEZIUMPROFILEDEF(.AREA.,$,#13,{0.6},{0.2},{0.4},{0.1});\n",
         0.16,
         {-0.3, -0.2},
         {0.3, 0.2}},
        {"I",
         "#101=IFCISHAPEPROFILEDEF(.AREA.,$,#13,{0.3},{0.5},{0.01},{0.02},{0.03});\n",
         0.012 + 0.0046 + 4 * fillet * 0.0009,
         {-0.15, -0.25},
         {0.15, 0.25}},
        {"uneven I",
         "#101=IFCASYMMETRICISHAPEPROFILEDEF(.AREA.,$,#13,{0.3},{0.5},{0.01},{0.02},{0.03},{0.2},{0.015},{0.02},$);\n",
         0.006 + 0.003 + 0.00465 + 2 * fillet * 0.0013,
         {-0.15, -0.25},
         {0.15, 0.25}},
        {"L",
         "#101=IFCLSHAPEPROFILEDEF(.AREA.,$,#13,{0.5},{0.3},{0.02},{0.03},{0.01},$,$,$);\n",
         0.01 + 0.0056 + fillet * 0.0009 - 2 * fillet * 0.0001,
         {-0.15, -0.25},
         {0.15, 0.25}},
        {"sloped L",
         "#101=IFCLSHAPEPROFILEDEF(.AREA.,$,#13,{0.5},{0.3},{0.02},$,$,[3],$,$);\n",
         slopedL,
         {-0.15, -0.25},
         {0.15, 0.25}},
        {"U",
         "#101=IFCUSHAPEPROFILEDEF(.AREA.,$,#13,{0.5},{0.2},{0.01},{0.02},{0.03},{0.01},$,$);\n",
         0.005 + 0.0076 + 2 * fillet * (0.0009 - 0.0001),
         {-0.1, -0.25},
         {0.1, 0.25}},
        {"sloped U",
         "#101=IFCUSHAPEPROFILEDEF(.AREA.,$,#13,{0.5},{0.2},{0.01},{0.02},$,$,[3],$);\n",
         slopedU,
         {-0.1, -0.25},
         {0.1, 0.25}},
        {"T",
         "#101=IFCTSHAPEPROFILEDEF(.AREA.,$,#13,{0.5},{0.3},{0.02},{0.03},{0.01},{0.005},{0.004},$,$,$);\n",
         0.009 + 0.0094 + 2 * fillet * (0.0001 - 0.000025 - 0.000016),
         {-0.15, -0.25},
         {0.15, 0.25}},
        {"sloped T",
         "#101=IFCTSHAPEPROFILEDEF(.AREA.,$,#13,{0.5},{0.3},{0.03},{0.03},$,$,$,[3],[3],$);\n",
         slopedT,
         {-0.15, -0.25},
         {0.15, 0.25}},
        {"C",
         "#101=IFCCSHAPEPROFILEDEF(.AREA.,$,#13,{0.3},{0.2},{0.01},{0.05},{0.02},$);\n",
         0.0076 - 4 * fillet * (0.0009 - 0.0004),
         {-0.1, -0.15},
         {0.1, 0.15}},
        {"Z",
         "#101=IFCZSHAPEPROFILEDEF(.AREA.,$,#13,{0.3},{0.15},{0.02},{0.015},{0.01},{0.004});\n",
         0.006 + 0.0039 + 2 * fillet * (0.0001 - 0.000016),
         {-0.14, -0.15},
         {0.14, 0.15}},
        {"crane rail A",
         "#101=IFCCRANERAILASHAPEPROFILEDEF(.AREA.,$,#13,{0.15},{0.2},$,{0.1},{0.03},{0.04},{0.03},{0.12},{0.01},"
         "{0.015},{0.03},$);\n",
         2 * (0.001 + 0.08 * 0.005 + 0.0375 * 0.015 + 0.015 * 0.08 + 0.0325 * 0.01 + 0.0015),
         {-0.1, -0.075},
         {0.1, 0.075}},
        {"crane rail F",
         "#101=IFCCRANERAILFSHAPEPROFILEDEF(.AREA.,$,#13,{0.1},{0.08},$,{0.02},{0.03},{0.02},{0.015},{0.025},$);\n",
         2 * (0.0006 + 0.00025 + 0.00045 + 0.00025 + 0.0008),
         {-0.04, -0.05},
         {0.04, 0.05}}};
    for (const ProfileCase& test : cases) {
        expectProfile(test, GetParam());
    }
}

/** Points of the plane with numbers from #200 on. */
std::string points(std::initializer_list<std::pair<const char*, const char*>> list) {
    std::string text;
    int id = 200;
    for (const auto& [x, y] : list) {
        text += '#' + std::to_string(id++) + "=IFCCARTESIANPOINT(({" + x + "},{" + y + "}));\n";
    }
    return text;
}

TEST_P(IfcProfileTest, arbitrary) {
    const std::string square = points({{"-0.5", "-0.5"},
                                       {"0.5", "-0.5"},
                                       {"0.5", "0.5"},
                                       {"-0.5", "0.5"},
                                       {"0.3", "0.3"},
                                       {"0.4", "0.3"},
                                       {"0.4", "0.4"}});
    const std::string bent = points({{"0", "0"}, {"1", "0"}, {"1", "1"}, {"0", "1"}});
    const ProfileCase cases[] = {
        {"concave and clockwise",
         points({{"0", "0"}, {"0", "1"}, {"0.2", "1"}, {"0.2", "0.2"}, {"1", "0.2"}, {"1", "0"}}) +
             "#101=IFCARBITRARYCLOSEDPROFILEDEF(.AREA.,$,#102);\n"
             "#102=IFCPOLYLINE((#200,#201,#202,#203,#204,#205,#200));\n",
         0.36,
         {0, 0},
         {1, 1}},
        {"with voids",
         square + "#101=IFCARBITRARYPROFILEDEFWITHVOIDS(.AREA.,$,#102,(#103,#104));\n"
                  "#102=IFCPOLYLINE((#200,#201,#202,#203,#200));\n#103=IFCCIRCLE(#13,{0.2});\n"
                  "#104=IFCPOLYLINE((#204,#205,#206,#204));\n",
         1.0 - pi * 0.04 - 0.005,
         {-0.5, -0.5},
         {0.5, 0.5}},
        {"composite",
         "#101=IFCCOMPOSITEPROFILEDEF(.AREA.,$,(#102,#103),$);\n"
         "#102=IFCRECTANGLEPROFILEDEF(.AREA.,$,#13,{0.2},{0.2});\n"
         "#103=IFCRECTANGLEPROFILEDEF(.AREA.,$,#104,{0.2},{0.4});\n#104=IFCAXIS2PLACEMENT2D(#105,$);\n"
         "#105=IFCCARTESIANPOINT(({1},{0}));\n",
         0.12,
         {-0.1, -0.2},
         {1.1, 0.2}},
        {"derived",
         "#101=IFCDERIVEDPROFILEDEF(.AREA.,$,#102,#103,$);\n"
         "#102=IFCRECTANGLEPROFILEDEF(.AREA.,$,#13,{0.2},{0.1});\n"
         "#103=IFCCARTESIANTRANSFORMATIONOPERATOR2D(#105,$,#104,2.);\n"
         "#104=IFCCARTESIANPOINT(({1},{0}));\n#105=IFCDIRECTION((0.,1.));\n",
         0.08,
         {0.9, -0.2},
         {1.1, 0.2}},
        {"mirrored and scaled unevenly",
         "#101=IFCDERIVEDPROFILEDEF(.AREA.,$,#102,#103,$);\n"
         "#102=IFCTRAPEZIUMPROFILEDEF(.AREA.,$,#13,{0.6},{0.2},{0.4},{0.4});\n"
         "#103=IFCCARTESIANTRANSFORMATIONOPERATOR2DNONUNIFORM(#105,#106,#12,1.,2.);\n"
         "#105=IFCDIRECTION((1.,0.));\n#106=IFCDIRECTION((0.,-1.));\n",
         0.32,
         {-0.3, -0.4},
         {0.3, 0.4}},
        {"centre line",
         bent + "#101=IFCCENTERLINEPROFILEDEF(.AREA.,$,#102,{0.2});\n#102=IFCPOLYLINE((#200,#201,#202));\n",
         0.4,
         {0, -0.1},
         {1.1, 1}},
        {"closed centre line",
         bent + "#101=IFCCENTERLINEPROFILEDEF(.AREA.,$,#102,{0.1});\n#102=IFCPOLYLINE((#200,#201,#202,#203,#200));\n",
         0.4,
         {-0.05, -0.05},
         {1.05, 1.05}}};
    for (const ProfileCase& test : cases) {
        expectProfile(test, GetParam());
    }
}

/** Squares whose corners (low, low) and (high, high) are given, as polylines with numbers from @p id on. */
std::string squares(int id, std::initializer_list<std::pair<const char*, const char*>> list) {
    std::string text;
    for (const auto& [low, high] : list) {
        const std::string first = '#' + std::to_string(id);
        text += first + "=IFCPOLYLINE((";
        for (int i = 1; i <= 4; ++i) {
            text += '#' + std::to_string(id + i) + ',';
        }
        text += '#' + std::to_string(id + 1) + "));\n";
        for (int i = 1; i <= 4; ++i) {
            text += '#' + std::to_string(id + i) + "=IFCCARTESIANPOINT(({" + (i == 1 || i == 4 ? low : high) + "},{" +
                    (i < 3 ? low : high) + "}));\n";
        }
        id += 10;
    }
    return text;
}

TEST_P(IfcProfileTest, loopsThatMeet) {
    const std::string voids = "#101=IFCARBITRARYPROFILEDEFWITHVOIDS(.AREA.,$,#200,(#210,#220));\n";
    const std::string composite = "#101=IFCCOMPOSITEPROFILEDEF(.AREA.,$,(#102,#103),$);\n"
                                  "#102=IFCRECTANGLEPROFILEDEF(.AREA.,$,#13,{2},{2});\n";
    const std::string hook =
        "#101=IFCARBITRARYCLOSEDPROFILEDEF(.AREA.,$,#102);\n"
        "#102=IFCPOLYLINE((#103,#104,#105,#106,#107,#108,#109,#103));\n"
        "#103=IFCCARTESIANPOINT(({0},{0}));\n#104=IFCCARTESIANPOINT(({10},{0}));\n"
        "#105=IFCCARTESIANPOINT(({10},{0.2}));\n#106=IFCCARTESIANPOINT(({0.001},{0.2}));\n"
        "#107=IFCCARTESIANPOINT(({0.001},{0.199}));\n#108=IFCCARTESIANPOINT(({-0.0005},{0.199}));\n"
        "#109=IFCCARTESIANPOINT(({0},{0.2}));\n";
    const ProfileCase cases[] = {
        {"an outline that crosses itself at a corner by a millimetre", hook, 2, {0, 0}, {10, 0.2}},
        {"voids that overlap beside another one",
         "#101=IFCARBITRARYPROFILEDEFWITHVOIDS(.AREA.,$,#200,(#210,#220,#230));\n" +
             squares(200, {{"0", "10"}, {"1", "3"}, {"2", "4"}, {"6", "7"}}),
         92,
         {0, 0},
         {10, 10}},
        {"voids that overlap", voids + squares(200, {{"0", "10"}, {"1", "3"}, {"2", "4"}}), 93, {0, 0}, {10, 10}},
        {"the same void twice", voids + squares(200, {{"0", "10"}, {"1", "9"}, {"1", "9"}}), 36, {0, 0}, {10, 10}},
        {"voids that leave the outline, one wholly",
         voids + squares(200, {{"0", "10"}, {"9", "12"}, {"20", "21"}}),
         99,
         {0, 0},
         {10, 10}},
        {"voids that touch the outline and each other",
         voids + squares(200, {{"0", "10"}, {"0", "2"}, {"2", "3"}}),
         95,
         {0, 0},
         {10, 10}},
        {"parts that overlap", composite + "#103=IFCRECTANGLEPROFILEDEF(.AREA.,$,#13,{1},{4});\n", 6, {-1, -2}, {1, 2}},
        {"parts with sides in one line that overlap",
         composite + "#103=IFCRECTANGLEPROFILEDEF(.AREA.,$,#104,{2},{2});\n#104=IFCAXIS2PLACEMENT2D(#105,$);\n"
                     "#105=IFCCARTESIANPOINT(({1},{0}));\n",
         6,
         {-1, -1},
         {2, 1}}};
    for (const ProfileCase& test : cases) {
        expectProfile(test, GetParam());
    }
}

TEST_P(IfcProfileTest, curves) {
    const std::string closed = "#101=IFCARBITRARYCLOSEDPROFILEDEF(.AREA.,$,#102);\n#102=IFCCOMPOSITECURVE((#103,#104,"
                               "#105,#106),.F.);\n";
    const std::string straightsAndArcs =
        points({{"-0.3", "-0.2"}, {"0.3", "-0.2"}, {"0.3", "0.2"}, {"-0.3", "0.2"}, {"0.3", "0"}, {"-0.3", "0"}}) +
        "#103=IFCCOMPOSITECURVESEGMENT(.CONTINUOUS.,.T.,#107);\n#107=IFCPOLYLINE((#200,#201));\n"
        "#104=IFCCOMPOSITECURVESEGMENT(.CONTINUOUS.,.T.,#108);\n"
        "#105=IFCCOMPOSITECURVESEGMENT(.CONTINUOUS.,.T.,#109);\n#109=IFCPOLYLINE((#202,#203));\n"
        "#106=IFCCOMPOSITECURVESEGMENT(.CONTINUOUS.,.F.,#110);\n"
        "#111=IFCCIRCLE(#112,{0.2});\n#112=IFCAXIS2PLACEMENT2D(#204,$);\n"
        "#113=IFCCIRCLE(#114,{0.2});\n#114=IFCAXIS2PLACEMENT2D(#205,#115);\n#115=IFCDIRECTION((1.,1.));\n";
    const std::string stadium = straightsAndArcs + closed;
    const double stadiumArea = 0.24 + pi * 0.04;
    const std::string bezier =
        points({{"0.5", "0"}, {"0.5", "0.5"}, {"0", "0.5"}, {"0", "0"}}) +
        "#101=IFCARBITRARYCLOSEDPROFILEDEF(.AREA.,$,#102);\n#102=IFCCOMPOSITECURVE((#103,#104),.F.);\n"
        "#103=IFCCOMPOSITECURVESEGMENT(.CONTINUOUS.,.T.,#105);\n"
        "#104=IFCCOMPOSITECURVESEGMENT(.CONTINUOUS.,.T.,#106);\n#106=IFCPOLYLINE((#202,#203,#200));\n";
    const ProfileCase cases[] = {
        {"arcs by parameter, and by point in the other sense",
         stadium + "#108=IFCTRIMMEDCURVE(#111,(IFCPARAMETERVALUE([-90])),(IFCPARAMETERVALUE([90])),.T.,.PARAMETER.);\n"
                   "#110=IFCTRIMMEDCURVE(#113,(#200),(#203),.F.,.CARTESIAN.);\n",
         stadiumArea,
         {-0.5, -0.2},
         {0.5, 0.2}},
        {"arcs over the start of the circle, with both kinds of ends",
         stadium + "#108=IFCTRIMMEDCURVE(#111,(#201,IFCPARAMETERVALUE([270])),(#202,IFCPARAMETERVALUE([450])),.T.,."
                   "CARTESIAN.);\n"
                   "#110=IFCTRIMMEDCURVE(#113,(IFCPARAMETERVALUE([225])),(IFCPARAMETERVALUE([45])),.F.,.PARAMETER.);\n",
         stadiumArea,
         {-0.5, -0.2},
         {0.5, 0.2}},
        {"a composite within another one, backwards",
         straightsAndArcs +
             "#108=IFCTRIMMEDCURVE(#111,(IFCPARAMETERVALUE([-90])),(IFCPARAMETERVALUE([90])),.T.,.PARAMETER.);\n"
             "#110=IFCTRIMMEDCURVE(#113,(#200),(#203),.F.,.CARTESIAN.);\n"
             "#101=IFCARBITRARYCLOSEDPROFILEDEF(.AREA.,$,#102);\n#102=IFCCOMPOSITECURVE((#103,#116,#106),.F.);\n"
             "#116=IFCCOMPOSITECURVESEGMENT(.CONTINUOUS.,.F.,#117);\n#117=IFCCOMPOSITECURVE((#118,#119),.F.);\n"
             "#118=IFCCOMPOSITECURVESEGMENT(.CONTINUOUS.,.F.,#109);\n"
             "#119=IFCCOMPOSITECURVESEGMENT(.CONTINUOUS.,.F.,#108);\n",
         stadiumArea,
         {-0.5, -0.2},
         {0.5, 0.2}},
        {"half an ellipse and a line",
         points({{"0", "-0.3"}, {"1", "0"}}) +
             "#101=IFCARBITRARYCLOSEDPROFILEDEF(.AREA.,$,#102);\n#102=IFCCOMPOSITECURVE((#103,#104),.F.);\n"
             "#103=IFCCOMPOSITECURVESEGMENT(.CONTINUOUS.,.T.,#105);\n#106=IFCELLIPSE(#13,{0.5},{0.3});\n"
             "#105=IFCTRIMMEDCURVE(#106,(IFCPARAMETERVALUE([-90])),(IFCPARAMETERVALUE([90])),.T.,.PARAMETER.);\n"
             "#104=IFCCOMPOSITECURVESEGMENT(.CONTINUOUS.,.T.,#107);\n"
             "#107=IFCTRIMMEDCURVE(#108,(IFCPARAMETERVALUE({0.6})),(IFCPARAMETERVALUE(0.)),.T.,.PARAMETER.);\n"
             "#108=IFCLINE(#200,#109);\n#109=IFCVECTOR(#110,1.);\n#110=IFCDIRECTION((0.,1.));\n",
         pi * 0.075,
         {0, -0.3},
         {0.5, 0.3}},
        {"Bezier",
         bezier + "#105=IFCBEZIERCURVE(2,(#200,#201,#202),.UNSPECIFIED.,.F.,.F.);\n",
         0.25 - 0.25 / 6.0,
         {0, 0},
         {0.5, 0.5}},
        {"rational Bezier",
         bezier +
             "#105=IFCRATIONALBEZIERCURVE(2,(#200,#201,#202),.UNSPECIFIED.,.F.,.F.,(1.,0.70710678118654752,1.));\n",
         pi * 0.0625,
         {0, 0},
         {0.5, 0.5}},
        {"offset curve",
         points({{"0", "0"}, {"1", "0"}, {"1", "1"}, {"0", "1"}}) +
             "#101=IFCARBITRARYCLOSEDPROFILEDEF(.AREA.,$,#102);\n#102=IFCOFFSETCURVE2D(#103,{0.1},.F.);\n"
             "#103=IFCPOLYLINE((#200,#201,#202,#203,#200));\n",
         0.64,
         {0.1, 0.1},
         {0.9, 0.9}}};
    for (const ProfileCase& test : cases) {
        expectProfile(test, GetParam());
    }
}

INSTANTIATE_TEST_SUITE_P(Units, IfcProfileTest, testing::Values(metres, millimetres, feet),
                         [](const auto& test) { return std::string(test.param.name); });

/** What the area is can't be told: the body is there, but for its volume. */
TEST(IfcProfileDoubtTest, crossed) {
    const char* const items[] = {
        "#100=IFCEXTRUDEDAREASOLID(#101,#11,#14,{3});\n#101=IFCARBITRARYCLOSEDPROFILEDEF(.AREA.,$,#102);\n"
        "#102=IFCPOLYLINE((#200,#201,#202,#203,#200));\n",
        "#100=IFCREVOLVEDAREASOLID(#101,#11,#102,[360]);\n#101=IFCRECTANGLEPROFILEDEF(.AREA.,$,#13,{1},{1});\n"
        "#102=IFCAXIS1PLACEMENT(#10,#16);\n"};
    for (const char* const item : items) {
        const ShapeModel model(ifcText(item + points({{"0", "0"}, {"2", "2"}, {"2", "0"}, {"0", "4"}}) + productOf100));
        const Shape shape = model.builder.build(30);
        ASSERT_EQ(shape.parts.size(), 1u);
        EXPECT_FALSE(shape.parts[0].closed);
        ASSERT_EQ(shape.doubts.size(), 1u);
        EXPECT_NE(shape.doubts[0].find(": its profile crosses "), std::string::npos) << shape.doubts[0];
    }
}

/** Profiles that can't be: each gives one doubt that names the kind, and no part. */
TEST(IfcProfileDoubtTest, wrongSizes) {
    const char* const profiles[] = {
        "IFCRECTANGLEPROFILEDEF(.AREA.,$,#13,{0},{1})",
        "IFCRECTANGLEPROFILEDEF(.AREA.,$,#13,-1.,{1})",
        "IFCRECTANGLEPROFILEDEF(.AREA.,$,#13,1.E400,{1})",
        "IFCRECTANGLEPROFILEDEF(.AREA.,$,#13,1.E16,{1})",
        "IFCRECTANGLEPROFILEDEF(.AREA.,$,#13,$,{1})",
        "IFCRECTANGLEPROFILEDEF(.AREA.,$,#13,'1',{1})",
        "IFCCIRCLEPROFILEDEF(.AREA.,$,#13,{0})",
        "IFCCIRCLEHOLLOWPROFILEDEF(.AREA.,$,#13,{0.3},{0.3})",
        "IFCRECTANGLEHOLLOWPROFILEDEF(.AREA.,$,#13,{0.4},{0.6},{0.2},$,$)",
        "IFCISHAPEPROFILEDEF(.AREA.,$,#13,{0.3},{0.5},{0.4},{0.02},$)",
        "IFCUSHAPEPROFILEDEF(.AREA.,$,#13,{0.5},{0.2},{0.01},{0.3},$,$,$,$)",
        "IFCARBITRARYCLOSEDPROFILEDEF(.AREA.,$,#13)",
        "IFCARBITRARYCLOSEDPROFILEDEF(.AREA.,$,#101)",
        "IFCDERIVEDPROFILEDEF(.AREA.,$,#10,#11,$)",
        "IFCNOPROFILEDEF(.AREA.,$,#13)",
    };
    for (const char* const profile : profiles) {
        SCOPED_TRACE(profile);
        const ShapeModel model(ifcText("#101=" + std::string(profile) + ";\n" + productOf100 +
                                       "#100=IFCEXTRUDEDAREASOLID(#101,#11,#14,{3});\n"));
        const Shape shape = model.builder.build(30);
        EXPECT_TRUE(shape.parts.empty());
        ASSERT_EQ(shape.doubts.size(), 1u);
        EXPECT_EQ(shape.doubts[0].substr(0, 3), "IFC") << shape.doubts[0];
    }
}

} // namespace
