#include <ImportCommon/ImportCommon.h>

#include <PluginKit/PluginKit.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>
#include <vector>

using namespace ImportCommon;
using namespace PluginKit;

using nlohmann::json;
namespace fs = std::filesystem;

namespace {

std::string readFile(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        throw std::runtime_error(path.filename().string() + " can't be read");
    }
    return {std::istreambuf_iterator<char>(file), {}};
}

struct City {
    fs::path path;
    json root;
    std::vector<std::array<double, 3>> vertices; // in metres
};

City readCity(const std::wstring& fileName) {
    City city;
    city.path = StringOperations::ConvertToCurrentLocale(fileName);
    city.root = json::parse(readFile(city.path));
    if (city.root.value("type", "") != "CityJSON" || city.root.at("version").get<std::string>().substr(0, 1) != "1") {
        throw std::runtime_error("not a CityJSON file of version 1");
    }
    const json& transform = city.root.at("transform");
    const auto scale = transform.at("scale").get<std::array<double, 3>>();
    const auto translate = transform.at("translate").get<std::array<double, 3>>();
    for (const json& entry : city.root.at("vertices")) {
        auto vertex = entry.get<std::array<double, 3>>();
        for (std::size_t axis = 0; axis < 3; ++axis) {
            vertex[axis] = vertex[axis] * scale[axis] + translate[axis];
        }
        city.vertices.push_back(vertex);
    }
    return city;
}

} // namespace

namespace {

/** Collects the polygons of one object, those of each material in a surface of their own. */
class Shape {
public:
    explicit Shape(const City& city) : city_(city) {}

    /** @param nesting  of shells and solids around the surfaces; @p materials nest the same way, or hold for all below */
    void add(const json& boundaries, std::size_t nesting, const json& materials) {
        for (std::size_t i = 0; i < boundaries.size(); ++i) {
            const json& material = materials.is_array() ? materials.at(i) : materials;
            if (nesting > 0) {
                add(boundaries[i], nesting - 1, material);
            } else {
                addFace(boundaries[i], material.is_number_unsigned() ? material.get<std::uint32_t>() + 1 : 0);
            }
        }
    }

    std::vector<SolidSurface> surfaces() const {
        std::vector<SolidSurface> surfaces;
        for (const auto& [material, part] : parts_) {
            surfaces.push_back(part.surface);
        }
        return surfaces;
    }

private:
    struct Part {
        SolidSurface surface;
        std::map<std::size_t, std::uint32_t> corners; // by the numbers of the file's vertices
    };

    void addFace(const json& rings, std::uint32_t material) {
        Part& part = parts_[material];
        part.surface.material = material;
        std::vector<std::vector<std::uint32_t>> loops;
        for (const json& ring : rings) {
            std::vector<std::uint32_t>& loop = loops.emplace_back();
            for (const json& index : ring) {
                const auto number = index.get<std::size_t>();
                const auto next = static_cast<std::uint32_t>(part.surface.vertices.size());
                const auto [corner, isNew] = part.corners.try_emplace(number, next);
                if (isNew) {
                    part.surface.vertices.push_back(city_.vertices.at(number));
                }
                loop.push_back(corner->second);
            }
        }
        if (!loops.empty()) {
            part.surface.addPolygon(joinHoles(part.surface.vertices, loops[0], {loops.begin() + 1, loops.end()}));
        }
    }

    const City& city_;
    std::map<std::uint32_t, Part> parts_;
};

/** The most detailed geometry of an object that has surfaces; empty without one. */
std::vector<SolidSurface> surfacesOf(const City& city, const json& object, StreamWriter& writer) {
    static const std::map<std::string, std::size_t> nestings = {
        {"MultiSurface", 0}, {"CompositeSurface", 0}, {"Solid", 1}, {"MultiSolid", 2}, {"CompositeSolid", 2}};
    const json geometries = object.value("geometry", json::array());
    const json* best = nullptr;
    std::string bestDetail;
    for (const json& geometry : geometries) {
        const std::string type = geometry.at("type");
        const std::string detail = geometry.value("lod", "");
        if (nestings.count(type) == 0) {
            writer.warning("geometry of type " + type + " is left out");
        } else if (best == nullptr || detail > bestDetail) {
            best = &geometry;
            bestDetail = detail;
        }
    }
    if (best == nullptr) {
        return {};
    }
    json materials; // of the first theme: a value for all surfaces, or values for each
    for (const json& theme : best->value("material", json::object())) {
        materials = theme.contains("value") ? theme["value"] : theme.value("values", json());
        break;
    }
    Shape shape(city);
    shape.add(best->at("boundaries"), nestings.at(best->at("type")), materials);
    return shape.surfaces();
}

} // namespace

