/**
 * @file StreamLines.h
 * What one line of each stream says. Texts are UTF-8 of any content, lengths metres, z points up.
 *
 * FORMATS.md describes the lines; StreamWriter writes them, StreamReader reads them back.
 */
#pragma once

#include <ImportCommon/ExternalGUID.h>
#include <ImportCommon/ExternalVersion.h>

#include <PluginKit/Solids.h>

#include <array>
#include <cstddef>
#include <string>

namespace PluginKit {

/** A line of "foreignobjects". */
struct ForeignObjectLine {
    int identityId = -1;    ///< runtime id of the identity
    int spatialHashId = -1; ///< runtime id of the spatial hash
    std::string globalId;   ///< empty without one
};

/** A line of "objects". */
struct ObjectLine {
    ImportCommon::ExternalGUID identity;    ///< any kind but GUIDTypeNone
    ImportCommon::ExternalGUID spatialHash; ///< the same
    ImportCommon::ExternalVersion version;
    std::string className;            ///< never empty
    std::array<double, 3> position{}; ///< centre of the bounding box, in the world; finite
    std::string name;
    std::string sourceId; ///< the source's own id where the identity is a hash of it; else empty
};

/** The last line of "objects". */
struct EndLine {
    std::size_t objectCount = 0;
};

/** A line of "polygons": one surface of an object. */
struct PolygonsLine {
    std::size_t object = 0; ///< from 1
    SolidSurface surface;   ///< in the world
};

/** A line of "materials". */
struct MaterialLine {
    std::array<double, 4> colour = {0.6, 0.6, 0.6, 1.0}; ///< red, green, blue, opacity, each from 0 to 1
    std::string name;
};

/** A line of "layers": a storey. */
struct LayerLine {
    std::string globalId; ///< empty without one
    double elevation = 0.0;
    std::string name;
};

/** A line of "hierarchy": a place in the model's tree, with or without geometry. */
struct HierarchyLine {
    std::string globalId;       ///< empty without one
    std::string parentGlobalId; ///< of the product that holds it; empty without one
    std::string className;      ///< never empty
    std::string name;
};

/** A line of "log". */
struct LogLine {
    std::string kind; ///< "warning" or "error"
    std::string text;
};

/** A line of "info". */
struct InfoLine {
    std::string key; ///< never empty
    std::string value;
};

/** A line of "progress". */
struct ProgressLine {
    double part = 0.0; ///< of the whole import, from 0 to 1
    std::string what;
};

/** A line "set" of "attributes"; its properties follow. */
struct SetLine {
    std::size_t object = 0;      ///< from 1; 0 for a product without geometry
    std::string globalId;        ///< of the product; empty without one
    std::string form = "custom"; ///< the record that the set was converted from; "attributes"; or "custom"
    std::string setGlobalId;     ///< of the set; empty without one
    std::string name;
    std::string description;
    std::string nameInFile; ///< where it is another one; else empty
};

/** A line "property" of "attributes". */
struct PropertyLine {
    std::size_t depth = 0; ///< 0 for the properties of a set, one more in each complex property
    std::string name;
    std::string description;
    std::string type;       ///< text, boolean, logical, integer, real, length, angle, complex
    std::string value;      ///< as its type says; the usage name of a complex one
    std::string nameInFile; ///< where it is another one; else empty
    double factor = 1.0;    ///< turns a number in a unit of the model into SI
};

/** What is wrong with type and value, or "". */
std::string faultOf(const PropertyLine& line);

/** Properties without description. */
PropertyLine textProperty(std::string name, std::string value);
PropertyLine booleanProperty(std::string name, bool value);
PropertyLine integerProperty(std::string name, long long value);
PropertyLine realProperty(std::string name, double value);

/** A property that holds others, which follow with a depth that is greater by one. */
PropertyLine complexProperty(std::string name, std::string usageName = "");

/** A line of "solids" and the bytes behind it. */
struct SolidLine {
    std::size_t object = 0; ///< from 1
    int type = 0;           ///< ForeignObjectSolid::Type_t
    std::string bytes;
};

/** A line of "textures" and the bytes behind it. */
struct TextureLine {
    std::string name;  ///< of the file
    std::string bytes; ///< a PNG file
};

} // namespace PluginKit
