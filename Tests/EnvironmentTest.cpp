#include <ImportCommon/EnvironmentVariables.h>
#include <ImportCommon/ForeignObjectEnv.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <string>

using ImportCommon::EnvironmentVariables;

namespace {

const struct {
    const char* key;
    std::wstring ForeignObjectEnv_t::*field;
} textFields[] = {
    {"fo_string_filename", &ForeignObjectEnv_t::fileName},
    {"fo_string_module", &ForeignObjectEnv_t::module},
    {"fo_string_path", &ForeignObjectEnv_t::path},
};

const struct {
    const char* key;
    FILE* ForeignObjectEnv_t::*field;
} streamFields[] = {
    {"fo_handle_foreignobjects", &ForeignObjectEnv_t::foreignObjects},
    {"fo_handle_objects", &ForeignObjectEnv_t::objects},
    {"fo_handle_materials", &ForeignObjectEnv_t::materials},
    {"fo_handle_layers", &ForeignObjectEnv_t::layers},
    {"fo_handle_tova", &ForeignObjectEnv_t::tova},
    {"fo_handle_polygons", &ForeignObjectEnv_t::polygons},
    {"fo_handle_attributes", &ForeignObjectEnv_t::attributes},
    {"fo_handle_solids", &ForeignObjectEnv_t::solids},
    {"fo_handle_xrefs", &ForeignObjectEnv_t::xrefs},
    {"fo_handle_log", &ForeignObjectEnv_t::log},
    {"fo_handle_info", &ForeignObjectEnv_t::info},
    {"fo_handle_hierarchy", &ForeignObjectEnv_t::hierarchy},
    {"fo_handle_progress", &ForeignObjectEnv_t::progress},
    {"fo_handle_instances", &ForeignObjectEnv_t::instances},
    {"fo_handle_definitions", &ForeignObjectEnv_t::definitions},
    {"fo_handle_textures", &ForeignObjectEnv_t::textures},
};

/** Prepares the environment of an import as a host does, and clears it again. */
class Environment : public testing::Test {
protected:
    Environment() {
        for (const auto& [key, field] : textFields) {
            env_.*field = L"earlier";
            setenv(key, (std::string("\xC3\xBC ") + key).c_str(), 1);
        }
        for (const auto& [key, field] : streamFields) {
            env_.*field = stdin;
            setenv(key, std::to_string(reinterpret_cast<unsigned long>(streamOf(key))).c_str(), 1);
        }
    }

    ~Environment() override {
        unsetenv("fo_handle_version");
        for (const auto& [key, field] : textFields) {
            unsetenv(key);
        }
        for (const auto& [key, field] : streamFields) {
            unsetenv(key);
        }
    }

    /** The library only carries the pointer, so any address that differs from key to key will do. */
    static FILE* streamOf(const char* key) { return reinterpret_cast<FILE*>(const_cast<char*>(key)); }

