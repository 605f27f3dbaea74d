/**
 * @file BadPluginTest.cpp
 * Plug-ins that fail, one way after the other: the host says so in one line and keeps the state that it had.
 */
#include "Support/ImportExample.h"

#include <PluginKit/StreamNames.h>

#include <chrono>
#include <thread>

namespace {

struct BadPlugin {
    const char* how;    ///< what the plug-in does
    const char* reason; ///< part of the line that is shown; empty for an import that succeeds all the same
};

constexpr BadPlugin badPlugins[] = {
    {"silence", "no closing line"},
    {"crash", "crashed while importing it: Aborted"},
    {"segv", "crashed"},
    {"fpe", "crashed"},
    {"bus", "crashed"},
    {"kill", "crashed while importing it: Killed"},
    {"term", "crashed while importing it: Terminated"},
    {"pipe", "crashed while importing it: Broken pipe"},
    {"overflow", "crashed"},
    {"exit", "ended the process"},
    {"quit", "ended the process"},
    {"orderly", "ended the process"},
    {"terminate", "crashed"},
    {"throw", "threw an exception: out of order"},
    {"throw-int", "threw an exception"},
    {"throw-memory", "threw an exception: not enough memory"},
    {"thread-exit", "ended its thread"},
    {"fail", "gave 77 and no reason"},
    {"fail-negative", "gave -1 and no reason"},
    {"fail-silently", "gave 1 and no reason"},
    {"fail-version", "does not know version 1"},
    {"fail-controls", "red ?[31m ?31m? next"},
    {"fail-long", "xxxxxxxx"},
    {"no such thing", "gave 99"},
    {"shout", "crashed"},
    {"shout-much", "crashed"},
    {"shout-out", "crashed"},
    {"talk", ""},
    {"leave", ""},
    {"leave-fork", ""},
    {"close-all", "ended the process"},
    {"close-standard", ""},
    {"chdir", ""},
    {"umask", ""},
    {"locale", ""},
    {"clearenv", ""},
    {"ignore-signals", ""},
    {"remove-folder", "No such file"},
    {"objects-gone", "objects: No such file"},
    {"objects-fifo", "objects: not a regular file"},
    {"objects-folder", "objects: not a regular file"},
    {"objects-link", "objects: No such file"},
    {"objects-device", "objects: not a regular file"},
    {"objects-huge", "objects: larger than 1024 MiB"},
    {"objects-no-end", "no closing line"},
    {"objects-more-end", "objects stream"},
    {"objects-behind-end", "objects stream"},
    {"objects-cut", "objects stream"},
    {"objects-garbage", "objects stream"},
    {"objects-zeros", "objects stream"},
    {"objects-tabs", "objects stream"},
    {"objects-identity", "not an identity"},
    {"objects-none", "not an identity"},
    {"objects-version", "not a version"},
    {"objects-version-infinite", "not finite or out of range"},
    {"objects-version-nan", "not finite or out of range"},
    {"objects-version-huge", "not finite or out of range"},
    {"objects-version-negative", "not finite or out of range"},
    {"objects-position-short", "objects stream"},
    {"objects-position-nan", "not finite"},
    {"objects-position-huge", "out of range"},
    {"objects-position-comma", "'1,5' is not a number"},
    {"polygons-object", "there is no object 2"},
    {"polygons-vertex", "there is no vertex 1"},
    {"polygons-coordinate", "a vertex lacks a coordinate"},
    {"polygons-huge", "polygons stream, line 2"},
    {"polygons-garbage", "polygons stream, line 2"},
    {"attributes-first", "attributes stream, line 1"},
    {"attributes-depth", "attributes stream, line 3"},
    {"attributes-object", "there is no object 7"},
    {"attributes-type", "not a value of type 'colour'"},
    {"attributes-nan", "'nan' is not a number"},
    {"attributes-angle", "'1e308' is out of range"},
    {"attributes-factor", "'1e308' is out of range"},
    {"attributes-garbage", "neither a set nor a property"},
    {"attributes-nested", "MiB of properties"},
    {"solids-garbage", "solids stream"},
    {"solids-size", "solids stream"},
    {"solids-object", "there is no object 9"},
    {"solids-surfaces", "solids stream"},
    {"solids-vertices", "solids stream"},
    {"solids-polygons", "solids stream"},
    {"solids-corner", "solids stream"},
    {"log-garbage", ""},
    {"progress-garbage", ""},
    {"info-garbage", ""},
};

class BadPluginTest : public ImportExampleTest {
protected:
    BadPluginTest() {
        endAsWithoutSanitizers();
        writeFile(file("model"), "not read by this plug-in");
        fs::create_symlink(BAD_PLUGIN, file("bad.so"));
        setenv("BAD_PLUGIN", "good", 1);
        EXPECT_EQ(runBad("").exitCode, 0);
    }