namespace {

void importAppearance(const City& city, StreamWriter& writer) {
    writer.material({{0.7, 0.7, 0.7, 1.0}, "without material"});
    const json appearance = city.root.value("appearance", json::object());
    for (const json& material : appearance.value("materials", json::array())) {
        const auto colour = material.value("diffuseColor", std::array<double, 3>{0.7, 0.7, 0.7});
        const double opacity = 1.0 - material.value("transparency", 0.0);
        writer.material({{colour[0], colour[1], colour[2], opacity}, material.value("name", "")});
    }
    for (const json& texture : appearance.value("textures", json::array())) {
        const std::string name = texture.at("image");
        const bool isBeside = fs::path(name).filename() == name; // a model doesn't read other files of its user
        if (texture.value("type", "") == "PNG" && isBeside) {
            writer.texture({name, readFile(city.path.parent_path() / name)});
        } else {
            writer.warning("texture " + name + " is left out");
        }
    }
}

} // namespace

namespace {

/** A property of any type; objects and arrays become complex properties. */
void writeProperty(const std::string& name, const json& value, std::size_t depth, StreamWriter& writer) {
    if (value.is_null()) {
        return;
    }
    PropertyLine line = value.is_boolean()          ? booleanProperty(name, value)
                        : value.is_number_integer() ? integerProperty(name, value)
                        : value.is_number()         ? realProperty(name, value)
                        : value.is_structured()     ? complexProperty(name)
                                                    : textProperty(name, value);
    line.depth = depth;
    writer.property(line);
    if (value.is_structured()) {
        for (const auto& [key, part] : value.items()) { // of an array, the keys are its indices
            writeProperty(key, part, depth + 1, writer);
        }
    }
}

void writeProperties(std::size_t number, const json& object, StreamWriter& writer) {
    const json attributes = object.value("attributes", json::object());
    SetLine set;
    set.object = number;
    if (attributes.contains("name") && attributes["name"].is_string()) {
        set.form = "attributes";
        set.name = "Attributes";
        writer.set(set);
        writer.property(textProperty("Name", attributes["name"]));
    }
    set.form = "custom";
    set.name = "CityJSON";
    writer.set(set);
    for (const auto& [name, value] : attributes.items()) {
        writeProperty(name, value, 0, writer);
    }
}

} // namespace

namespace {

std::size_t importObject(const std::string& id, const json& object, const std::vector<SolidSurface>& surfaces,
                         ExternalGUIDDatabase& database, StreamWriter& writer) {
    const Measurement measurement = measure(surfaces);
    ObjectLine line;
    line.identity = identityFromSourceId(id);
    line.sourceId = id;
    line.spatialHash = spatialHashOf(surfaces);
    line.version = versionOf(measurement);
    line.className = object.at("type");
    line.position = measurement.centre();
    const json name = object.value("attributes", json::object()).value("name", json());
    line.name = name.is_string() ? name.get<std::string>() : id;
    const int identityId = database.insertGUID(line.identity);
    const std::size_t number = writer.object(line, {identityId, database.insertGUID(line.spatialHash), ""});
    writer.shape(surfaces);
    return number;
}

void importCity(const ForeignObjectEnv_t& env, StreamWriter& writer) {
    writer.progress(0.0, "reading");
    const City city = readCity(env.fileName);
    importAppearance(city, writer);
    ExternalGUIDDatabase database;
    const json& objects = city.root.at("CityObjects");
    double done = 0.0;
    for (const auto& [id, object] : objects.items()) {
        const std::vector<SolidSurface> surfaces = surfacesOf(city, object, writer);
        const std::size_t number = surfaces.empty() ? 0 : importObject(id, object, surfaces, database, writer);
        writeProperties(number, object, writer);
        writer.progress(0.5 + 0.5 * ++done / static_cast<double>(objects.size()), "objects");
    }
}

} // namespace

extern "C" __attribute__((visibility("default"))) int ImportModel() {
    return runImport(importCity);
}