    ForeignObjectEnv_t env_;
};

TEST_F(Environment, versionOneFillsEveryField) {
    for (const char* version : {"1", "1abc", " +1"}) {
        setenv("fo_handle_version", version, 1);
        ASSERT_TRUE(foreignobject_env_deserialize(env_)) << version;
        EXPECT_EQ(env_.version, 1);
    }
    for (const auto& [key, field] : textFields) {
        EXPECT_EQ(env_.*field, L"\u00FC " + std::wstring(key, key + std::string(key).size()));
    }
    for (const auto& [key, field] : streamFields) {
        EXPECT_EQ(env_.*field, streamOf(key)) << key;
    }
}

TEST_F(Environment, anotherVersionLeavesTheOtherFields) {
    for (const auto& [text, version] : {std::pair("2", 2), std::pair("0", 0), std::pair("-1", -1), std::pair("x", 0)}) {
        setenv("fo_handle_version", text, 1);
        EXPECT_FALSE(foreignobject_env_deserialize(env_));
        EXPECT_EQ(env_.version, version);
    }
    unsetenv("fo_handle_version");
    EXPECT_FALSE(foreignobject_env_deserialize(env_));
    for (const auto& [key, field] : textFields) {
        EXPECT_EQ(env_.*field, L"earlier") << key;
    }
    for (const auto& [key, field] : streamFields) {
        EXPECT_EQ(env_.*field, stdin) << key;
    }
}

TEST_F(Environment, keysThatAreNotSetAreEmptyOrNull) {
    setenv("fo_handle_version", "1", 1);
    unsetenv("fo_string_module");
    unsetenv("fo_handle_log");
    EXPECT_TRUE(foreignobject_env_deserialize(env_));
    EXPECT_EQ(env_.module, L"");
    EXPECT_EQ(env_.log, nullptr);
    EXPECT_EQ(env_.textures, streamOf(streamFields[15].key));
}

TEST(EnvironmentVariables, numbersAndStreams) {
    for (const int value : {0, -5, 2147483647, -2147483647 - 1}) {
        EXPECT_EQ(EnvironmentVariables::SetInt(L"ic_test", value), 0);
        EXPECT_EQ(EnvironmentVariables::GetInt(L"ic_test"), value);
        EXPECT_EQ(std::getenv("ic_test"), std::to_string(value));
    }
    for (FILE* stream : {stderr, static_cast<FILE*>(nullptr)}) {
        EXPECT_EQ(EnvironmentVariables::SetFileStreamHandle(L"ic_test", stream), 0);
        EXPECT_EQ(EnvironmentVariables::GetFileStreamHandle(L"ic_test"), stream);
        EXPECT_EQ(std::getenv("ic_test"), std::to_string(reinterpret_cast<unsigned long>(stream)));
    }
    EXPECT_EQ(EnvironmentVariables::SetString(L"ic_test", L"none"), 0);
    EXPECT_EQ(EnvironmentVariables::GetInt(L"ic_test"), 0);
    EXPECT_EQ(EnvironmentVariables::GetFileStreamHandle(L"ic_test"), nullptr);
    unsetenv("ic_test");
    EXPECT_EQ(EnvironmentVariables::GetInt(L"ic_test"), 0);
    EXPECT_EQ(EnvironmentVariables::GetFileStreamHandle(L"ic_test"), nullptr);
    EXPECT_EQ(EnvironmentVariables::GetString(L"ic_test"), L"");
}

TEST(EnvironmentVariables, textIsUtf8AndCutToTheBuffer) {
    const std::wstring longText(5000, L'x');
    const struct {
        std::wstring value;
        std::string stored;
    } written[] = {
        {L"caf\u00E9 \u4E2D", "caf\xC3\xA9 \xE4\xB8\xAD"},
        {{L'a', 0x1F600, L'b'}, "ab"},
        {L"", ""},
        {longText, std::string(4095, 'x')},
    };
    for (const auto& c : written) {
        EXPECT_EQ(EnvironmentVariables::SetString(L"ic_\u00E9", c.value), 0);
        ASSERT_NE(std::getenv("ic_\xC3\xA9"), nullptr);
        EXPECT_EQ(std::getenv("ic_\xC3\xA9"), c.stored);
    }
    unsetenv("ic_\xC3\xA9");

    const std::string x4095(4095, 'x');
    const struct {
        std::string stored;
        std::wstring value;
    } read[] = {
        {"caf\xC3\xA9", L"caf\u00E9"},           {"ab\x80zz", L"ab"},
        {x4095, longText.substr(0, 4095)},       {x4095 + "y", longText.substr(0, 4095)},
        {x4095 + "\xC3\xA9", longText.substr(0, 4095)}, {x4095 + "y\xC3\xA9", longText.substr(0, 4095)},
    };
    for (const auto& c : read) {
        setenv("ic_test", c.stored.c_str(), 1);
        EXPECT_EQ(EnvironmentVariables::GetString(L"ic_test"), c.value);
    }
    unsetenv("ic_test");

    EXPECT_EQ(EnvironmentVariables::SetString(longText, L"long key"), 0);
    EXPECT_EQ(std::getenv(x4095.c_str()), std::string("long key"));
    unsetenv(x4095.c_str());
    EXPECT_EQ(EnvironmentVariables::SetString(L"", L"no key"), -1);
    EXPECT_EQ(EnvironmentVariables::SetInt(L"a=b", 1), -1);
    EXPECT_EQ(EnvironmentVariables::ExpandVariables(L"$HOME/x"), L"$HOME/x");
}

} // namespace
