/**
 * @file IfcSweptSolidTest.cpp
 * Every kind of swept solid, and the parts of their paths, in three units, against what its formula gives.
 */
#include "Support/IfcSolidCase.h"

using namespace IfcReader;

namespace {

class IfcSweptSolidTest : public SolidTest {};

std::string rectangle(int id, const char* x, const char* y) {
    return '#' + std::to_string(id) + "=IFCRECTANGLEPROFILEDEF(.AREA.,$,#13,{" + x + "},{" + y + "});\n";
}

/** A disk of radius 0.1 along #101, which is what @p path says, between the trims. */
std::string disk(const std::string& trims, const std::string& path) {
    return "#100=IFCSWEPTDISKSOLID(#101,{0.1},$," + trims + ");\n#101=" + path + ";\n";
}

TEST_P(IfcSweptSolidTest, partsOfPaths) {
    const std::string corner = "#102=IFCCARTESIANPOINT(({1},{0},{0}));\n#103=IFCCARTESIANPOINT(({1},{1},{0}));\n"
                               "#104=IFCCARTESIANPOINT(({2},{0},{0}));\n#105=IFCCIRCLE(#11,{1});\n"
                               "#106=IFCLINE(#10,#107);\n#107=IFCVECTOR(#15,{2});\n";
    const std::string upperHalf =
        "IFCTRIMMEDCURVE(#105,(IFCPARAMETERVALUE([0])),(IFCPARAMETERVALUE([180])),.T.,.PARAMETER.)";
    const std::string overBegin =
        "IFCTRIMMEDCURVE(#105,(IFCPARAMETERVALUE([270])),(IFCPARAMETERVALUE([90])),.T.,.PARAMETER.)";
    const std::string backwards =
        "IFCTRIMMEDCURVE(#105,(IFCPARAMETERVALUE([90])),(IFCPARAMETERVALUE([0])),.F.,.PARAMETER.)";
    const std::string twoSegments = "IFCCOMPOSITECURVE((#108,#109),.F.);\n"
                                    "#108=IFCCOMPOSITECURVESEGMENT(.CONTINUOUS.,.T.,#110);\n"
                                    "#109=IFCCOMPOSITECURVESEGMENT(.CONTINUOUS.,.F.,#111);\n"
                                    "#110=IFCBEZIERCURVE(1,(#10,#102,#104),.UNSPECIFIED.,.F.,.F.);\n"
                                    "#111=IFCTRIMMEDCURVE(#112,(#113),(#104),.F.,.CARTESIAN.);\n"
                                    "#112=IFCLINE(#104,#107);\n#113=IFCCARTESIANPOINT(({6},{0},{0}))";
    const SolidCase cases[] = {
        {"an edge", disk("1.,2.", "IFCPOLYLINE((#10,#102,#103))") + corner, 0.01 * pi, {0.9, 0, -0.1}, {1.1, 1, 0.1}},
        {"all edges",
         disk("0.,1.", "IFCPOLYLINE((#10,#102,#103))") + corner,
         0.02 * pi,
         {0, -0.1, -0.1},
         {1.1, 1, 0.1}},
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
        {"an arc over the begin of its circle",
         disk("[270],[90]", overBegin) + corner,
         0.01 * pi * pi,
         {0, -1.1, -0.1},
         {1.1, 1.1, 0.1}},
        {"the same, by a whole turn",
         disk("[0],[360]", overBegin) + corner,
         0.01 * pi * pi,
         {0, -1.1, -0.1},
         {1.1, 1.1, 0.1}},
        {"a backward arc by its own ends",
         disk("[90],[0]", backwards) + corner,
         0.005 * pi * pi,
         {0, 0, -0.1},
         {1.1, 1.1, 0.1}},
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

TEST_P(IfcSweptSolidTest, swept) {
    const std::string overlapping =
        "#101=IFCCOMPOSITEPROFILEDEF(.AREA.,$,(#102,#103),$);\n" + rectangle(102, "2", "2") + rectangle(103, "1", "4");
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
        {"quarter of a revolution of areas that overlap",
         overlapping + "#100=IFCREVOLVEDAREASOLID(#101,#11,#104,[90]);\n#104=IFCAXIS1PLACEMENT(#105,#16);\n"
                       "#105=IFCCARTESIANPOINT(({5},{0},{0}));\n",
         15 * pi,
         {-1, -2, 0},
         {5, 2, 6}},
        {"areas that overlap, along a circle",
         overlapping + "#100=IFCSURFACECURVESWEPTAREASOLID(#101,#11,#104,[0],[90],#105);\n"
                       "#104=IFCCIRCLE(#11,{5});\n#105=IFCPLANE(#11);\n",
         15 * pi,
         {0, 0, -1},
         {7, 7, 1}},
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

INSTANTIATE_TEST_SUITE_P(Units, IfcSweptSolidTest, testing::Values(metres, millimetres, feet),
                         [](const auto& test) { return std::string(test.param.name); });

} // namespace
