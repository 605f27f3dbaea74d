/**
 * @file IfcModelTest.cpp
 * What the reader says of products: which there are, where they hang, what they are made of and how they look.
 */
#include <IfcReader/Model.h>
#include <gtest/gtest.h>

#include <algorithm>

using namespace IfcReader;

namespace {

/** A storey with a site and building above, two boxes of different items, and a relation or two; in millimetres. */
const std::string house = R"(
#1=IFCPROJECT('0000000000000000000001',$,'P',$,$,$,$,(#5),#2);
#2=IFCUNITASSIGNMENT((#3,#4));
#3=IFCSIUNIT(*,.LENGTHUNIT.,.MILLI.,.METRE.);
#4=IFCSIUNIT(*,.AREAUNIT.,.CENTI.,.SQUARE_METRE.);
#5=IFCGEOMETRICREPRESENTATIONCONTEXT($,'Model',3,1.E-5,#6,$);
#6=IFCAXIS2PLACEMENT3D(#7,$,$);
#7=IFCCARTESIANPOINT((0.,0.,0.));
#8=IFCLOCALPLACEMENT($,#6);
#9=IFCAXIS2PLACEMENT3D(#10,$,$);
#10=IFCCARTESIANPOINT((0.,0.,3000.));
#11=IFCLOCALPLACEMENT(#8,#9);
#12=IFCDIRECTION((0.,0.,1.));
#20=IFCSITE('0000000000000000000020',$,'Site',$,$,#8,$,$,.ELEMENT.,$,$,$,$,$);
#21=IFCBUILDING('0000000000000000000021',$,'Building',$,$,#8,$,$,.ELEMENT.,$,$,$);
#22=IFCBUILDINGSTOREY('0000000000000000000022',$,'First',$,$,#11,$,$,.ELEMENT.,3000.);
#23=IFCSPACE('0000000000000000000023',$,'Room',$,$,#11,#56,'Kitchen',.ELEMENT.,.INTERNAL.,$);
#24=IFCRELAGGREGATES('0000000000000000000024',$,$,$,#1,(#20));
#25=IFCRELAGGREGATES('0000000000000000000025',$,$,$,#20,(#21));
#26=IFCRELAGGREGATES('0000000000000000000026',$,$,$,#21,(#22));
#27=IFCRELAGGREGATES('0000000000000000000027',$,$,$,#22,(#23));
#30=IFCWALL('0000000000000000000030',$,'Wall','A wall','Brick wall',#11,#56,'T-1');
#31=IFCELEMENTASSEMBLY('0000000000000000000031',$,'Truss',$,$,#11,$,'T-2',$,.TRUSS.);
#32=IFCMEMBER('0000000000000000000032',$,'Bar',$,$,#11,#56,$);
#33=IFCOPENINGELEMENT('0000000000000000000033',$,'Hole',$,$,#11,#63,$);
#34=IFCFURNISHINGELEMENT('0000000000000000000034',$,'Chair',$,$,#11,#56,'');
#35=IFCANNOTATION('0000000000000000000035',$,'Note',$,$,#11,#56);
#36=IFCFLOWTERMINAL('0000000000000000000036',$,'Lamp outside of the tree',$,$,#11,#56,$);
#37=IFCROBOT('0000000000000000000037',$,'Of a class of its own',$,$,#11,#56,$);
#38=IFCTASK('0000000000000000000038',$,'No product',$,$,'1',$,$,.F.,$);
#40=IFCRELCONTAINEDINSPATIALSTRUCTURE('0000000000000000000040',$,$,$,(#30,#31,#35),#22);
#41=IFCRELAGGREGATES('0000000000000000000041',$,$,$,#31,(#32));
#42=IFCRELVOIDSELEMENT('0000000000000000000042',$,$,$,#30,#33);
#43=IFCRELCONTAINEDINSPATIALSTRUCTURE('0000000000000000000043',$,$,$,(#34),#23);
#50=IFCRECTANGLEPROFILEDEF(.AREA.,$,#51,4000.,200.);
#51=IFCAXIS2PLACEMENT2D(#52,$);
#52=IFCCARTESIANPOINT((0.,0.));
#53=IFCEXTRUDEDAREASOLID(#50,#6,#12,2500.);
#54=IFCSHAPEREPRESENTATION(#5,'Body','SweptSolid',(#53));
#56=IFCPRODUCTDEFINITIONSHAPE($,$,(#54));
#57=IFCRECTANGLEPROFILEDEF(.AREA.,$,#51,900.,400.);
#58=IFCEXTRUDEDAREASOLID(#57,#6,#12,2000.);
#59=IFCSHAPEREPRESENTATION(#5,'Body','SweptSolid',(#58));
#63=IFCPRODUCTDEFINITIONSHAPE($,$,(#59));
)";

