#include "Support/FailingAllocator.h"

#include <ImportCommon/EnvironmentVariables.h>
#include <ImportCommon/ForeignObjectEnv.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <new>
#include <optional>
#include <string>
#include <vector>

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
class EnvironmentTest : public testing::Test {
protected:
    EnvironmentTest() {
        for (const auto& [key, field] : textFields) {
            env_.*field = L"earlier";
            setenv(key, (std::string("\xC3\xBC ") + key).c_str(), 1);
        }
        for (const auto& [key, field] : streamFields) {
            env_.*field = stdin;
            setenv(key, std::to_string(reinterpret_cast<unsigned long>(streamOf(key))).c_str(), 1);
        }
    }

    ~EnvironmentTest() override { clear(); }

    static void clear() {
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

TEST_F(EnvironmentTest, versionOneFillsEveryField) {
    setenv("fo_handle_version", "1abc", 1);
    EXPECT_TRUE(foreignobject_env_deserialize(env_));
    for (const auto& [key, field] : textFields) {
        EXPECT_EQ(env_.*field, L"\u00FC " + std::wstring(key, key + std::string(key).size()));
    }
    for (const auto& [key, field] : streamFields) {
        EXPECT_EQ(env_.*field, streamOf(key)) << key;
    }
    unsetenv("fo_string_module");
    unsetenv("fo_handle_log");
    EXPECT_TRUE(foreignobject_env_deserialize(env_));
    EXPECT_EQ(env_.module, L"");
    EXPECT_EQ(env_.log, nullptr);
}

TEST_F(EnvironmentTest, anotherVersionLeavesTheOtherFields) {
    EXPECT_FALSE(foreignobject_env_deserialize(env_)); // not set
    setenv("fo_handle_version", "2", 1);
    EXPECT_FALSE(foreignobject_env_deserialize(env_));
    EXPECT_EQ(env_.version, 2);
    EXPECT_EQ(env_.fileName, L"earlier");
    EXPECT_EQ(env_.foreignObjects, stdin);
}

TEST_F(EnvironmentTest, whatIsWrittenIsRead) {
    setenv("fo_handle_version", "1", 1);
    ForeignObjectEnv_t written;
    ASSERT_TRUE(foreignobject_env_deserialize(written));
    written.module.clear();
    written.log = nullptr;
    clear();
    ASSERT_TRUE(foreignobject_env_serialize(written));
    EXPECT_STREQ(std::getenv("fo_string_module"), "");
    EXPECT_STREQ(std::getenv("fo_handle_log"), "0");
    EXPECT_TRUE(foreignobject_env_deserialize(env_));
    for (const auto& [key, field] : textFields) {
        EXPECT_EQ(env_.*field, written.*field) << key;
    }
    for (const auto& [key, field] : streamFields) {
        EXPECT_EQ(env_.*field, written.*field) << key;
    }
    written.version = -3;
    EXPECT_TRUE(foreignobject_env_serialize(written));
    EXPECT_FALSE(foreignobject_env_deserialize(env_));
    EXPECT_EQ(env_.version, -3);
}

TEST_F(AllocationFailureTest, environmentIsWrittenWholeOrTheCallerKnows) {
    ForeignObjectEnv_t env;
    env.version = 1;
    int refused = 0;
    // What the system had no memory to note, it forgets to release: it stays reachable up to the end.
    static auto& kept = *new std::vector<const char*>;
    for (long which = 1, failed = 1; failed != 0 && !HasFailure(); ++which) {
        kept.push_back(std::getenv("fo_handle_version"));
        for (const auto& [key, field] : textFields) {
            kept.push_back(std::getenv(key));
        }
        for (const auto& [key, field] : streamFields) {
            kept.push_back(std::getenv(key));
        }
        clearenv(); // an earlier text would be taken up again without an allocation
        std::optional<bool> result;
        failed = Failure{which, FailingAllocator::Once}.during([&] {
            try {
                result = foreignobject_env_serialize(env);
            } catch (const std::bad_alloc&) { // no memory for a key
            }
        });
        EXPECT_TRUE(failed != 0 || result == true);
        bool complete = std::getenv("fo_handle_version") != nullptr;
        for (const auto& [key, field] : textFields) {
            complete = complete && std::getenv(key) != nullptr;
        }
        for (const auto& [key, field] : streamFields) {
            complete = complete && std::getenv(key) != nullptr;
        }
        EXPECT_EQ(complete, result == true) << which;
        refused += result == false ? 1 : 0;
    }
    EXPECT_GT(refused, 0);
    clearenv();
}

TEST(EnvironmentVariablesTest, numbersAndStreams) {
    EXPECT_EQ(EnvironmentVariables::SetInt(L"ic_test", -5), 0);
    EXPECT_EQ(EnvironmentVariables::GetInt(L"ic_test"), -5);
    EXPECT_EQ(std::getenv("ic_test"), std::string("-5"));
    EXPECT_EQ(EnvironmentVariables::SetFileStreamHandle(L"ic_test", stderr), 0);
    EXPECT_EQ(EnvironmentVariables::GetFileStreamHandle(L"ic_test"), stderr);
    EXPECT_EQ(std::getenv("ic_test"), std::to_string(reinterpret_cast<unsigned long>(stderr)));
    unsetenv("ic_test");
    EXPECT_EQ(EnvironmentVariables::GetInt(L"ic_test"), 0);
    EXPECT_EQ(EnvironmentVariables::GetFileStreamHandle(L"ic_test"), nullptr);
    EXPECT_EQ(EnvironmentVariables::GetString(L"ic_test"), L"");
}

TEST(EnvironmentVariablesTest, textIsUtf8AndCutToTheBuffer) {
    const std::wstring longText(5000, L'x');
    const std::string x4095(4095, 'x');
    const std::pair<std::wstring, std::string> written[] = {
        {L"caf\u00E9 \u4E2D", "caf\xC3\xA9 \xE4\xB8\xAD"}, {L"", ""}, {longText, x4095}};
    for (const auto& [value, stored] : written) {
        EXPECT_EQ(EnvironmentVariables::SetString(L"ic_\u00E9", value), 0);
        EXPECT_EQ(std::getenv("ic_\xC3\xA9"), stored);
    }
    setenv("ic_\xC3\xA9", (x4095 + "y\xC3\xA9").c_str(), 1);
    EXPECT_EQ(EnvironmentVariables::GetString(L"ic_\u00E9"), longText.substr(0, 4095));
    EXPECT_EQ(EnvironmentVariables::SetString(longText, L"long key"), 0);
    EXPECT_EQ(std::getenv(x4095.c_str()), std::string("long key"));
    EXPECT_EQ(EnvironmentVariables::SetInt(L"a=b", 1), -1);
    EXPECT_EQ(EnvironmentVariables::ExpandVariables(L"$HOME/x"), L"$HOME/x");
}

} // namespace
