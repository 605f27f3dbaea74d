/**
 * @file IfcShapeModel.h
 * Small IFC models as text, and the shapes that become of them.
 */
#pragma once

#include "Units.h"
#include "geometry/ShapeBuilder.h"
#include "geometry/Vector.h"
#include "step/StepFile.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <ostream>
#include <string>
#include <string_view>

/** A unit of length and one of angle, and how a model says so. */
struct ModelUnits {
    const char* name;
    double metre;  ///< metres in the unit of length
    double radian; ///< radians in the unit of angle
    const char* text;

    friend std::ostream& operator<<(std::ostream& out, const ModelUnits& units) { return out << units.name; }
};

constexpr ModelUnits metres{"metres", 1.0, 1.0,
                            "#1=IFCUNITASSIGNMENT((#2,#3));\n"
                            "#2=IFCSIUNIT(*,.LENGTHUNIT.,$,.METRE.);\n"
                            "#3=IFCSIUNIT(*,.PLANEANGLEUNIT.,$,.RADIAN.);\n"};
constexpr ModelUnits millimetres{"millimetres", 0.001, 0.017453292519943295,
                                 "#1=IFCUNITASSIGNMENT((#2,#3));\n"
                                 "#2=IFCSIUNIT(*,.LENGTHUNIT.,.MILLI.,.METRE.);\n"
                                 "#3=IFCCONVERSIONBASEDUNIT(#4,.PLANEANGLEUNIT.,'DEGREE',#5);\n"
                                 "#4=IFCDIMENSIONALEXPONENTS(0,0,0,0,0,0,0);\n"
                                 "#5=IFCMEASUREWITHUNIT(IFCPLANEANGLEMEASURE(0.017453292519943295),#6);\n"
                                 "#6=IFCSIUNIT(*,.PLANEANGLEUNIT.,$,.RADIAN.);\n"};
constexpr ModelUnits feet{"feet", 0.3048, 0.017453292519943295,
                          "#1=IFCUNITASSIGNMENT((#2,#3));\n"
                          "#2=IFCCONVERSIONBASEDUNIT(#7,.LENGTHUNIT.,'FOOT',#8);\n"
                          "#3=IFCCONVERSIONBASEDUNIT(#4,.PLANEANGLEUNIT.,'DEGREE',#5);\n"
                          "#4=IFCDIMENSIONALEXPONENTS(0,0,0,0,0,0,0);\n"
                          "#5=IFCMEASUREWITHUNIT(IFCPLANEANGLEMEASURE(0.017453292519943295),#6);\n"
                          "#6=IFCSIUNIT(*,.PLANEANGLEUNIT.,$,.RADIAN.);\n"
                          "#7=IFCDIMENSIONALEXPONENTS(1,0,0,0,0,0,0);\n"
                          "#8=IFCMEASUREWITHUNIT(IFCRATIOMEASURE(304.8),#9);\n"
                          "#9=IFCSIUNIT(*,.LENGTHUNIT.,.MILLI.,.METRE.);\n"};

/** Writes {lengths in metres} and [angles in degrees] in the units of a model. */
inline std::string inUnits(std::string_view text, const ModelUnits& units) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '{' && text[i] != '[') {
            result += text[i];
            continue;
        }
        double value = 0.0;
        const char* const end = std::from_chars(text.data() + i + 1, text.data() + text.size(), value).ptr;
        value *= text[i] == '{' ? 1.0 / units.metre : 0.017453292519943295 / units.radian;
        char number[40];
        *std::to_chars(number, number + sizeof number - 1, value, std::chars_format::scientific).ptr = 0;
        std::string written = number;
        if (written.find('.') == std::string::npos) {
            written.insert(written.find('e'), ".");
        }
        result += written;
        i = static_cast<std::size_t>(end - text.data());
    }
    return result;
}

