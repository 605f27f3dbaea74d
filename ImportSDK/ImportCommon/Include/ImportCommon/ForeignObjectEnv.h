/**
 * @file ForeignObjectEnv.h
 * The import environment that a host prepares before it calls an import plug-in.
 */
#pragma once

#include <ImportCommon/Export.h>

#include <cstdint>
#include <cstdio>
#include <string>

/**
 * What the host hands over: the job and sixteen open streams for results.
 *
 * The streams are borrowed: the host opened them and closes them after the plug-in has returned. A stream may be null;
 * check it before writing. The environment key of each field stands behind it.
 */
struct ForeignObjectEnv_t {
    std::int32_t version = 0;       ///< "fo_handle_version": version of this convention; 1
    std::wstring fileName;          ///< "fo_string_filename": the file to import
    std::wstring module;            ///< "fo_string_module": the module that imports it
    std::wstring path;              ///< "fo_string_path": folder of the import
    FILE* foreignObjects = nullptr; ///< "fo_handle_foreignobjects"
    FILE* objects = nullptr;        ///< "fo_handle_objects"
    FILE* materials = nullptr;      ///< "fo_handle_materials"
    FILE* layers = nullptr;         ///< "fo_handle_layers"
    FILE* tova = nullptr;           ///< "fo_handle_tova"
    FILE* polygons = nullptr;       ///< "fo_handle_polygons"
    FILE* attributes = nullptr;     ///< "fo_handle_attributes"
    FILE* solids = nullptr;         ///< "fo_handle_solids"
    FILE* xrefs = nullptr;          ///< "fo_handle_xrefs"
    FILE* log = nullptr;            ///< "fo_handle_log"
    FILE* info = nullptr;           ///< "fo_handle_info"
    FILE* hierarchy = nullptr;      ///< "fo_handle_hierarchy"
    FILE* progress = nullptr;       ///< "fo_handle_progress"
    FILE* instances = nullptr;      ///< "fo_handle_instances"
    FILE* definitions = nullptr;    ///< "fo_handle_definitions"
    FILE* textures = nullptr;       ///< "fo_handle_textures"
};

/**
 * Reads the import environment; a plug-in calls it first.
 *
 * @param env  receives the version, and with version 1 everything else; keys that are not set give empty text and null
 *             streams. With another version all other fields keep what they held.
 * @return whether the version is 1. Throws `std::bad_alloc` without memory for a text; the fields before it are set.
 */
IMPORT_COMMON_API bool foreignobject_env_deserialize(ForeignObjectEnv_t& env);

/**
 * Writes the import environment; a host calls it before it calls a plug-in. The counterpart of
 * foreignobject_env_deserialize: sets all twenty variables, an empty text or a null stream where the record has none.
 *
 * What a variable can't hold is left out as EnvironmentVariables says: a text ends after 4095 bytes of UTF-8 and loses
 * characters beyond U+FFFF. A host that must hand over the whole text reads the environment back and compares.
 *
 * @param env  the record, its version as it stands; the streams stay owned by the caller and must outlive the import
 * @return false when the system refuses a variable; those before it in the record's order are set.
 *         Throws `std::bad_alloc` without memory for a key, likewise.
 */
IMPORT_COMMON_API bool foreignobject_env_serialize(const ForeignObjectEnv_t& env);