std::string fileOf(const std::string& instances) {
    return "ISO-10303-21;HEADER;FILE_SCHEMA(('IFC2X3'));ENDSEC;DATA;" + house + instances + "ENDSEC;END-ISO-10303-21;";
}

/** The product with a name in a model with more instances. */
Product productNamed(const std::string& name, const std::string& instances = "") {
    const auto model = Model::ofText(fileOf(instances));
    for (std::size_t i = 0; i < model->size(); ++i) {
        Product product = model->product(i);
        if (product.name == name) {
            return product;
        }
    }
    ADD_FAILURE() << "no product " << name;
    return {};
}

std::string refusalOf(const std::string& text) {
    try {
        const auto model = Model::ofText(text);
        for (std::size_t i = 0; i < model->size(); ++i) {
            model->product(i);
        }
    } catch (const IfcError& e) {
        return e.what();
    }
    return "";
}

std::string replaced(std::string text, const std::string& from, const std::string& to) {
    const std::size_t at = text.find(from);
    EXPECT_NE(at, std::string::npos) << from;
    return at == std::string::npos ? text : text.replace(at, from.size(), to);
}

TEST(IfcModelTest, everyProductHasItsPlaceInTheTree) {
    const auto model = Model::ofText(fileOf(""));
    const struct {
        const char* name;
        const char* className;
        const char* parent;
        const char* storey;
        std::size_t parts;
    } expected[] = {{"Site", "IFCSITE", "", "", 0},
                    {"Building", "IFCBUILDING", "Site", "Site", 0},
                    {"First", "IFCBUILDINGSTOREY", "Building", "Building", 0},
                    {"Wall", "IFCWALL", "First", "First", 1},
                    {"Hole", "IFCOPENINGELEMENT", "Wall", "First", 0},
                    {"Truss", "IFCELEMENTASSEMBLY", "First", "First", 0},
                    {"Bar", "IFCMEMBER", "Truss", "First", 1},
                    {"Note", "IFCANNOTATION", "First", "First", 0},
                    {"Room", "IFCSPACE", "First", "First", 1},
                    {"Chair", "IFCFURNISHINGELEMENT", "Room", "First", 1},
                    {"Lamp outside of the tree", "IFCFLOWTERMINAL", "", "", 1},
                    {"Of a class of its own", "IFCROBOT", "", "", 1}};
    ASSERT_EQ(model->size(), std::size(expected));
    for (std::size_t i = 0; i < model->size(); ++i) {
        const Product product = model->product(i);
        SCOPED_TRACE(expected[i].name);
        EXPECT_EQ(product.name, expected[i].name);
        EXPECT_EQ(product.className, expected[i].className);
        const bool isHeld = product.parent != Place::none;
        EXPECT_EQ(isHeld ? *model->product(product.parent).name : "", expected[i].parent);
        EXPECT_EQ(product.storey.value_or(""), expected[i].storey);
        EXPECT_EQ(product.shape.parts.size(), expected[i].parts);
        EXPECT_EQ(product.looks.size(), product.shape.parts.size());
    }
    EXPECT_DOUBLE_EQ(model->metresPerUnit(), 0.001);

    const Product wall = model->product(3);
    EXPECT_EQ(wall.globalId, "0000000000000000000030");
    EXPECT_EQ(wall.description, "A wall");
    EXPECT_EQ(wall.objectType, "Brick wall");
    EXPECT_EQ(wall.tag, "T-1");
    EXPECT_DOUBLE_EQ(wall.shape.origin.z, 3.0);
    EXPECT_FALSE(model->product(6).tag) << "not given";
    EXPECT_EQ(model->product(9).tag, "") << "given, and empty";
    EXPECT_FALSE(model->product(8).tag) << "a space has a long name there";
    EXPECT_DOUBLE_EQ(*model->product(2).elevation, 3.0);
}