/** A file with some usual instances (#10 to #19) and those of @p data, as they stand. */
inline std::string ifcFile(const std::string& data, const ModelUnits& units) {
    return "ISO-10303-21;\nHEADER;\nFILE_DESCRIPTION((''),'2;1');\nFILE_NAME('','',(''),(''),'','','');\n"
           "FILE_SCHEMA(('IFC2X3'));\nENDSEC;\nDATA;\n" +
           std::string(units.text) +
           "#10=IFCCARTESIANPOINT((0.,0.,0.));\n"
           "#11=IFCAXIS2PLACEMENT3D(#10,$,$);\n"
           "#12=IFCCARTESIANPOINT((0.,0.));\n"
           "#13=IFCAXIS2PLACEMENT2D(#12,$);\n"
           "#14=IFCDIRECTION((0.,0.,1.));\n"
           "#15=IFCDIRECTION((1.,0.,0.));\n"
           "#16=IFCDIRECTION((0.,1.,0.));\n"
           "#17=IFCLOCALPLACEMENT($,#11);\n"
           "#18=IFCGEOMETRICREPRESENTATIONCONTEXT($,'Model',3,1.E-5,#11,$);\n"
           "#19=IFCPROJECT('0000000000000000000001',$,'Project',$,$,$,$,(#18),#1);\n" +
           data + "ENDSEC;\nEND-ISO-10303-21;\n";
}

/** The same with lengths and angles as inUnits() writes them. */
inline std::string ifcText(const std::string& data, const ModelUnits& units = metres) {
    return ifcFile(inUnits(data, units), units);
}

/** A product at placement #17 whose body is item #100; its instances end at #32. */
constexpr const char* productOf100 = "#30=IFCBUILDINGELEMENTPROXY('0000000000000000000002',$,'P',$,$,#17,#31,$,$);\n"
                                     "#31=IFCPRODUCTDEFINITIONSHAPE($,$,(#32));\n"
                                     "#32=IFCSHAPEREPRESENTATION(#18,'Body','Any',(#100));\n";

/** A file that is ready to be built from. */
struct ShapeModel {
    explicit ShapeModel(std::string text) : file(std::move(text)), units(file), builder(file, units) {}

    IfcReader::StepFile file;
    IfcReader::Units units;
    IfcReader::ShapeBuilder builder;
};

/** The numbers of a shape, in the world. */
struct ShapeNumbers {
    explicit ShapeNumbers(const IfcReader::Shape& shape) {
        using IfcReader::Vector;
        for (const IfcReader::ShapePart& part : shape.parts) {
            closed = closed && part.closed;
            const auto at = [&](std::uint32_t i) {
                const IfcReader::Point& p = part.vertices.at(i);
                return Vector{p.x + shape.origin.x, p.y + shape.origin.y, p.z + shape.origin.z};
            };
            Vector sum;
            double total = 0.0;
            double enclosed = 0.0;
            const Vector base = at(0);
            for (const std::uint32_t i : part.corners) {
                const Vector p = at(i);
                low = {std::min(low.x, p.x), std::min(low.y, p.y), std::min(low.z, p.z)};
                high = {std::max(high.x, p.x), std::max(high.y, p.y), std::max(high.z, p.z)};
            }
            polygons += part.sizes.size();
            const std::uint32_t* polygon = part.corners.data();
            for (const std::uint32_t size : part.sizes) {
                for (std::uint32_t i = 1; i + 1 < size; ++i) {
                    const Vector a = at(polygon[0]) - base;
                    const Vector b = at(polygon[i]) - base;
                    const Vector c = at(polygon[i + 1]) - base;
                    const Vector normal = cross(b - a, c - a) * 0.5;
                    sum += normal;
                    total += length(normal);
                    enclosed += dot(a, cross(b, c)) / 6.0;
                }
                polygon += size;
            }
            area += total;
            gap = std::max(gap, part.closed && total > 0.0 ? length(sum) / total : 0.0);
            volume += part.closed ? enclosed : 0.0;
        }
    }

    IfcReader::Vector low{1e300, 1e300, 1e300};
    IfcReader::Vector high{-1e300, -1e300, -1e300};
    double volume = 0.0; ///< of the closed parts; negative where they are turned inwards
    double area = 0.0;
    double gap = 0.0; ///< how far the worst closed part is from being closed
    bool closed = true;
    std::size_t polygons = 0;
};
