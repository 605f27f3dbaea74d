/**
 * @file StreamNames.h
 * The sixteen streams that a host opens for a plug-in.
 */
#pragma once

#include <ImportCommon/ForeignObjectEnv.h>

namespace PluginKit {

/** A stream: its file has its name, and "fo_handle_" with the name behind it is its key in the environment. */
struct StreamName {
    const char* name;
    FILE* ForeignObjectEnv_t::*handle; ///< where the plug-in finds it
};

constexpr StreamName streamNames[] = {
    {"foreignobjects", &ForeignObjectEnv_t::foreignObjects},
    {"objects", &ForeignObjectEnv_t::objects},
    {"materials", &ForeignObjectEnv_t::materials},
    {"layers", &ForeignObjectEnv_t::layers},
    {"tova", &ForeignObjectEnv_t::tova},
    {"polygons", &ForeignObjectEnv_t::polygons},
    {"attributes", &ForeignObjectEnv_t::attributes},
    {"solids", &ForeignObjectEnv_t::solids},
    {"xrefs", &ForeignObjectEnv_t::xrefs},
    {"log", &ForeignObjectEnv_t::log},
    {"info", &ForeignObjectEnv_t::info},
    {"hierarchy", &ForeignObjectEnv_t::hierarchy},
    {"progress", &ForeignObjectEnv_t::progress},
    {"instances", &ForeignObjectEnv_t::instances},
    {"definitions", &ForeignObjectEnv_t::definitions},
    {"textures", &ForeignObjectEnv_t::textures},
};
static_assert(sizeof streamNames / sizeof streamNames[0] == 16, "the import environment has sixteen streams");

} // namespace PluginKit
