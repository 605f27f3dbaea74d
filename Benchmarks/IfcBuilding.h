/**
 * @file IfcBuilding.h
 * Writes IFC models as large as one likes.
 */
#pragma once

#include <cmath>
#include <cstdio>
#include <memory>
#include <stdexcept>
#include <string>

/**
 * An office block, room after room: walls with openings, doors, windows that share a shape, columns with an I profile,
 * chairs as boundary representations, property sets, materials and colours, in about the shares that authoring tools
 * export.
 */
class IfcBuilding {
public:
    /** @param size  bytes that the file has at least */
    static void write(const std::string& fileName, std::size_t size) {
        IfcBuilding building(fileName);
        building.begin();
        while (building.written_ < size) {
            building.addRoom();
        }
        building.end();
    }

private:
    explicit IfcBuilding(const std::string& fileName) : file_(std::fopen(fileName.c_str(), "w"), std::fclose) {
        if (!file_) {
            throw std::runtime_error(fileName + " can't be written");
        }
    }

    void put(const std::string& text) {
        std::fwrite(text.data(), 1, text.size(), file_.get());
        written_ += text.size();
    }

    /** Writes an instance. @return its name, such as #12 */
    std::string add(const std::string& content) {
        const std::string name = '#' + std::to_string(++last_);
        put(name + "= " + content + ";\n");
        return name;
    }

    static std::string number(double value) {
        char text[32];
        std::snprintf(text, sizeof text, "%.10g", value);
        return std::string(text) + (std::string(text).find_first_of(".e") == std::string::npos ? "." : "");
    }

    std::string globalId() {
        constexpr char digits[] = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz_$";
        std::string text = "1";
        std::uint64_t rest = ++ids_ * 0x9E3779B97F4A7C15u;
        for (int i = 0; i < 10; ++i, rest >>= 6) {
            text += digits[rest & 63];
        }
        rest = ids_;
        for (int i = 0; i < 11; ++i, rest >>= 6) {
            text += digits[rest & 63];
        }
        return '\'' + text + "'," + history_ + ',';
    }

    std::string point(double x, double y, double z) {
        return add("IFCCARTESIANPOINT((" + number(x) + ',' + number(y) + ',' + number(z) + "))");
    }

    std::string placementAt(const std::string& in, double x, double y, double z) {
        const std::string axes = add("IFCAXIS2PLACEMENT3D(" + point(x, y, z) + ",$,$)");
        return add("IFCLOCALPLACEMENT(" + in + ',' + axes + ')');
    }

    std::string extrusion(const std::string& profile, double depth) {
        return add("IFCEXTRUDEDAREASOLID(" + profile + ',' + axes_ + ',' + up_ + ',' + number(depth) + ')');
    }

    std::string box(double x, double y, double depth) {
        return extrusion(add("IFCRECTANGLEPROFILEDEF(.AREA.,$," + axes2_ + ',' + number(x) + ',' + number(y) + ')'),
                         depth);
    }

    std::string shape(const std::string& item, const char* type) {
        const std::string body = add("IFCSHAPEREPRESENTATION(" + context_ + ",'Body','" + type + "',(" + item + "))");
        return add("IFCPRODUCTDEFINITIONSHAPE($,$,(" + body + "))");
    }

    /** A chair of six legs and boards, each a box with its six faces. */
    std::string brep(double size) {
        std::string faces;
        for (int part = 0; part < 6; ++part) {
            const double x = size * (part % 2);
            const double y = size * (part / 2 % 2);
            const double z = part < 4 ? 0.0 : 0.45 + 0.1 * part;
            const double width = part < 4 ? 0.05 : size;
            const double height = part < 4 ? 0.45 : 0.04;
            std::string corners[8];
            for (int i = 0; i < 8; ++i) {
                corners[i] = point(x + (i & 1) * width, y + (i >> 1 & 1) * width, z + (i >> 2) * height);
            }
            constexpr int sides[6][4] = {{0, 2, 3, 1}, {4, 5, 7, 6}, {0, 1, 5, 4},
                                         {2, 6, 7, 3}, {0, 4, 6, 2}, {1, 3, 7, 5}};
            for (const auto& side : sides) {
                const std::string loop = add("IFCPOLYLOOP((" + corners[side[0]] + ',' + corners[side[1]] + ',' +
                                             corners[side[2]] + ',' + corners[side[3]] + "))");
                faces +=
                    (faces.empty() ? "" : ",") + add("IFCFACE((" + add("IFCFACEOUTERBOUND(" + loop + ",.T.)") + "))");
            }
        }
        return add("IFCFACETEDBREP(" + add("IFCCLOSEDSHELL((" + faces + "))") + ')');
    }