TEST(IfcModelTest, aBodyThatItsOpeningTakesAwayIsToldOf) {
    const Product wall = productNamed("Wall", "#70=IFCOPENINGELEMENT('x',$,'All',$,$,#11,#56,$);"
                                              "#71=IFCRELVOIDSELEMENT('x',$,$,$,#30,#70);");
    EXPECT_TRUE(wall.shape.parts.empty());
    ASSERT_EQ(wall.shape.doubts.size(), 1u);
    EXPECT_NE(wall.shape.doubts.front().find("nothing of its body is left"), std::string::npos);
}

TEST(IfcModelTest, circlesAndRepetitionsInTheTreeLoseNothing) {
    const auto model =
        Model::ofText(fileOf("#70=IFCSLAB('0000000000000000000070',$,'A',$,$,#11,#56,$,$);#71=IFCSLAB('"
                             "0000000000000000000071',$,'B',$,$,#11,"
                             "#56,$,$);#72=IFCRELAGGREGATES('0000000000000000000072',$,$,$,#70,(#71,#71));"
                             "#73=IFCRELNESTS('0000000000000000000073',$,$,$,#71,(#70,#71));"
                             "#74=IFCRELAGGREGATES('0000000000000000000074',$,$,$,#31,(#32,#30,#50));"));
    std::vector<std::string> names;
    for (std::size_t i = 0; i < model->size(); ++i) {
        names.push_back(*model->product(i).name);
        EXPECT_TRUE(model->place(i).parent == Place::none || model->place(i).parent < i);
    }
    EXPECT_EQ(names.size(), 14u);
    std::sort(names.begin(), names.end());
    EXPECT_EQ(std::unique(names.begin(), names.end()), names.end());

    std::string chain;
    for (int i = 1000; i < 60000; ++i) {
        const std::string number = std::to_string(i);
        chain += '#' + number + "=IFCELEMENTASSEMBLY('x',$,$,$,$,$,$,$,$,$);#" + std::to_string(100000 + i) +
                 "=IFCRELAGGREGATES('x',$,$,$,#" + (i == 1000 ? "22" : std::to_string(i - 1)) + ",(#" + number + "));";
    }
    const auto deep = Model::ofText(fileOf(chain));
    EXPECT_EQ(deep->product(deep->size() - 3).storey, "First") << "59,000 levels deep";
}

TEST(IfcModelTest, materialsOfEveryForm) {
    const std::string materials = "#80=IFCMATERIAL('Brick');#81=IFCMATERIAL('Wool');#82=IFCMATERIALLAYER(#80,115.,$);"
                                  "#83=IFCMATERIALLAYER(#81,80.,.U.);#84=IFCMATERIALLAYER($,40.,.T.);"
                                  "#85=IFCMATERIALLAYERSET((#82,#84,#83),'Set');"
                                  "#86=IFCMATERIALLAYERSETUSAGE(#85,.AXIS2.,.POSITIVE.,0.);"
                                  "#87=IFCMATERIALLIST((#81,#80));";
    const std::string type = "#90=IFCRELDEFINESBYTYPE('x',$,$,$,(#30,#32),#91);"
                             "#91=IFCWALLTYPE('x',$,'Outer',$,$,$,$,$,$,.STANDARD.);";
    const std::pair<std::string, std::string> cases[] = {{"(#30),#80", "Brick|"},
                                                         {"(#30),#82", "Brick 0.115|"},
                                                         {"(#32,#30),#85", "Brick 0.115| 0.04|Wool 0.08|"},
                                                         {"(#30),#86", "Brick 0.115| 0.04|Wool 0.08|"},
                                                         {"(#30),#87", "Wool|Brick|"},
                                                         {"(#91),#87", "Wool|Brick|"},
                                                         {"(#32),#87", ""}};
    for (const auto& [related, expected] : cases) {
        SCOPED_TRACE(related);
        const Product wall =
            productNamed("Wall", materials + type + "#92=IFCRELASSOCIATESMATERIAL('x',$,$,$," + related + ");");
        std::string found;
        for (const Material& material : wall.materials) {
            char thickness[32] = "";
            if (material.thickness) {
                std::snprintf(thickness, sizeof thickness, " %g", *material.thickness);
            }
            found += material.name + thickness + '|';
        }
        EXPECT_EQ(found, expected);
        EXPECT_EQ(wall.typeName, "Outer");
    }
}

