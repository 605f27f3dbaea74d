#include "Support/Stderr.h"

#include <ImportCommon/DynamicLibrary.h>
#include <ImportCommon/KitDebug.h>

#include <dlfcn.h>

#include <cstdlib>
#include <memory>
#include <string>

using ImportCommon::DynamicLibrary;

namespace {

const char* calls() {
    const char* const recorded = std::getenv("PLUGIN_CALLS");
    return recorded ? recorded : "";
}

} // namespace

// Entry points of this program itself, for when it is opened as a library.
extern "C" {
__attribute__((visibility("default"))) void PluginInit() {
    setenv("PLUGIN_CALLS", "program", 1);
}
__attribute__((visibility("default"))) void PluginDeInit() {
    setenv("PLUGIN_CALLS", "program left", 1);
}
}

namespace {

class DynamicLibraryTest : public testing::Test {
protected:
    DynamicLibraryTest() { unsetenv("PLUGIN_CALLS"); }

    static std::unique_ptr<DynamicLibrary> load(const std::wstring& path) {
        return std::unique_ptr<DynamicLibrary>(DynamicLibrary::loadDynamicLibrary(path, L"not used"));
    }

    static bool isInMemory(const char* path) {
        void* const handle = dlopen(path, RTLD_LAZY | RTLD_NOLOAD);
        return handle != nullptr && dlclose(handle) == 0;
    }

    static int call(DynamicLibrary& library, const char* name) {
        return reinterpret_cast<int (*)()>(library.getSymbolAddress(name))();
    }
};

TEST_F(DynamicLibraryTest, entryPointsAreCalledOncePerObject) {
    auto plugin = load(L"" COUNTING_PLUGIN);
    ASSERT_NE(plugin, nullptr);
    EXPECT_TRUE(plugin->isValid());
    EXPECT_STREQ(calls(), "I");
    EXPECT_EQ(call(*plugin, "CountingPluginAnswer"), 42);
    EXPECT_EQ(plugin->getSymbolAddress("NoSuchSymbol"), nullptr);

    auto again = load(L"" COUNTING_PLUGIN);
    EXPECT_STREQ(calls(), "II");
    again.reset();
    EXPECT_STREQ(calls(), "IID");
    EXPECT_TRUE(isInMemory(COUNTING_PLUGIN));
    plugin.reset();
    EXPECT_STREQ(calls(), "IIDD");
    EXPECT_FALSE(isInMemory(COUNTING_PLUGIN));
}

TEST_F(DynamicLibraryTest, entryPointsAreOptional) {
    auto library = load(L"" PLAIN_LIBRARY);
    ASSERT_NE(library, nullptr);
    EXPECT_EQ(call(*library, "PlainLibraryAnswer"), 17);
    library.reset();
    EXPECT_FALSE(isInMemory(PLAIN_LIBRARY));

    DynamicLibrary nothing(nullptr);
    EXPECT_FALSE(nothing.isValid());
    EXPECT_EQ(nothing.getSymbolAddress("PluginInit"), nullptr);
    EXPECT_STREQ(calls(), "");
}

TEST_F(DynamicLibraryTest, executableIsALibraryToo) {
    std::unique_ptr<DynamicLibrary> program(DynamicLibrary::getExecutable());
    ASSERT_NE(program, nullptr);
    EXPECT_EQ(program->getSymbolAddress("PluginInit"), reinterpret_cast<void*>(&PluginInit));
    EXPECT_STREQ(calls(), "program");
    program.reset();
    EXPECT_STREQ(calls(), "program left");
}

TEST(DynamicLibraryDeathTest, onlyTheFirstFailureIsLogged) {
    const auto failTwice = [] {
        // The reason, which names the file, serves as a format: only doubled percent signs may change.
        for (const wchar_t* path : {L"/none/5%% %s %n %%%%", L"/none/second"}) {
            if (DynamicLibrary::loadDynamicLibrary(path, L"") != nullptr) {
                std::abort();
            }
        }
    };
    expectStderrOfFreshProcess(failTwice, "/none/5% %s %n %%: [^>]*");
}

TEST(KitDebugTest, logIsWrittenAsItStands) {
    for (const int level : {4, -1, 99}) {
        EXPECT_EQ(stderrOf([level] {
                      ImportCommon::KitLog(static_cast<ImportCommon::KitLogLevel_e>(level), "alloc size %d", 0);
                      ImportCommon::KitLog(ImportCommon::KitLogLevel_Warning, "%s%% %.2f", "next", 1.5);
                  }),
                  "alloc size 0next% 1.50");
    }
}

} // namespace
