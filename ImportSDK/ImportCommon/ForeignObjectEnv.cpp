#include <ImportCommon/EnvironmentVariables.h>
#include <ImportCommon/ForeignObjectEnv.h>

using ImportCommon::EnvironmentVariables;

namespace {

struct StreamField {
    FILE* ForeignObjectEnv_t::*field;
    const wchar_t* key;
};

constexpr StreamField streamFields[] = {
    {&ForeignObjectEnv_t::foreignObjects, L"fo_handle_foreignobjects"},
    {&ForeignObjectEnv_t::objects, L"fo_handle_objects"},
    {&ForeignObjectEnv_t::materials, L"fo_handle_materials"},
    {&ForeignObjectEnv_t::layers, L"fo_handle_layers"},
    {&ForeignObjectEnv_t::tova, L"fo_handle_tova"},
    {&ForeignObjectEnv_t::polygons, L"fo_handle_polygons"},
    {&ForeignObjectEnv_t::attributes, L"fo_handle_attributes"},
    {&ForeignObjectEnv_t::solids, L"fo_handle_solids"},
    {&ForeignObjectEnv_t::xrefs, L"fo_handle_xrefs"},
    {&ForeignObjectEnv_t::log, L"fo_handle_log"},
    {&ForeignObjectEnv_t::info, L"fo_handle_info"},
    {&ForeignObjectEnv_t::hierarchy, L"fo_handle_hierarchy"},
    {&ForeignObjectEnv_t::progress, L"fo_handle_progress"},
    {&ForeignObjectEnv_t::instances, L"fo_handle_instances"},
    {&ForeignObjectEnv_t::definitions, L"fo_handle_definitions"},
    {&ForeignObjectEnv_t::textures, L"fo_handle_textures"},
};

} // namespace

bool foreignobject_env_deserialize(ForeignObjectEnv_t& env) {
    env.version = EnvironmentVariables::GetInt(L"fo_handle_version");
    if (env.version != 1) {
        return false;
    }
    env.fileName = EnvironmentVariables::GetString(L"fo_string_filename");
    env.module = EnvironmentVariables::GetString(L"fo_string_module");
    env.path = EnvironmentVariables::GetString(L"fo_string_path");
    for (const StreamField& stream : streamFields) {
        env.*stream.field = EnvironmentVariables::GetFileStreamHandle(stream.key);
    }
    return true;
}
