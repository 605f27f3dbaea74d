/**
 * @file IfcSolidTest.cpp
 * Every kind of constructed solid, surface and half-space, in three units, against what its formula gives.
 */
#include "Support/IfcSolidCase.h"

using namespace IfcReader;

namespace {

class IfcSolidTest : public SolidTest {};

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
