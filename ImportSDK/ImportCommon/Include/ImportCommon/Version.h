/**
 * @file Version.h
 * The version of the library: of these headers, and of what is loaded.
 */
#pragma once

#include <ImportCommon/Export.h>

/**
 * The headers' version, by the rules of Semantic Versioning.
 *
 * While the major number is 0, a program works with the library of the same minor number only: any 0.x may change names
 * and layouts. The package file and the name of the shared library (`libimport-common.so.0.x`) hold to that. From 1.0
 * on the major number alone decides. A new patch never changes what a program sees, except for faults that are mended.
 */
#define IMPORT_COMMON_VERSION_MAJOR 0
/** See IMPORT_COMMON_VERSION_MAJOR. */
#define IMPORT_COMMON_VERSION_MINOR 1
/** See IMPORT_COMMON_VERSION_MAJOR. */
#define IMPORT_COMMON_VERSION_PATCH 0

namespace ImportCommon {

/**
 * The version of the library that is loaded, which may have another patch number than the headers.
 * @return text such as "0.1.0", valid for good
 */
IMPORT_COMMON_API const char* getVersion();

} // namespace ImportCommon
