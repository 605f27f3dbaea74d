/**
 * @file Export.h
 * Marks the declarations that the shared library exports; everything else stays hidden inside it.
 */
#pragma once

#if defined(__GNUC__)
#define IMPORT_COMMON_API __attribute__((visibility("default")))
#else
#define IMPORT_COMMON_API
#endif
