#include "ObjectWriter.h"

#include "Attributes.h"
#include "PropertyLines.h"

#include <PluginKit/Measure.h>

#include <algorithm>
#include <new>

using namespace ImportCommon;
using namespace IfcReader;
using namespace PluginKit;

namespace {

constexpr std::size_t globalIdLength = ExternalGUID::GlobalIdSize;

/** Whether the library can keep a GlobalId. */
bool isGlobalId(const std::string& text) {
    const auto isDigit = [](char c) {
        return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_' || c == '$';
    };
    return text.size() == globalIdLength && text[0] >= '0' && text[0] <= '3' &&
           std::all_of(text.begin(), text.end(), isDigit);
}

/** The GlobalId, or "" for one that is none. */
std::string globalIdOf(const Place& place) {
    return isGlobalId(place.globalId) ? place.globalId : std::string();
}

std::string nameForMessages(const Product& product) {
    return product.className + ' ' + (product.globalId.empty() ? "-" : product.globalId) + " \"" +
           product.name.value_or("") + '"';
}

/** Moves the parts of a shape into the world. */
std::vector<SolidSurface> surfacesOf(Shape& shape) {
    std::vector<SolidSurface> surfaces;
    surfaces.reserve(shape.parts.size());
    for (ShapePart& part : shape.parts) {
        SolidSurface& surface = surfaces.emplace_back();
        surface.vertices.reserve(part.vertices.size());
        for (const Point& v : part.vertices) {
            surface.vertices.push_back({v.x + shape.origin.x, v.y + shape.origin.y, v.z + shape.origin.z});
        }
        surface.sizes = std::move(part.sizes);
        surface.corners = std::move(part.corners);
    }
    shape.parts.clear();
    return surfaces;
}

/** A shape without surfaces is where its origin is. */
ExternalGUID spatialHashOf(const std::vector<SolidSurface>& surfaces, const Point& origin) {
    if (!surfaces.empty()) {
        return PluginKit::spatialHashOf(surfaces);
    }
    const std::array<double, 3> vertex = {origin.x, origin.y, origin.z};
    return ExternalGUID::spatialHashFromVertexes(1, vertex.data());
}

} // namespace

MeasuredProduct measured(Product&& product) {
    MeasuredProduct result;
    result.product = std::move(product);
    Shape& shape = result.product.shape;
    result.measurement = measure(shape);
    result.surfaces = surfacesOf(shape);
    if (result.isObject()) {
        result.spatialHash = spatialHashOf(result.surfaces, shape.origin);
    }
    return result;
}

void ObjectWriter::write(MeasuredProduct&& measured) {
    const Product& product = measured.product;
    writePlace(product);
    SetLine owner;
    owner.globalId = globalIdOf(product);
    if (measured.isObject()) {
        writeObject(measured);
        owner.object = writer_.objectCount();
        writeAttributes(product, owner, writer_);
    }
    writeProperties(product, owner, writer_);
}

void ObjectWriter::writePlace(const Product& product) {
    HierarchyLine line;
    line.globalId = globalIdOf(product);
    line.parentGlobalId = product.parent == Place::none ? "" : globalIdOf(model_.place(product.parent));
    line.className = product.className;
    line.name = product.name.value_or("");
    writer_.hierarchy(line);
    if (product.className == "IFCBUILDINGSTOREY") {
        writer_.layer({line.globalId, product.elevation.value_or(0.0), line.name});
    }
}

void ObjectWriter::writeObject(MeasuredProduct& measured) {
    const Product& product = measured.product;
    const Shape& shape = product.shape;
    const std::string globalId = globalIdOf(product);
    const ExternalGUID identity =
        globalId.empty() ? measured.spatialHash : ExternalGUID::fromIFCGlobalID(globalId.c_str());
    if (globalId.empty()) {
        writer_.warning(nameForMessages(product) + " has no valid GlobalId and is known by its place only");
    }

    const ExternalGUIDRuntimeID_e identityId = identities_.insertGUID(identity);
    const ExternalGUIDRuntimeID_e hashId = identities_.insertGUID(measured.spatialHash);
    if (identityId == ExternalGUIDRuntimeID_None) {
        throw std::bad_alloc();
    }
    if (!knownIds_.insert(identityId).second) {
        writer_.warning("more than one object has the identity of " + nameForMessages(product));
    }

    const Point centre = measured.measurement.centre();
    ObjectLine line;
    line.identity = identity;
    line.spatialHash = measured.spatialHash;
    line.version = versionOf(measured.measurement, shape.origin);
    line.className = product.className;
    line.position = {centre.x + shape.origin.x, centre.y + shape.origin.y, centre.z + shape.origin.z};
    line.name = product.name.value_or("");
    for (std::size_t i = 0; i < measured.surfaces.size(); ++i) {
        measured.surfaces[i].material = materialOf(product.looks[i]);
    }
    writer_.object(line, {identityId, hashId, globalId});
    writer_.shape(measured.surfaces);

    if (!shape.doubts.empty()) {
        ++doubtfulCount_;
        std::string reasons;
        for (const std::string& doubt : shape.doubts) {
            reasons += (reasons.empty() ? "" : "; ") + doubt;
        }
        writer_.warning(nameForMessages(product) + " is not built in full: " + reasons);
    }
}

/** The number of the material with a look; written when it is met first. */
std::uint32_t ObjectWriter::materialOf(const std::optional<Look>& look) {
    const Look shown = look.value_or(Look());
    const std::array<double, 4> colour = {shown.red, shown.green, shown.blue, shown.opacity};
    const auto [found, isNew] = materials_.emplace(std::make_pair(shown.name, colour), 0);
    if (isNew) {
        found->second = writer_.material({colour, shown.name});
    }
    return found->second;
}
