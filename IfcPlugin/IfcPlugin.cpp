/**
 * @file IfcPlugin.cpp
 * An import plug-in for IFC 2x3 models: what a host finds in the library, in the order in which it is called.
 */
#include "IfcModel.h"
#include "Measure.h"
#include "PropertyModel.h"
#include "Solid.h"
#include "Streams.h"

#include <ImportCommon/ExternalGUID.h>
#include <ImportCommon/ExternalGUIDDatabase.h>
#include <ImportCommon/ExternalVersion.h>
#include <ImportCommon/ForeignObjectEnv.h>
#include <ImportCommon/PngTexture.h>
#include <ImportCommon/StringOperations.h>

#include <PluginKit/PluginEntryPoints.h>

#include <memory>
#include <new>
#include <unordered_set>

#define PLUGIN_EXPORT extern "C" __attribute__((visibility("default")))

using namespace ImportCommon;

namespace {

/** Reading a file takes this much of the time, the rest goes into measuring. */
constexpr double readingShare = 0.7;

/** Runtime ids hold as long as the plug-in is loaded. */
std::unique_ptr<ExternalGUIDDatabase> identities;

/** The product's surfaces; empty when it has no geometry. */
std::vector<Surface> surfacesOf(const Product& product) {
    std::vector<Surface> surfaces;
    for (const ProductMesh& mesh : product.meshes) {
        Surface surface = surfaceOf(mesh, product.orientation);
        if (!surface.vertices.empty()) {
            surfaces.push_back(std::move(surface));
        }
    }
    return surfaces;
}

/** The identity of a place and shape: finds an object again whose GlobalId was changed. */
ExternalGUID spatialHashOf(const std::vector<Surface>& surfaces, const Vector& origin) {
    std::size_t count = 0;
    for (const Surface& surface : surfaces) {
        count += surface.vertices.size();
    }
    std::vector<double> coordinates;
    coordinates.reserve(3 * count);
    for (const Surface& surface : surfaces) {
        for (const Vector& v : surface.vertices) {
            coordinates.insert(coordinates.end(), {v.x + origin.x, v.y + origin.y, v.z + origin.z});
        }
    }
    return ExternalGUID::spatialHashFromVertexes(static_cast<unsigned int>(count), coordinates.data());
}

void importObject(const Product& product, const std::vector<Surface>& surfaces, std::unordered_set<int>& knownIds,
                  Streams& streams) {
    const ExternalGUID hash = spatialHashOf(surfaces, product.origin);
    const ExternalGUID identity =
        product.globalId.empty() ? hash : ExternalGUID::fromIFCGlobalID(product.globalId.c_str());
    if (product.globalId.empty()) {
        streams.warning(product.className + " without a valid GlobalId is known by its place only: " + product.name);
    }

    const ExternalGUIDRuntimeID_e identityId = identities->insertGUID(identity);
    const ExternalGUIDRuntimeID_e hashId = identities->insertGUID(hash);
    if (identityId == ExternalGUIDRuntimeID_None) {
        throw std::bad_alloc();
    }
    if (!knownIds.insert(identityId).second) {
        streams.warning("more than one object has the identity of " + product.className + " " + product.globalId);
    }

    const Measurement measurement = measure(surfaces);
    streams.object(identity, identityId, hash, hashId, versionOf(measurement, product.origin),
                   measurement.centre() + product.origin, product);
    for (const Surface& surface : surfaces) {
        streams.polygons(surface, product.origin);
    }
    streams.solid(solidOf(surfaces, product.origin));
}

/** Writes the images that are in the file as PNG; others have no form here. */
void importTextures(const aiScene& scene, Streams& streams) {
    for (unsigned int i = 0; i < scene.mNumTextures; ++i) {
        const aiTexture& texture = *scene.mTextures[i];
        const char* bytes = reinterpret_cast<const char*>(texture.pcData);
        if (texture.mHeight == 0 && texture.CheckFormat("png")) { // compressed: the width is the number of bytes
            streams.texture(PngTexture(std::vector<char>(bytes, bytes + texture.mWidth)), texture.mFilename.C_Str());
        }
    }
}

void importModel(const ForeignObjectEnv_t& env, Streams& streams) {
    const std::string fileName = StringOperations::ConvertToCurrentLocale(env.fileName);
    streams.info("file", fileName);
    streams.progress(0.0, "reading");
    IfcModel model(fileName, [&](double part) { streams.progress(part * readingShare, "reading"); });

    for (unsigned int i = 0; i < model.scene().mNumMaterials; ++i) {
        streams.material(*model.scene().mMaterials[i]);
    }
    importTextures(model.scene(), streams);

    const std::vector<Product>& products = model.products();
    std::unordered_set<int> knownIds;
    for (std::size_t i = 0; i < products.size(); ++i) {
        const Product& product = products[i];
        streams.hierarchy(product, product.parent == Product::none ? nullptr : &products[product.parent]);
        if (product.className == "IFCBUILDINGSTOREY") {
            streams.storey(product);
        }
        const std::vector<Surface> surfaces = surfacesOf(product);
        if (!surfaces.empty()) {
            importObject(product, surfaces, knownIds, streams);
        }
        writeProperties(product, model.properties().setsOf(product.globalId), !surfaces.empty(), streams);
        streams.progress(readingShare +
                             (1.0 - readingShare) * static_cast<double>(i) / static_cast<double>(products.size()),
                         "measuring");
    }

    if (model.properties().isCutShort()) {
        streams.warning("the file attaches so many properties to its products that not all were read");
    }
    streams.info("products", std::to_string(products.size()));
    streams.info("objects", std::to_string(streams.objectCount()));
    streams.end();
    streams.progress(1.0, "done");
}

/** Imports the model; what goes wrong goes to the log stream. */
int importInto(const ForeignObjectEnv_t& env) {
    Streams streams(env);
    try {
        if (!identities) {
            throw std::bad_alloc();
        }
        importModel(env, streams);
        return ImportResult_Done;
    } catch (const std::bad_alloc&) {
        streams.error("not enough memory");
    } catch (const std::exception& e) {
        streams.error(e.what());
    } catch (...) {
        streams.error("unknown fault");
    }
    return ImportResult_Failed;
}

} // namespace

PLUGIN_EXPORT void PluginInit() {
    identities.reset(new (std::nothrow) ExternalGUIDDatabase);
}

PLUGIN_EXPORT void PluginDeInit() {
    identities.reset();
}

/** Nothing may be thrown into the host. */
PLUGIN_EXPORT int ImportModel() {
    try {
        ForeignObjectEnv_t env;
        return foreignobject_env_deserialize(env) ? importInto(env) : ImportResult_WrongVersion;
    } catch (...) {
        return ImportResult_Failed; // not even memory to say why
    }
}