TEST(IfcModelTest, looksOfItemsGoBeforeThoseOfMaterials) {
    const std::string style =
        "#160=IFCCOLOURRGB($,0.5,0.25,2.);#161=IFCSURFACESTYLERENDERING(#160,0.75,$,$,$,$,$,$,.FLAT.);"
        "#162=IFCSURFACESTYLE('Glass',.BOTH.,(#161));#163=IFCPRESENTATIONSTYLEASSIGNMENT((#162));";
    const std::string other = "#64=IFCCOLOURRGB($,1.,0.,0.);#65=IFCSURFACESTYLESHADING(#64);"
                              "#66=IFCSURFACESTYLE('Red',.BOTH.,(#65));#67=IFCPRESENTATIONSTYLEASSIGNMENT((#66));"
                              "#80=IFCMATERIAL('Brick');#92=IFCRELASSOCIATESMATERIAL('x',$,$,$,(#30),#80);"
                              "#93=IFCSTYLEDITEM($,(#67),$);#94=IFCSTYLEDREPRESENTATION(#5,$,$,(#93));"
                              "#95=IFCMATERIALDEFINITIONREPRESENTATION($,$,(#94),#80);";
    const auto lookOf = [](const std::string& instances) {
        const Product wall = productNamed("Wall", instances);
        return wall.looks.empty() ? std::nullopt : wall.looks.front();
    };
    EXPECT_FALSE(lookOf(""));
    const auto own = lookOf(style + other + "#68=IFCSTYLEDITEM(#53,(#163),$);");
    ASSERT_TRUE(own);
    EXPECT_EQ(own->name, "Glass");
    EXPECT_EQ(own->red, 0.5);
    EXPECT_EQ(own->blue, 1.0) << "no more than there is";
    EXPECT_EQ(own->opacity, 0.25);
    const auto ofMaterial = lookOf(style + other);
    ASSERT_TRUE(ofMaterial);
    EXPECT_EQ(ofMaterial->name, "Red");
    EXPECT_EQ(ofMaterial->opacity, 1.0);

    const Product wall = productNamed("Wall", "#96=IFCPRESENTATIONLAYERASSIGNMENT('Walls',$,(#54),$);"
                                              "#97=IFCPRESENTATIONLAYERASSIGNMENT('All',$,(#53,#54),$);");
    EXPECT_EQ(wall.layers, (std::vector<std::string>{"All", "Walls"}));
}

