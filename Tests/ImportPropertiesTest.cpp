/**
 * @file ImportPropertiesTest.cpp
 * Property sets, from the text of a model to the report of the example host.
 */
#include "Support/ImportExample.h"

#include <PluginKit/Solids.h>
#include <PluginKit/Text.h>

#include <vector>

namespace {

using ImportPropertiesTest = ImportExampleTest;

/** The house in which the table has one more set, with the property #9001 that @p instances begin with. */
std::string withTableProperty(const std::string& house, const std::string& instances) {
    return replaced(house, "ENDSEC;\nEND-ISO",
                    "#9000=IFCPROPERTYSET('1aaaaaaaaaaaaaaaaaaaa1',#5,'Extra',$,(#9001));\n#9001=" + instances +
                        ";\n#9098=IFCRELDEFINESBYPROPERTIES('1bbbbbbbbbbbbbbbbbbbb1',#5,$,$,(#3413,#3413),#9000);\n"
                        "ENDSEC;\nEND-ISO");
}

/** A state as an earlier format had it: without the model and what else came later, and at first without properties. */
std::string stateOfFormat(int format, const std::string& state) {
    std::istringstream lines(state);
    std::string line;
    std::getline(lines, line);
    std::getline(lines, line);
    std::string text = "import-host-state " + std::to_string(format) + '\n';
    while (std::getline(lines, line) && line.compare(0, 4, "end ") != 0) {
        const std::vector<std::string_view> fields = PluginKit::split(line, '\t');
        for (std::size_t i = 0; i < 6; ++i) {
            text.append(fields[i]).append("\t");
        }
        text += fields[7];
        const std::size_t attributes = fields[10] == "-" ? 0 : static_cast<std::size_t>(PluginKit::toLong(fields[10]));
        for (std::size_t i = 11 + 2 * attributes; format > 1 && i < fields.size(); ++i) {
            text.append("\t").append(fields[i]);
        }
        text += '\n';
    }
    return text + line.substr(0, line.rfind(' ') + 1) + PluginKit::checksum(text) + '\n';
}

TEST_F(ImportPropertiesTest, everyEditedPropertyIsNamed) {
    const struct {
        const char* from;
        const char* to;
        const char* changes; ///< identity, set, name, old and new value
    } edits[] = {
        {"LoadBearing',$,IFCBOOLEAN(.T.),$);\n#821=", "LoadBearing',$,IFCBOOLEAN(.F.),$);\n#821=",
         R"([["3NvphVz4P4ogB_cxwdPnnC", "Pset_WallCommon", "LoadBearing", true, false]])"},
        {"IFCLABEL('F120')", "IFCLABEL('It''s \\X2\\4E2D\\X0\\\t 100%')",
         R"([["06vImXCGDCHQY58Q6Vm3lt", "Pset_SlabCommon", "FireRating", "F120", "It's \u4E2D\t 100%"]])"},
        {"IFCPLANEANGLEMEASURE(26.56505)", "IFCPLANEANGLEMEASURE(30.)",
         R"([["1kbCgeJprEhOMeq1JaCPJG", "Pset_SlabCommon", "PitchAngle", 26.56505, 30.0],
             ["1nqWHkJSLBwf$X0ZEa12m_", "Pset_SlabCommon", "PitchAngle", 26.56505, 30.0]])"},
        {"'FireExit',$,IFCBOOLEAN(.F.)", "'FireExit',$,IFCBOOLEAN(.T.)",
         R"([["0Ls4IvI2v5nORbKYJdD5Z1", "Pset_DoorCommon", "FireExit", false, true]])"},
        {"IFCPLANEANGLEMEASURE(4.764)", "IFCPLANEANGLEMEASURE(4.5)",
         R"([["3oEgqfQLz4dxETxKAwbBXH", "Pset_RampCommon", "RequiredSlope", 4.764, 4.5]])"},
        {"IFCPOSITIVELENGTHMEASURE(0.05)", "IFCPOSITIVELENGTHMEASURE(4.E-002)",
         R"([["1ObFvFM$51Ux3ZQh4LFFOP", "Pset_RailingCommon", "Diameter", 0.05, 0.04]])"},
        {"IFCINTEGER(24)", "IFCINTEGER(3000000000)",
         R"([["1Hd7MYGzT7xfPnKQ1cRawj", "GardenFurniture", "Warranty.Months", 24, 3000000000]])"},
        {"IFCLOGICAL(.U.)", "IFCLOGICAL(.T.)",
         R"([["1Hd7MYGzT7xfPnKQ1cRawj", "GardenFurniture", "StaysOutside", "unknown", true]])"},
        {"IFCMASSMEASURE(31.5)", "$", R"([["1Hd7MYGzT7xfPnKQ1cRawj", "GardenFurniture", "Weight", 31.5, null]])"},
        {"IFCCOUNTMEASURE(3)", "IFCCOUNTMEASURE(2)",
         R"([["1cytZbM913oPTxhjZHfVcM", "Pset_DoorWindowGlazingType", "GlassLayers", 3, 2],
             ["1S212e$JDE99gGm31lBhd8", "Pset_DoorWindowGlazingType", "GlassLayers", 3, 2],
             ["03a6ITW7vBEPSH9OqDCYxE", "Pset_DoorWindowGlazingType", "GlassLayers", 3, 2],
             ["3dBWPFtdvEpwYkB2jZAWq5", "Pset_DoorWindowGlazingType", "GlassLayers", 3, 2],
             ["2l8cIIoOb71wumkfi_tGE2", "Pset_DoorWindowGlazingType", "GlassLayers", 3, 2]])"}};

    const json first = import(house_);
    std::string edited = house_;
    PropertyChanges expected;
    std::set<std::string> objects;
    for (const auto& [from, to, changes] : edits) {
        edited = replaced(edited, from, to);
        for (const json& change : json::parse(changes)) {
            expected.insert(change);
            objects.insert(change[0]);
        }
    }
    const json report = import(edited);
    EXPECT_EQ(changedProperties(report), expected);
    EXPECT_EQ(report["counts"]["properties"], objects.size());
    EXPECT_EQ(report["counts"]["unchanged"], first["objects"].size() - objects.size());

    // Properties say nothing of where an object is, and are listed wherever it is.
    const json moved = import(movedHouse(house_, "5.,0.,0."));
    EXPECT_FALSE(moved["displacement"].is_null());
    EXPECT_EQ(moved["counts"]["properties"], objects.size());
    EXPECT_EQ(changedProperties(moved).size(), expected.size());
}

TEST_F(ImportPropertiesTest, valuesOfAllKindsAreCompared) {
    const std::string longText(400, 'x');
    const std::string type = "IFCPROPERTYSINGLEVALUE('P',$,IFCREAL(1.),$);\n"
                             "#9010=IFCFURNITURETYPE('1cccccccccccccccccccc1',#5,'T',$,$,(#9011),$,$,$,.NOTDEFINED.);\n"
                             "#9011=IFCPROPERTYSET('1dddddddddddddddddddd1',#5,'Extra',$,(#9012,#9013));\n"
                             "#9012=IFCPROPERTYSINGLEVALUE('P',$,IFCREAL(7.),$);\n"
                             "#9013=IFCPROPERTYSINGLEVALUE('Q',$,IFCREAL(8.),$);\n"
                             "#9014=IFCRELDEFINESBYTYPE('1eeeeeeeeeeeeeeeeeeee1',#5,$,$,(#3413),#9010)";
    const struct {
        std::string before;
        std::string after;
        std::string changes; // of set "Extra": name, old and new value
    } cases[] = {
        {"IFCPROPERTYENUMERATEDVALUE('P',$,(IFCLABEL('a'),IFCLABEL('b')),$)",
         "IFCPROPERTYENUMERATEDVALUE('P',$,(IFCLABEL('a'),IFCLABEL('c, d')),$)", R"([["P", "a, b", "a, c, d"]])"},
        {"IFCPROPERTYLISTVALUE('P',$,(IFCINTEGER(1),IFCINTEGER(2)),$)", "IFCPROPERTYLISTVALUE('P',$,$,$)",
         R"([["P", "1, 2", null]])"},
        {"IFCPROPERTYBOUNDEDVALUE('P',$,IFCREAL(5.),IFCREAL(1.),$)", "IFCPROPERTYBOUNDEDVALUE('P',$,$,IFCREAL(1.),$)",
         R"([["P", "1. .. 5.", "1. .. "]])"},
        {"IFCPROPERTYSINGLEVALUE('P',$,IFCTEXT('" + longText + "a'),$)",
         "IFCPROPERTYSINGLEVALUE('P',$,IFCTEXT('" + longText + "b'),$)",
         R"([["P", ")" + longText + R"(a", ")" + longText + R"(b"]])"},
        {"IFCPROPERTYSINGLEVALUE('P',$,IFCLABEL('a'';b'),$)",
         "IFCPROPERTYSINGLEVALUE /*'*/ (\r\n'P', $,/* ; */IFCTEXT\n( 'a'';\nb' /*)*/ ) , $ )", "[]"},
        {"IFCPROPERTYSINGLEVALUE('Weight',$,IFCREAL(1.),$)", "IFCPROPERTYSINGLEVALUE('Weight',$,IFCREAL(2.),$)",
         R"([["Weight", 1.0, 2.0]])"},
        {"IFCPROPERTYSINGLEVALUE('P',$,$,$)", "IFCPROPERTYSINGLEVALUE('P',$,IFCBOOLEAN(.U.),$)",
         R"([["P", null, "unknown"]])"},
        {"IFCPROPERTYSINGLEVALUE('P',$,IFCREAL(1.E999),$)", "IFCPROPERTYSINGLEVALUE('P',$,IFCREAL(-1.5E-3),$)",
         R"([["P", "1.E999", -0.0015]])"},
        {"IFCPROPERTYSINGLEVALUE('P',$,IFCLENGTHMEASURE(2.5),$)",
         "IFCPROPERTYSINGLEVALUE('P',$,IFCLENGTHMEASURE(2500.),#9002);\n"
         "#9002=IFCSIUNIT(*,.LENGTHUNIT.,.MILLI.,.METRE.)",
         "[]"},
        {"IFCCOMPLEXPROPERTY('C',$,'',(#9002,#9003));\n#9002=IFCPROPERTYSINGLEVALUE('P',$,IFCREAL(1.),$);\n"
         "#9003=IFCCOMPLEXPROPERTY('D',$,'',())",
         "IFCCOMPLEXPROPERTY('C',$,'',(#9003));\n#9002=IFCPROPERTYSINGLEVALUE('P',$,IFCREAL(1.),$);\n"
         "#9003=IFCCOMPLEXPROPERTY('D',$,'',(#9002))",
         R"([["C.D.P", null, 1.0], ["C.P", 1.0, null]])"},
        {"IFCPROPERTYSINGLEVALUE('P',$,$,$)",
         "IFCCOMPLEXPROPERTY('C',$,'',(#9001,#9001,#9002));\n#9002=IFCPROPERTYSET('short',$,$,$,(#9002))", "[]"},
        {type, replaced(type, "IFCREAL(7.)", "IFCREAL(6.)"), "[]"},
        {type, replaced(type, "IFCREAL(8.)", "IFCREAL(9.)"), R"([["Q", 8.0, 9.0]])"},
        {type, replaced(type, "IFCREAL(1.)", "$"), R"([["P", 1.0, 7.0]])"}};
    for (const auto& [before, after, changes] : cases) {
        SCOPED_TRACE(after);
        import(withTableProperty(house_, before));
        json found = json::array();
        for (const json& change : changedProperties(import(withTableProperty(house_, after)))) {
            EXPECT_EQ(change[0], "1Hd7MYGzT7xfPnKQ1cRawj");
            EXPECT_EQ(change[1], "Extra");
            found.push_back(json::array({change[2], change[3], change[4]}));
        }
        EXPECT_EQ(found, json::parse(changes));
    }
}

TEST_F(ImportPropertiesTest, streamsHoldSetsAndSolids) {
    import(house_);
    EXPECT_NE(readFile(file("state/output/attributes"))
                  .find("set\t22\t0Ls4IvI2v5nORbKYJdD5Z1\tattributes\t-\tAttributes\t\n"
                        "property\t0\tName\t\ttext\tFront door\n"
                        "property\t0\tTag\t\ttext\tD-01\n"
                        "property\t0\tStorey\t\ttext\tGround floor\n"
                        "property\t0\tMaterial\t\ttext\tTimber\n"
                        "property\t0\tColour\t\ttext\t0.6 0.42 0.24 1\n"
                        "set\t22\t0Ls4IvI2v5nORbKYJdD5Z1\tcustom\t1ijk8xBsT24eX9U0L4H$Fn\tPset_DoorCommon\t\n"
                        "property\t0\tReference\t\ttext\tD-100\n"),
              std::string::npos);
    EXPECT_NE(readFile(file("state/output/attributes"))
                  .find("\tIFC2X3_PSet_RampCommon\t1$1XnNqF58ROLChDaYVun2\tPset_RampCommon\t\n"
                        "property\t0\tReference\t\ttext\tRA-5\n"
                        "property\t0\tRequiredHeadroom\t\tlength\t2.2\n"
                        "property\t0\tSlope\t\tangle\t0.08314748556500987\tRequiredSlope\n"),
              std::string::npos);

    const std::string solids = readFile(file("state/output/solids"));
    PluginKit::SolidsReader reader(solids);
    std::size_t count = 0;
    for (PluginKit::Solid solid; reader.next(solid);) {
        EXPECT_EQ(solid.object, ++count);
        std::size_t faces = 0;
        for (const PluginKit::SolidSurface& surface : solid.surfaces) {
            faces += surface.sizes.size();
        }
        EXPECT_GT(faces, 0u);
    }
    EXPECT_EQ(count, 35u);
}

TEST_F(ImportPropertiesTest, statesOfEarlierFormatsStillServe) {
    const std::string edited = replaced(house_, "IFCMASSMEASURE(31.5)", "IFCMASSMEASURE(30.)");
    for (const int format : {1, 2}) {
        SCOPED_TRACE(format);
        const std::size_t objects = import(house_)["objects"].size();
        writeFile(file("state/objects.state"), stateOfFormat(format, readFile(file("state/objects.state"))));
        const json report = import(edited);
        EXPECT_EQ(report["counts"]["properties"], format - 1);
        EXPECT_EQ(report["counts"]["unchanged"], objects - static_cast<std::size_t>(format - 1));
        EXPECT_EQ(report["previous"], json::parse(R"({"model": null, "time": null})"));
        EXPECT_EQ(import(house_)["counts"]["properties"], 1);
    }
}

} // namespace
