#include <ImportCommon/DynamicLibrary.h>
#include <ImportCommon/KitDebug.h>

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#ifdef __linux__
#include <sys/ptrace.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#endif

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
    ASSERT_NE(plugin->getSymbolAddress("CountingPluginAnswer"), nullptr);
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
    ASSERT_NE(library->getSymbolAddress("PlainLibraryAnswer"), nullptr);
    EXPECT_EQ(call(*library, "PlainLibraryAnswer"), 17);
    library.reset();
    EXPECT_FALSE(isInMemory(PLAIN_LIBRARY));
    EXPECT_STREQ(calls(), "");
}

TEST_F(DynamicLibraryTest, nothingLoaded) {
    DynamicLibrary nothing(nullptr);
    EXPECT_FALSE(nothing.isValid());
    EXPECT_EQ(nothing.getSymbolAddress("PluginInit"), nullptr);
    EXPECT_STREQ(calls(), "");
}

TEST_F(DynamicLibraryTest, executableIsALibraryToo) {
    std::unique_ptr<DynamicLibrary> program(DynamicLibrary::getExecutable());
    ASSERT_NE(program, nullptr);
    EXPECT_TRUE(program->isValid());
    EXPECT_EQ(program->getSymbolAddress("PluginInit"), reinterpret_cast<void*>(&PluginInit));
    EXPECT_STREQ(calls(), "program");
    program.reset();
    EXPECT_STREQ(calls(), "program left");
}

TEST(DynamicLibraryDeathTest, onlyTheFirstFailureIsLogged) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    const auto failTwice = [] {
        std::fputs("<<", stderr);
        // The reason, which names the file, serves as a format: only doubled percent signs may change.
        const bool failed = !DynamicLibrary::loadDynamicLibrary(L"/none/5%% %s %n %%%%", L"") &&
                            !DynamicLibrary::loadDynamicLibrary(L"/none/second", L"");
        std::fputs(">>", stderr);
        std::exit(failed ? 0 : 1);
    };
    EXPECT_EXIT(failTwice(), testing::ExitedWithCode(0), "<</none/5% %s %n %%: [^>]*>>");
}

TEST(KitDebug, logIsWrittenAsItStandsAndTimingIsInert) {
    for (const int level : {4, 0, -1, 99}) {
        testing::internal::CaptureStderr();
        ImportCommon::KitLog(static_cast<ImportCommon::KitLogLevel_e>(level), "Invalid alloc size %d", 0);
        ImportCommon::KitLog(ImportCommon::KitLogLevel_Warning, "%s%% %.2f", "next", 1.5);
        EXPECT_EQ(testing::internal::GetCapturedStderr(), "Invalid alloc size 0next% 1.50") << level;
    }
    EXPECT_EQ(ImportCommon::KitGetTime(), 0);
    EXPECT_EQ(ImportCommon::KitTimeDeltaAsSeconds(0, 1000000), 0.0);
}

TEST(KitDebug, breakNeedsADebugger) {
    if (ImportCommon::IsDebuggerPresent()) {
        GTEST_SKIP() << "runs under a debugger";
    }
    ImportCommon::KitDebugBreak();
#ifdef __linux__
    // A child that is traced by this process: stops at the breakpoint, and goes on when it is continued.
    const pid_t child = fork();
    if (child == 0) {
        if (ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0) {
            _exit(2);
        }
        ImportCommon::KitDebugBreak();
        _exit(ImportCommon::IsDebuggerPresent() ? 0 : 1);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    if (WIFEXITED(status) && WEXITSTATUS(status) == 2) {
        GTEST_SKIP() << "tracing is not allowed here";
    }
    ASSERT_TRUE(WIFSTOPPED(status));
    EXPECT_EQ(WSTOPSIG(status), SIGTRAP);
    ptrace(PTRACE_CONT, child, nullptr, nullptr);
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
#endif
}

} // namespace