TEST(IfcModelTest, numbersOfPropertiesHaveTheFactorOfTheirUnit) {
    const Product wall = productNamed(
        "Wall", "#70=IFCRELDEFINESBYPROPERTIES('x',$,$,$,(#30),#71);#71=IFCPROPERTYSET('x',$,'S',$,(#72,#73,#74,#75));"
                "#72=IFCPROPERTYSINGLEVALUE('A',$,IFCAREAMEASURE(2.),$);"
                "#73=IFCPROPERTYSINGLEVALUE('L',$,IFCLENGTHMEASURE(2.),#76);#76=IFCSIUNIT(*,.LENGTHUNIT.,$,.METRE.);"
                "#74=IFCPROPERTYSINGLEVALUE('R',$,IFCRATIOMEASURE(2.),$);"
                "#75=IFCPROPERTYSINGLEVALUE('M',$,IFCMASSMEASURE(2.),#77);#77=IFCSIUNIT(*,.MASSUNIT.,$,.GRAM.);"
                "#78=IFCRELDEFINESBYPROPERTIES('x',$,$,$,(#30),#79);#79=IFCELEMENTQUANTITY('x',$,'Q',$,$,(#80));"
                "#80=IFCQUANTITYAREA('N',$,$,3.);"
                "#81=IFCRELOVERRIDESPROPERTIES('x',$,$,$,(#30),#71,(#82));"
                "#82=IFCPROPERTYSINGLEVALUE('R',$,IFCRATIOMEASURE(5.),$);");
    ASSERT_EQ(wall.properties.size(), 2u);
    const struct {
        const char* name;
        double number;
        double factor;
    } expected[] = {{"A", 2.0, 1e-4}, {"L", 2000.0, 1e-3}, {"R", 5.0, 1.0}, {"M", 2.0, 1e-3}, {"N", 3.0, 1e-4}};
    std::vector<IfcProperty> found = wall.properties[0].properties;
    found.push_back(wall.properties[1].properties.at(0));
    ASSERT_EQ(found.size(), std::size(expected));
    for (std::size_t i = 0; i < found.size(); ++i) {
        EXPECT_EQ(found[i].name, expected[i].name);
        EXPECT_DOUBLE_EQ(found[i].value.number, expected[i].number) << found[i].name;
        EXPECT_DOUBLE_EQ(found[i].value.factor, expected[i].factor) << found[i].name;
    }
}

TEST(IfcModelTest, sharedPropertiesAreGivenInFullUpToALimit) {
    // 20,000 walls with sets that all of them share: a model as it is met.
    const auto sharing = [](int walls, int properties, const std::string& text) {
        std::string instances;
        std::string related;
        for (int i = 0; i < walls; ++i) {
            const std::string number = std::to_string(100000 + i);
            instances += '#' + number + "=IFCWALL('x',$,'W',$,$,$,$,$);";
            related += (i > 0 ? ",#" : "#") + number;
        }
        std::string members;
        for (int i = 0; i < properties; ++i) {
            const std::string number = std::to_string(1000 + i);
            instances += '#' + number + "=IFCPROPERTYSINGLEVALUE('P" + number + "',$,IFCLABEL('" + text + "'),$);";
            members += (i > 0 ? ",#" : "#") + number;
        }
        return instances + "#70=IFCPROPERTYSET('x',$,'S',$,(" + members +
               "));#71=IFCRELDEFINESBYPROPERTIES('x',$,$,$,(" + related + "),#70);";
    };
    const auto model = Model::ofText(fileOf(sharing(20000, 40, "value")));
    for (std::size_t i = 0; i < model->size(); ++i) {
        const Product product = model->product(i);
        if (product.name == "W") {
            ASSERT_EQ(product.properties.at(0).properties.size(), 40u);
        }
    }
    const std::string refusal = refusalOf(fileOf(sharing(2000, 20, std::string(20000, 'x'))));
    EXPECT_NE(refusal.find("share so much"), std::string::npos) << refusal;
}

