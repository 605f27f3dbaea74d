/**
 * @file ImportEnvironment.cpp
 * The import environment, read from variables of any content, and the functions that set one.
 */
#include "FuzzInput.h"
#include "Models/Utf8Reference.h"

#include <ImportCommon/EnvironmentVariables.h>
#include <ImportCommon/ForeignObjectEnv.h>

#include <array>

using ImportCommon::EnvironmentVariables;

namespace {

constexpr const char* textKeys[] = {"fo_string_filename", "fo_string_module", "fo_string_path"};
constexpr const char* streamKeys[] = {
    "fo_handle_foreignobjects", "fo_handle_objects",   "fo_handle_materials",   "fo_handle_layers",
    "fo_handle_tova",           "fo_handle_polygons",  "fo_handle_attributes",  "fo_handle_solids",
    "fo_handle_xrefs",          "fo_handle_log",       "fo_handle_info",        "fo_handle_hierarchy",
    "fo_handle_progress",       "fo_handle_instances", "fo_handle_definitions", "fo_handle_textures"};

/** Variables of this target. They are put into the environment as they are: the system would keep each copy it makes. */
class Variable {
public:
    explicit Variable(const char* key) : key_(key) {}
    ~Variable() { unsetenv(key_.c_str()); }

    void set(const std::string& value) {
        unsetenv(key_.c_str()); // the environment must not point to text that is replaced
        text_ = key_ + '=' + value.c_str();
        putenv(text_.data());
    }

    const char* value() const { return text_.c_str() + key_.size() + 1; }

private:
    std::string key_;
    std::string text_;
};

std::wstring decoded(const char* text) {
    std::wstring wide;
    Utf8Reference::decode(reinterpret_cast<const unsigned char*>(text), SIZE_MAX, 4096, wide);
    return wide.substr(0, 4095).c_str();
}

void read(FuzzInput& input) {
    Variable version("fo_handle_version");
    version.set(input.field('\n'));
    std::array<std::unique_ptr<Variable>, 3> textVariables;
    std::array<std::unique_ptr<Variable>, 16> streamVariables;
    for (std::size_t i = 0; i < textVariables.size(); ++i) {
        textVariables[i] = std::make_unique<Variable>(textKeys[i]);
        std::string value = input.field('\n');
        // Long texts come as a short one that is repeated.
        const unsigned int repeated = value.empty() ? 0 : static_cast<unsigned char>(value.back());
        for (unsigned int count = repeated >= 0xF0 ? (repeated - 0xEF) * 100 : 0; count > 0; --count) {
            value += value.substr(0, 7);
        }
        textVariables[i]->set(value);
    }
    for (std::size_t i = 0; i < streamVariables.size(); ++i) {
        streamVariables[i] = std::make_unique<Variable>(streamKeys[i]);
        streamVariables[i]->set(input.field('\n'));
    }

    ForeignObjectEnv_t env;
    env.fileName = env.module = env.path = L"earlier";
    FILE* ForeignObjectEnv_t::*const streams[] = {&ForeignObjectEnv_t::foreignObjects, &ForeignObjectEnv_t::objects,
                                                  &ForeignObjectEnv_t::materials,      &ForeignObjectEnv_t::layers,
                                                  &ForeignObjectEnv_t::tova,           &ForeignObjectEnv_t::polygons,
                                                  &ForeignObjectEnv_t::attributes,     &ForeignObjectEnv_t::solids,
                                                  &ForeignObjectEnv_t::xrefs,          &ForeignObjectEnv_t::log,
                                                  &ForeignObjectEnv_t::info,           &ForeignObjectEnv_t::hierarchy,
                                                  &ForeignObjectEnv_t::progress,       &ForeignObjectEnv_t::instances,
                                                  &ForeignObjectEnv_t::definitions,    &ForeignObjectEnv_t::textures};
    const bool accepted = foreignobject_env_deserialize(env);
    require(env.version == std::atoi(version.value()) && accepted == (env.version == 1), "version");
    const std::wstring* const results[] = {&env.fileName, &env.module, &env.path};
    for (std::size_t i = 0; i < 3; ++i) {
        require(*results[i] == (accepted ? decoded(textVariables[i]->value()) : L"earlier"), "text");
    }
    for (std::size_t i = 0; accepted && i < 16; ++i) {
        require(reinterpret_cast<long>(env.*streams[i]) == std::atol(streamVariables[i]->value()), "stream");
    }
}

/** The system keeps every text it was ever given, so only so many are given to it. */
void write(FuzzInput& input) {
    static int remaining = 50000;
    if (remaining-- <= 0) {
        return;
    }
    std::wstring key = L"fuzz_";
    for (unsigned int length = input.below(4); length > 0; --length) {
        key += static_cast<wchar_t>(input.take<std::uint16_t>());
    }
    std::wstring value;
    for (unsigned int length = input.below(64); length > 0; --length) {
        value += static_cast<wchar_t>(input.below(3) == 0 ? input.take<std::uint32_t>() : input.take<std::uint8_t>());
    }
    const std::string narrowKey = Utf8Reference::encode(key, 4096).c_str();
    const std::string narrow = Utf8Reference::encode(value, 4096).c_str();
    const bool possible = narrowKey.find('=') == std::string::npos;

    require((EnvironmentVariables::SetString(key, value) == 0) == possible, "text is set");
    require(!possible || EnvironmentVariables::GetString(key) == decoded(narrow.c_str()), "text that was set");
    const int number = input.take<std::int32_t>();
    require(!possible ||
                (EnvironmentVariables::SetInt(key, number) == 0 && EnvironmentVariables::GetInt(key) == number),
            "number that was set");
    auto* const stream = reinterpret_cast<FILE*>(input.take<std::uintptr_t>() >> 1);
    require(!possible || (EnvironmentVariables::SetFileStreamHandle(key, stream) == 0 &&
                          EnvironmentVariables::GetFileStreamHandle(key) == stream),
            "stream that was set");
    if (possible) {
        unsetenv(narrowKey.c_str());
    }
    require(EnvironmentVariables::GetString(key).empty(), "variable that is not set");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzInput input(data, size);
    if (input.below(8) == 0) {
        write(input);
    } else {
        read(input);
    }
    return 0;
}
