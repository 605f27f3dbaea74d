/**
 * @file Import.h
 * The frame of an import function.
 */
#pragma once

#include <PluginKit/PluginEntryPoints.h>
#include <PluginKit/StreamWriter.h>

#include <functional>

namespace PluginKit {

/**
 * Reads the import environment, lets @p import do the work and writes the closing line behind it. What it throws becomes
 * the error that the host shows: nothing is thrown into the host.
 *
 *     extern "C" IMPORT_COMMON_API int ImportModel() { return PluginKit::runImport(importBoxes); }
 *
 * @param import  receives the environment and a writer on its streams
 * @return the result of the import function
 */
int runImport(const std::function<void(const ForeignObjectEnv_t& env, StreamWriter& writer)>& import);

} // namespace PluginKit
