/**
 * @file Export.h
 * Marks the declarations that the shared library exports; everything else stays hidden inside it.
 */
#pragma once

#if defined(__GNUC__)
#define IMPORT_COMMON_API __attribute__((visibility("default")))
/** Keeps a private part of an exported class inside the library. */
#define IMPORT_COMMON_LOCAL __attribute__((visibility("hidden")))
#else
#define IMPORT_COMMON_API
#define IMPORT_COMMON_LOCAL
#endif
