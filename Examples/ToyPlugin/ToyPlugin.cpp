#include <ImportCommon/ImportCommon.h>

#include <PluginKit/PluginKit.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

using namespace ImportCommon;
using namespace PluginKit;

namespace {

struct Box {
    std::string id; // "-" for a box without one
    std::string kind;
    double corner[3]; // the one with the smallest coordinates, in metres
    double size[3];   // along x, y and z, in metres
    std::string name;
};

Box boxFromLine(const std::string& line) {
    Box box;
    std::istringstream fields(line);
    fields >> box.id >> box.kind;
    std::string number;
    for (double* const numbers : {box.corner, box.size}) {
        for (int axis = 0; axis < 3 && fields >> number; ++axis) {
            numbers[axis] = toDouble(number);
        }
    }
    std::getline(fields >> std::ws, box.name);
    if (!fields) {
        throw std::runtime_error("not a box: " + line);
    }
    return box;
}

std::vector<Box> readBoxes(const std::wstring& fileName) {
    std::ifstream file(StringOperations::ConvertToCurrentLocale(fileName));
    if (!file) {
        throw std::runtime_error("the file can't be read");
    }
    std::vector<Box> boxes;
    for (std::string line; std::getline(file, line);) {
        if (!line.empty() && line[0] != '#') {
            boxes.push_back(boxFromLine(line));
        }
    }
    return boxes;
}

} // namespace

namespace {

SolidSurface surfaceOf(const Box& box) {
    SolidSurface surface;
    for (unsigned int i = 0; i < 8; ++i) {
        std::array<double, 3> vertex{};
        for (unsigned int axis = 0; axis < 3; ++axis) {
            vertex[axis] = box.corner[axis] + ((i >> axis & 1) != 0 ? box.size[axis] : 0.0);
        }
        surface.vertices.push_back(vertex);
    }
    const std::vector<std::uint32_t> sides[] = {{0, 2, 3, 1}, {4, 5, 7, 6}, {0, 1, 5, 4},
                                                {2, 6, 7, 3}, {0, 4, 6, 2}, {1, 3, 7, 5}};
    for (const std::vector<std::uint32_t>& side : sides) {
        surface.addPolygon(side);
    }
    return surface;
}

ExternalGUID spatialHashOf(const SolidSurface& surface) {
    return ExternalGUID::spatialHashFromVertexes(static_cast<unsigned int>(surface.vertices.size()),
                                                 surface.vertices[0].data());
}

} // namespace

namespace {

ExternalVersion versionOf(const Box& box) {
    const double* const size = box.size;
    double distances[8];
    std::fill(distances, distances + 8, std::hypot(size[0], size[1], size[2]) / 2); // from the centre to each corner
    double centre[3];
    for (unsigned int axis = 0; axis < 3; ++axis) {
        centre[axis] = box.corner[axis] + size[axis] / 2;
    }
    return createFromSolid(size[0], size[1], size[2], distances, size[0] * size[1] * size[2], centre);
}

std::string classOf(const Box& box) {
    const AttributeClassIFC_e value = box.kind == "wall"   ? AttributeClassIFC_IFCWALL
                                      : box.kind == "slab" ? AttributeClassIFC_IFCSLAB
                                                           : AttributeClassIFC_IFCBUILDINGELEMENTPROXY;
    char label[64];
    ReferenceObjectClass::asString(value, label, sizeof label);
    return label;
}

} // namespace

namespace {

void importBoxes(const ForeignObjectEnv_t& env, StreamWriter& writer) {
    const std::vector<Box> boxes = readBoxes(env.fileName);
    writer.material({{0.7, 0.7, 0.7, 1.0}, "grey"});
    ExternalGUIDDatabase database;
    for (const Box& box : boxes) {
        const bool hasId = box.id != "-";
        const SolidSurface surface = surfaceOf(box);
        ObjectLine object;
        object.spatialHash = spatialHashOf(surface);
        object.identity = hasId ? identityFromSourceId(box.id) : object.spatialHash;
        object.sourceId = hasId ? box.id : "";
        object.version = versionOf(box);
        object.className = classOf(box);
        object.name = box.name;
        for (unsigned int axis = 0; axis < 3; ++axis) {
            object.position[axis] = box.corner[axis] + box.size[axis] / 2;
        }
        if (database.findGUID(object.identity) != ExternalGUIDRuntimeID_None) {
            throw std::runtime_error("this box is there already: " + box.name);
        }
        const int id = database.insertGUID(object.identity);
        writer.object(object, {id, database.insertGUID(object.spatialHash), ""});
        writer.shape({surface});
        writer.progress(static_cast<double>(writer.objectCount()) / static_cast<double>(boxes.size()), "boxes");
    }
}

} // namespace

extern "C" __attribute__((visibility("default"))) int ImportModel() {
    return runImport(importBoxes);
}