    Result runBad(const std::string& options) const {
        return run("--plugin bad.so --state state " + options + " model");
    }

    /** The rest of the error stream without what the plug-in itself had to say behind the line. */
    void expectOneLine(const Result& result, const std::string& reason) const {
        EXPECT_EQ(result.exitCode, 1);
        EXPECT_EQ(result.error.find("import-host: "), 0u) << result.error;
        const std::string line = result.error.substr(0, result.error.find('\n'));
        EXPECT_NE(line.find(reason), std::string::npos) << line;
        EXPECT_LT(result.error.size(), 200'000u);
        for (const char c : result.error) {
            EXPECT_TRUE(c == '\n' || static_cast<unsigned char>(c) >= 0x20) << "a control character is shown";
        }
    }

    void expect(const std::string& how, const std::string& reason) const {
        SCOPED_TRACE(how);
        setenv("BAD_PLUGIN", how.c_str(), 1);
        const std::string before = readFile(file("state/objects.state"));
        const Result result = runBad("");
        if (reason.empty()) {
            EXPECT_EQ(result.exitCode, 0) << result.error;
        } else {
            expectOneLine(result, reason);
            EXPECT_EQ(readFile(file("state/objects.state")), before);
        }
        for (const auto& entry : fs::directory_iterator(file("state"))) {
            EXPECT_TRUE(entry.path().filename() == "objects.state" || entry.path().filename() == "output") << entry;
        }
        setenv("BAD_PLUGIN", "good", 1);
        EXPECT_EQ(runBad("").exitCode, 0) << "the state is free and whole";
    }
};

TEST_F(BadPluginTest, eachWayToFailIsOneLine) {
    // What a plug-in leaves behind lives until this file is gone: a host that waits for it waits for ever.
    writeFile(file("left"), "");
    setenv("BAD_PLUGIN_WAITS_FOR", file("left").c_str(), 1);
    for (const auto& [how, reason] : badPlugins) {
        expect(how, reason);
    }
    fs::remove(file("left"));
    unsetenv("BAD_PLUGIN_WAITS_FOR");
}

TEST_F(BadPluginTest, whatDoesNotReachAStreamFailsTheImport) {
    for (const PluginKit::StreamName& stream : PluginKit::streamNames) {
        expect(std::string(stream.name) + ":close", "/" + std::string(stream.name) + ": Bad file descriptor");
        if (fs::exists("/dev/full")) {
            expect(std::string(stream.name) + ":full", "/" + std::string(stream.name) + ": No space left");
        }
    }
}

TEST_F(BadPluginTest, textsAreComparedAndNotTheirSpelling) {
    for (const char* const how : {"escapes-small", "escapes-capital", "escapes-small"}) {
        setenv("BAD_PLUGIN", how, 1);
        EXPECT_EQ(runBad("--report report.json").exitCode, 0);
    }
    const json report = json::parse(readFile(file("report.json")));
    EXPECT_EQ(report["counts"]["unchanged"], 1) << report;
}

TEST_F(BadPluginTest, doubtfulObjectsAreCountedAsFarAsThePluginTells) {
    const std::pair<const char*, json> cases[] = {
        {"doubtful-two", 2}, {"doubtful-none", 0}, {"doubtful-some", nullptr}, {"good", nullptr}};
    for (const auto& [how, count] : cases) {
        setenv("BAD_PLUGIN", how, 1);
        EXPECT_EQ(runBad("--report report.json").exitCode, 0);
        EXPECT_EQ(json::parse(readFile(file("report.json")))["doubtful"], count) << how;
        const bool isShown = readFile(file("stdout")).find("\n2 objects are doubtful: ") != std::string::npos;
        EXPECT_EQ(isShown, count == 2) << how;
    }
}

TEST_F(BadPluginTest, veryManyValuesOfOneNameAreCompared) {
    setenv("BAD_PLUGIN", "attributes-alike", 1);
    EXPECT_EQ(runBad("").exitCode, 0);
    EXPECT_EQ(runBad("").exitCode, 0) << "each with each other would take hours";
}

TEST_F(BadPluginTest, oneImportOfAStateRunsAtATime) {
    writeFile(file("running"), "");
    setenv("BAD_PLUGIN_WAITS_FOR", file("running").c_str(), 1);
    setenv("BAD_PLUGIN", "wait", 1);
    int firstExitCode = -1;
    std::thread first(
        [&] { firstExitCode = std::system("'" IMPORT_HOST "' --plugin bad.so --state state model >first.log 2>&1"); });
    const auto isRunning = [this] {
        for (const auto& entry : fs::directory_iterator(file("state"))) {
            if (entry.path().filename().string().find("output-of-import.") == 0) {
                return true;
            }
        }
        return false;
    };
    while (!isRunning()) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    unsetenv("BAD_PLUGIN_WAITS_FOR");
    const Result second = runBad("");
    EXPECT_EQ(second.exitCode, 1);
    EXPECT_NE(second.error.find("another import is running"), std::string::npos) << second.error;
    EXPECT_TRUE(isRunning()) << "the second import took the first one's folder away";
    fs::remove(file("running"));
    first.join();
    EXPECT_EQ(firstExitCode, 0) << readFile(file("first.log"));
}

TEST_F(BadPluginTest, aPluginThatFailsCanBeLookedAt) {
    setenv("BAD_PLUGIN", "shout", 1);
    const Result crashed = runBad("");
    EXPECT_NE(crashed.error.find("\none\ntwo ?[31m\n"), std::string::npos) << crashed.error;

    setenv("BAD_PLUGIN", "shout-much", 1);
    EXPECT_NE(runBad("").error.find(" bytes left out]\n"), std::string::npos);

    setenv("BAD_PLUGIN", "fail", 1);
    const Result kept = runBad("--keep-output");
    expectOneLine(kept, "; what it wrote is in state/output-of-import.");
    const std::size_t at = kept.error.find("state/output-of-import.");
    EXPECT_TRUE(fs::exists(file(kept.error.substr(at, kept.error.find('\n') - at) + "/objects")));

    setenv("BAD_PLUGIN", "objects-large", 1);
    const auto outputs = [this] {
        return std::count_if(fs::directory_iterator(file("state")), fs::directory_iterator(),
                             [](const auto& entry) { return entry.path().filename() != "objects.state"; });
    };
    if (HAS_MEMORY_LIMITS) { // sanitizers ask for more
        const std::string command =
            "'" IMPORT_HOST "' --plugin bad.so --quiet --state state --keep-output model 2>stderr";
        EXPECT_NE(std::system(("ulimit -v 500000; exec " + command).c_str()), 0);
        expectOneLine({1, readFile(file("stderr"))}, "model: not enough memory; what it wrote is in state/output-of-");
        EXPECT_EQ(outputs(), 2) << "the last import's and this one's";
    }

    setenv("BAD_PLUGIN", "good", 1);
    EXPECT_EQ(runBad("--in-process").exitCode, 0);
    EXPECT_EQ(std::distance(fs::directory_iterator(file("state")), fs::directory_iterator()), 2);
    setenv("BAD_PLUGIN", "throw", 1);
    expectOneLine(runBad("--in-process"), "out of order");
    EXPECT_EQ(run("--plugin bad.so --keep-output --compare model model").exitCode, 2);
}

} // namespace
