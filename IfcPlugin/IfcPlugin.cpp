/**
 * @file IfcPlugin.cpp
 * An import plug-in for IFC 2x3 models: what a host finds in the library, in the order in which it is called.
 */
#include "ObjectWriter.h"
#include "OrderedWork.h"

#include <ImportCommon/Export.h>
#include <ImportCommon/StringOperations.h>

#include <PluginKit/Import.h>
#include <PluginKit/Number.h>

#include <new>

using namespace ImportCommon;
using IfcReader::Model;

namespace {

/** Reading a file takes this much of the time; the rest goes into building shapes and writing. */
constexpr double readingShare = 0.2;

/** Runtime ids hold as long as the plug-in is loaded. */
std::unique_ptr<ExternalGUIDDatabase> identities;

void importModel(const ForeignObjectEnv_t& env, PluginKit::StreamWriter& writer) {
    if (!identities) {
        throw std::bad_alloc();
    }
    const std::string fileName = StringOperations::ConvertToCurrentLocale(env.fileName);
    writer.info("file", fileName);
    writer.progress(0.0, "reading");
    const Model model(fileName, [&](double part) { writer.progress(part * readingShare, "reading"); });
    writer.info("length-unit", PluginKit::numberText(model.metresPerUnit()));

    ObjectWriter objects(model, *identities, writer);
    const auto count = static_cast<double>(model.size());
    OrderedWork<MeasuredProduct>(
        model.size(), [&](std::size_t i) { return measured(model.product(i)); },
        [&](std::size_t i, MeasuredProduct&& product) {
            objects.write(std::move(product));
            writer.progress(readingShare + (1.0 - readingShare) * static_cast<double>(i) / count, "building");
        })
        .run();

    writer.info("products", std::to_string(model.size()));
    writer.info("objects", std::to_string(writer.objectCount()));
    writer.info("doubtful", std::to_string(objects.doubtfulCount()));
    writer.progress(1.0, "done");
}

} // namespace

extern "C" IMPORT_COMMON_API void PluginInit() {
    identities.reset(new (std::nothrow) ExternalGUIDDatabase);
}

extern "C" IMPORT_COMMON_API void PluginDeInit() {
    identities.reset();
}

extern "C" IMPORT_COMMON_API int ImportModel() {
    return PluginKit::runImport(importModel);
}