TEST(IfcModelTest, propertiesWithoutEndAreRefused) {
    std::string nested = "#70=IFCPROPERTYSET('x',$,'S',$,(#1000));#71=IFCRELDEFINESBYPROPERTIES('x',$,$,$,(#30),#70);";
    for (int i = 1000; i < 1012; ++i) {
        nested += '#' + std::to_string(i) + "=IFCCOMPLEXPROPERTY('C',$,'',(#" + std::to_string(i + 1) + ",#1099));";
    }
    nested += "#1012=IFCCOMPLEXPROPERTY('C',$,'',(#1099));#1099=IFCPROPERTYSINGLEVALUE('P',$,IFCREAL(1.),$);";
    EXPECT_NE(refusalOf(fileOf(nested)).find("deep"), std::string::npos);
    std::string wide = "#70=IFCPROPERTYSET('x',$,'S',$,(#1000));#71=IFCRELDEFINESBYPROPERTIES('x',$,$,$,(#30),#70);";
    for (int i = 1000; i < 1007; ++i) {
        const std::string next = '#' + std::to_string(i + 1);
        wide += '#' + std::to_string(i) + "=IFCCOMPLEXPROPERTY('C',$,'',(";
        for (int j = 0; j < 8; ++j) {
            wide += next + ',';
        }
        wide += "#1007));";
    }
    wide += "#1007=IFCPROPERTYSINGLEVALUE('P',$,IFCREAL(1.),$);";
    EXPECT_NE(refusalOf(fileOf(wide)).find("inside of one"), std::string::npos);

    const Product wall = productNamed("Wall", "#70=IFCPROPERTYSET('x',$,'S',$,(#72));"
                                              "#71=IFCRELDEFINESBYPROPERTIES('x',$,$,$,(#30),#70);"
                                              "#72=IFCCOMPLEXPROPERTY('C',$,'',(#72,#73));"
                                              "#73=IFCPROPERTYSINGLEVALUE('P',$,IFCREAL(1.),$);");
    EXPECT_EQ(wall.properties.at(0).properties.at(0).nested.size(), 1u) << "what holds itself is left out";
}

TEST(IfcModelTest, damagedModelsAreRefused) {
    const std::string whole = fileOf("");
    const std::pair<std::string, const char*> models[] = {
        {replaced(whole, "'IFC2X3'", "'IFC4'"), "its schema is IFC4"},
        {replaced(whole, "=IFCPROJECT(", "=IFCPROJECTS("), "no IfcProject"},
        {replaced(whole, "((0.,0.,3000.))", "((0.,0.))"), "#10=IFCCARTESIANPOINT has the wrong number"},
        {replaced(whole, "((0.,0.,3000.))", "((0.,0.,3000.,1.))"), "#10=IFCCARTESIANPOINT has the wrong number"},
        {replaced(whole, "((0.,0.,3000.))", "((0.,0.,3.E15))"), "can't be meant"},
        {replaced(whole, "((0.,0.,3000.))", "((0.,0.,1.E999))"), "can't be meant"},
        {replaced(whole, "((0.,0.,3000.))", "((0.,$,0.))"), "can't be meant"},
        {replaced(whole, "IFCLOCALPLACEMENT(#8,#9)", "IFCLOCALPLACEMENT(#8,#10)"), "#11=IFCLOCALPLACEMENT has no axes"},
        {replaced(whole, "(#10,$,$)", "(#9,$,$)"), "#9=IFCAXIS2PLACEMENT3D has no point"},
        {replaced(whole, "(#10,$,$)", "(#10,#10,$)"), "no direction"},
        {replaced(whole, "#11,#56,'T-1'", "#12,#56,'T-1'"), "#30=IFCWALL has something else as its placement"},
        {replaced(whole, "#11,#56,'T-1'", "#11,'',$"), "#30=IFCWALL has something else as its shape"}};
    EXPECT_EQ(refusalOf(whole), "");
    for (const auto& [text, reason] : models) {
        const std::string refusal = refusalOf(text);
        EXPECT_NE(refusal.find(reason), std::string::npos) << reason << ": " << refusal;
    }
    EXPECT_EQ(refusalOf(replaced(whole, "IFCLOCALPLACEMENT($,#6)", "IFCLOCALPLACEMENT(#11,#6)")), "")
        << "a circle of placements makes products doubtful, not the file";
    EXPECT_THROW(Model("no such file.ifc"), IfcError);
    const std::string far = "IFCCARTESIANPOINT((3.5E12,0.,0.))";
    EXPECT_NE(refusalOf(replaced(whole, "IFCCARTESIANPOINT((0.,0.,0.))", far)).find("missing unit"), std::string::npos);
    const std::string near = fileOf("#70=IFCWALL('0000000000000000000070',$,'Near',$,$,#8,#56,$);");
    EXPECT_EQ(refusalOf(replaced(near, "IFCCARTESIANPOINT((0.,0.,3000.))", far)), "") << "the others alone";
}

} // namespace
