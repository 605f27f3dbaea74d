/**
 * @file ImportExample.h
 * Runs the example host as a program on variants of the sample models.
 */
#pragma once

#include "Support/TemporaryFolder.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <nlohmann/json.hpp>
#include <regex>
#include <set>
#include <string>

namespace fs = std::filesystem;
using nlohmann::json;

inline std::string replaced(std::string text, const std::string& from, const std::string& to) {
    const std::size_t at = text.find(from);
    EXPECT_NE(at, std::string::npos) << "the sample model no longer has " << from;
    return at == std::string::npos ? text : text.replace(at, from.size(), to);
}

/** What the standard error stream shows besides the progress. */
inline std::string withoutProgress(const std::string& error) {
    return std::regex_replace(error, std::regex(" *[0-9]+ % .*\n"), "");
}

struct Result {
    int exitCode;
    std::string error; ///< without progress
};

/** Makes a crash of the programs that this process starts end them as it does without a sanitizer, whatever the signal. */
inline void endAsWithoutSanitizers() {
    for (const char* const options : {"ASAN_OPTIONS", "TSAN_OPTIONS"}) {
        setenv(options,
               "handle_segv=0:handle_sigbus=0:handle_sigill=0:handle_abort=0:handle_sigfpe=0:"
               "allocator_may_return_null=1:detect_leaks=0",
               1);
    }
}

class ImportExampleTest : public testing::Test {
protected:
    ImportExampleTest() { writeFile(file("house.ifc"), house_); }

    fs::path file(const std::string& name) const { return fs::path(folder_.path()) / name; }

    Result run(const std::string& arguments) const {
        const std::string command = "'" IMPORT_HOST "' --plugin '" IFC_PLUGIN "' " + arguments + " >stdout 2>stderr";
        const int status = std::system(command.c_str());
        return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, withoutProgress(readFile(file("stderr")))};
    }

    /** Imports a text as a model into the folder "state" and gives the report. */
    json import(const std::string& model) const {
        writeFile(file("model.ifc"), model);
        const Result result = run("--state state --report report.json --picture plan.svg model.ifc");
        EXPECT_EQ(result.exitCode, 0) << result.error;
        EXPECT_EQ(result.error.find("import-host: "), std::string::npos) << result.error;
        return json::parse(readFile(file("report.json")));
    }

    /** Expects one line on the error stream, and the state that was there before with nothing left beside it. */
    void expectFailure(const std::string& arguments, int exitCode, const std::string& named,
                       const std::string& reason) const {
        SCOPED_TRACE(arguments);
        const std::string before = readFile(file("state/objects.state"));
        const Result result = run(arguments);
        EXPECT_EQ(result.exitCode, exitCode);
        EXPECT_EQ(std::count(result.error.begin(), result.error.end(), '\n'), 1) << result.error;
        EXPECT_EQ(result.error.find("import-host: "), 0u) << result.error;
        EXPECT_NE(result.error.find(named), std::string::npos) << result.error;
        EXPECT_NE(result.error.find(reason), std::string::npos) << result.error;
        EXPECT_EQ(readFile(file("state/objects.state")), before);
        for (const auto& entry : fs::directory_iterator(file("state"))) {
            EXPECT_TRUE(entry.path().filename() == "objects.state" || entry.path().filename() == "output") << entry;
        }
    }

    const TemporaryFolder folder_;
    const std::string house_ = readFile(MODELS_DIR "/house.ifc");
    const std::string revised_ = readFile(MODELS_DIR "/house-revised.ifc");
};

/** Changed properties in any order, as lists of identity, set, name, old and new value. */
using PropertyChanges = std::set<json>;

inline PropertyChanges changedProperties(const json& report) {
    PropertyChanges changes;
    for (const json& object : report["objects"]) {
        for (const json& p : object.value("properties", json::array())) {
            changes.insert(json::array({object["identity"], p["set"], p["name"], p["old"], p["new"]}));
        }
    }
    return changes;
}

/** The house with its site, and everything on it, somewhere else. */
inline std::string movedHouse(const std::string& house, const std::string& offset) {
    const std::string placement =
        "#90001=IFCCARTESIANPOINT((" + offset + "));\n#90002=IFCAXIS2PLACEMENT3D(#90001,$,$);\n";
    return replaced(house, "#51=IFCLOCALPLACEMENT($,#36);", placement + "#51=IFCLOCALPLACEMENT($,#90002);");
}