    void addProperties(const std::string& product, const char* set, int count) {
        std::string properties;
        for (int i = 0; i < count; ++i) {
            const std::string name = "'Property " + std::to_string(i) + "',$,";
            const std::string value =
                i % 3 == 0   ? "IFCLENGTHMEASURE(" + number(0.1 * i + 0.001 * static_cast<double>(ids_ % 97)) + ')'
                : i % 3 == 1 ? "IFCLABEL('Value " + std::to_string(ids_ % 1013) + "')"
                             : "IFCBOOLEAN(.T.)";
            properties += (i > 0 ? "," : "") + add("IFCPROPERTYSINGLEVALUE(" + name + value + ",$)");
        }
        const std::string found = add("IFCPROPERTYSET(" + globalId() + '\'' + set + "',$,(" + properties + "))");
        add("IFCRELDEFINESBYPROPERTIES(" + globalId() + "$,$,(" + product + ")," + found + ')');
    }

    /** An element on the present storey. */
    std::string element(const char* keyword, const std::string& placement, const std::string& itsShape,
                        const char* rest = "") {
        const std::string name = '\'' + std::string(keyword + 3) + ' ' + std::to_string(ids_) + '\'';
        const std::string id = add(keyword + ('(' + globalId()) + name + ",$,'Standard'," + placement + ',' + itsShape +
                                   ",'" + std::to_string(ids_) + '\'' + rest + ')');
        contained_ += (contained_.empty() ? "" : ",") + id;
        addProperties(id, "Pset_Office", 8);
        return id;
    }

    void begin() {
        put("ISO-10303-21;\nHEADER;\nFILE_DESCRIPTION(('ViewDefinition [CoordinationView]'),'2;1');\n"
            "FILE_NAME('Office','2024-01-01T00:00:00',(''),(''),'','','');\nFILE_SCHEMA(('IFC2X3'));\nENDSEC;\nDATA;"
            "\n");
        const std::string person = add("IFCPERSON($,'Nobody',$,$,$,$,$,$)");
        const std::string organization = add("IFCORGANIZATION($,'None',$,$,$)");
        const std::string both = add("IFCPERSONANDORGANIZATION(" + person + ',' + organization + ",$)");
        const std::string application = add("IFCAPPLICATION(" + organization + ",'1','Benchmark','Benchmark')");
        history_ = add("IFCOWNERHISTORY(" + both + ',' + application + ",$,.NOCHANGE.,$,$,$,0)");
        const std::string metre = add("IFCSIUNIT(*,.LENGTHUNIT.,$,.METRE.)");
        const std::string units = add("IFCUNITASSIGNMENT((" + metre + "))");
        up_ = add("IFCDIRECTION((0.,0.,1.))");
        axes_ = add("IFCAXIS2PLACEMENT3D(" + point(0, 0, 0) + ",$,$)");
        axes2_ = add("IFCAXIS2PLACEMENT2D(" + add("IFCCARTESIANPOINT((0.,0.))") + ",$)");
        context_ = add("IFCGEOMETRICREPRESENTATIONCONTEXT($,'Model',3,1.E-5," + axes_ + ",$)");
        project_ = add("IFCPROJECT(" + globalId() + "'Office',$,$,$,$,(" + context_ + ")," + units + ')');
        origin_ = add("IFCLOCALPLACEMENT($," + axes_ + ')');
        building_ = add("IFCBUILDING(" + globalId() + "'Block',$,$," + origin_ + ",$,$,.ELEMENT.,$,$,$)");
        add("IFCRELAGGREGATES(" + globalId() + "$,$," + project_ + ",(" + building_ + "))");
        material_ = add("IFCMATERIAL('Concrete')");
        const std::string colour = add("IFCCOLOURRGB($,0.6,0.6,0.55)");
        const std::string shading = add("IFCSURFACESTYLERENDERING(" + colour + ",0.,$,$,$,$,$,$,.FLAT.)");
        style_ = add("IFCPRESENTATIONSTYLEASSIGNMENT((" + add("IFCSURFACESTYLE('Concrete',.BOTH.,(" + shading + "))") +
                     "))");
        const std::string body = add("IFCSHAPEREPRESENTATION(" + context_ + ",'Body','Brep',(" + brep(1.1) + "))");
        window_ = add("IFCREPRESENTATIONMAP(" + axes_ + ',' + body + ')');
        operator_ = add("IFCCARTESIANTRANSFORMATIONOPERATOR3D($,$," + point(0, 0, 0) + ",1.,$)");
    }

