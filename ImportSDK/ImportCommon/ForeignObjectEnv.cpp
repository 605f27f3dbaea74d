#include <ImportCommon/EnvironmentVariables.h>
#include <ImportCommon/ForeignObjectEnv.h>

using ImportCommon::EnvironmentVariables;

namespace {

constexpr const wchar_t* versionKey = L"fo_handle_version";

struct TextField {
    std::wstring ForeignObjectEnv_t::*field;
    const wchar_t* key;
};

constexpr TextField textFields[] = {
    {&ForeignObjectEnv_t::fileName, L"fo_string_filename"},
    {&ForeignObjectEnv_t::module, L"fo_string_module"},
    {&ForeignObjectEnv_t::path, L"fo_string_path"},
};

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
    env.version = EnvironmentVariables::GetInt(versionKey);
    if (env.version != 1) {
        return false;
    }
    for (const TextField& text : textFields) {
        env.*text.field = EnvironmentVariables::GetString(text.key);
    }
    for (const StreamField& stream : streamFields) {
        env.*stream.field = EnvironmentVariables::GetFileStreamHandle(stream.key);
    }
    return true;
}

bool foreignobject_env_serialize(const ForeignObjectEnv_t& env) {
    bool accepted = EnvironmentVariables::SetInt(versionKey, env.version) == 0;
    for (const TextField& text : textFields) {
        accepted = accepted && EnvironmentVariables::SetString(text.key, env.*text.field) == 0;
    }
    for (const StreamField& stream : streamFields) {
        accepted = accepted && EnvironmentVariables::SetFileStreamHandle(stream.key, env.*stream.field) == 0;
    }
    return accepted;
}
