/**
 * @file PluginEntryPoints.h
 * What import-host and its plug-ins agree on besides the library: one function, its results, and the line formats of
 * the streams (FORMATS.md).
 */
#pragma once

extern "C" {
/** The function that a plug-in exports; called once, after "PluginInit", with the import environment prepared. */
typedef int (*ImportModelFunction)();
}

constexpr const char* importModelName = "ImportModel";

/** Results of an import function. */
enum ImportResult : int {
    ImportResult_Done = 0,
    ImportResult_Failed = 1,      ///< the last "error" line of the log stream tells why
    ImportResult_WrongVersion = 2 ///< the environment has a version that the plug-in does not know; nothing is written
};
