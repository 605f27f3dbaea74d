#include <ImportCommon/ImportCommon.h>

#include <cmath>
#include <cstdio>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

using namespace ImportCommon;

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
    for (double& coordinate : box.corner) {
        fields >> coordinate;
    }
    for (double& length : box.size) {
        fields >> length;
    }
    std::getline(fields >> std::ws, box.name);
    if (!fields || box.id.size() > ExternalGUID::GlobalIdSize) {
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

ExternalGUID spatialHashOf(const Box& box) {
    double vertices[8][3];
    for (unsigned int i = 0; i < 8; ++i) {
        for (unsigned int axis = 0; axis < 3; ++axis) {
            vertices[i][axis] = box.corner[axis] + ((i >> axis & 1) != 0 ? box.size[axis] : 0.0);
        }
    }
    return ExternalGUID::spatialHashFromVertexes(8, vertices[0]);
}

ExternalGUID identityOf(const Box& box) {
    return box.id == "-" ? spatialHashOf(box) : ExternalGUID::fromIFCGlobalID(box.id.c_str());
}

} // namespace

namespace {

ExternalVersion versionOf(const Box& box) {
    const double* const size = box.size;
    const double halfDiagonal = std::hypot(size[0], size[1], size[2]) / 2;
    double distances[8];
    for (double& distance : distances) {
        distance = halfDiagonal; // from the centre to each corner
    }
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

void writeLine(FILE* stream, const std::string& line) {
    if (stream != nullptr) {
        std::fprintf(stream, "%s\n", line.c_str());
    }
}

std::string hex(const char* bytes, unsigned int size) {
    std::string text;
    char digits[3];
    for (unsigned int i = 0; i < size; ++i) {
        std::snprintf(digits, sizeof digits, "%02x", static_cast<unsigned int>(static_cast<unsigned char>(bytes[i])));
        text += digits;
    }
    return text;
}

std::string hex(const ExternalGUID& identity) {
    unsigned int size = 0;
    const char* const bytes = identity.getBytes(&size);
    return hex(bytes, size);
}

std::string hex(const ExternalVersion& version) {
    char bytes[CExternalVersion::MaximumStreamSize];
    return hex(bytes, version.toByteStream(sizeof bytes, bytes));
}

std::string escaped(const std::string& text) {
    std::string result;
    for (const char c : text) {
        if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F || c == '%') {
            result += "%" + hex(&c, 1);
        } else {
            result += c;
        }
    }
    return result;
}

} // namespace

namespace {

std::string positionOf(const Box& box) {
    std::ostringstream text;
    text.precision(17);
    for (unsigned int axis = 0; axis < 3; ++axis) {
        text << (axis == 0 ? "" : " ") << box.corner[axis] + box.size[axis] / 2;
    }
    return text.str();
}

void importBoxes(const ForeignObjectEnv_t& env) {
    const std::vector<Box> boxes = readBoxes(env.fileName);
    ExternalGUIDDatabase database;
    for (const Box& box : boxes) {
        const ExternalGUID identity = identityOf(box);
        const ExternalGUID spatialHash = spatialHashOf(box);
        if (database.findGUID(identity) != ExternalGUIDRuntimeID_None) {
            throw std::runtime_error("this box is there already: " + box.name);
        }
        const int id = database.insertGUID(identity);
        const int hashId = database.insertGUID(spatialHash);
        writeLine(env.foreignObjects,
                  std::to_string(id) + "\t" + std::to_string(hashId) + "\t" + identity.getIFCGlobalID());
        writeLine(env.objects, hex(identity) + "\t" + hex(spatialHash) + "\t" + hex(versionOf(box)) + "\t" +
                                   classOf(box) + "\t" + positionOf(box) + "\t" + escaped(box.name));
    }
    writeLine(env.objects, "end\t" + std::to_string(boxes.size()));
}

} // namespace

extern "C" __attribute__((visibility("default"))) int ImportModel() {
    ForeignObjectEnv_t env;
    if (!foreignobject_env_deserialize(env)) {
        return 2; // a version of the environment that is not known here
    }
    try {
        importBoxes(env);
        return 0;
    } catch (const std::exception& e) {
        writeLine(env.log, "error\t" + escaped(e.what()));
        return 1;
    }
}