    void addRoom() {
        constexpr int roomsInRow = 20;
        constexpr int roomsOnStorey = 400;
        if (room_ % roomsOnStorey == 0) {
            endStorey();
            const double z = 3.5 * room_ / roomsOnStorey;
            storeyPlacement_ = placementAt(origin_, 0, 0, z);
            storey_ = add("IFCBUILDINGSTOREY(" + globalId() + "'Storey " + std::to_string(room_ / roomsOnStorey) +
                          "',$,$," + storeyPlacement_ + ",$,$,.ELEMENT.," + number(z) + ')');
            storeys_ += (storeys_.empty() ? "" : ",") + storey_;
        }
        const double x = 6.0 * (room_ % roomsInRow);
        const double y = 5.0 * (room_ % roomsOnStorey / roomsInRow);
        for (int side = 0; side < 3; ++side) {
            const std::string place = placementAt(storeyPlacement_, x + 2 * side, y, 0);
            const std::string solid = box(4.0 + 0.01 * side, 0.2, 3.2);
            add("IFCSTYLEDITEM(" + solid + ",(" + style_ + "),$)");
            const std::string wall = element("IFCWALLSTANDARDCASE", place, shape(solid, "SweptSolid"));
            add("IFCRELASSOCIATESMATERIAL(" + globalId() + "$,$,(" + wall + ")," + material_ + ')');
            if (side > 0) {
                const std::string opening = add("IFCOPENINGELEMENT(" + globalId() + "'Opening',$,$," +
                                                placementAt(place, 0.1, 0, side == 1 ? 0.0 : 0.9) + ',' +
                                                shape(box(0.9, 0.5, side == 1 ? 2.1 : 1.2), "SweptSolid") + ",$)");
                add("IFCRELVOIDSELEMENT(" + globalId() + "$,$," + wall + ',' + opening + ')');
            }
        }
        element("IFCDOOR", placementAt(storeyPlacement_, x + 2.1, y, 0), shape(box(0.88, 0.05, 2.08), "SweptSolid"),
                ",2.08,0.88");
        const std::string mapped = add("IFCMAPPEDITEM(" + window_ + ',' + operator_ + ')');
        element("IFCWINDOW", placementAt(storeyPlacement_, x + 4.1, y, 0.9), shape(mapped, "MappedRepresentation"),
                ",1.2,0.9");
        element("IFCCOLUMN", placementAt(storeyPlacement_, x, y + 2, 0),
                shape(extrusion(add("IFCISHAPEPROFILEDEF(.AREA.,'HEA 200'," + axes2_ + ",0.2,0.19,0.0065,0.01,0.018)"),
                                3.3),
                      "SweptSolid"));
        for (int chair = 0; chair < 3; ++chair) {
            element("IFCFURNISHINGELEMENT", placementAt(storeyPlacement_, x + 1 + chair, y + 3, 0),
                    shape(brep(0.4 + 0.01 * chair), "Brep"));
        }
        ++room_;
    }

    void endStorey() {
        if (!contained_.empty()) {
            add("IFCRELCONTAINEDINSPATIALSTRUCTURE(" + globalId() + "$,$,(" + contained_ + ")," + storey_ + ')');
            contained_.clear();
        }
    }

    void end() {
        endStorey();
        add("IFCRELAGGREGATES(" + globalId() + "$,$," + building_ + ",(" + storeys_ + "))");
        put("ENDSEC;\nEND-ISO-10303-21;\n");
        if (std::fflush(file_.get()) != 0) {
            throw std::runtime_error("no room for the model");
        }
    }

    std::unique_ptr<FILE, int (*)(FILE*)> file_;
    std::size_t written_ = 0;
    std::size_t last_ = 0;
    std::uint64_t ids_ = 0;
    int room_ = 0;
    std::string history_, up_, axes_, axes2_, context_, project_, origin_, building_, material_, style_, window_,
        operator_;
    std::string storey_, storeyPlacement_, storeys_, contained_;
};
