/**
 * @file ImportFilesTest.cpp
 * What the host reads and writes: links, pipes, long and strange names, permissions, several imports with one report.
 */
#include "Support/ImportExample.h"

#include <sys/stat.h>

#include <thread>

namespace {

class ImportFilesTest : public ImportExampleTest {
protected:
    ImportFilesTest() { writeFile(file("garden.toy"), readFile(TOY_MODELS_DIR "/garden.toy")); }

    /** An import that is quick, since its format is. */
    Result importGarden(const std::string& options) const {
        return run("--plugin '" TOY_PLUGIN "' --state state " + options + " garden.toy");
    }

    std::vector<std::string> names() const {
        std::vector<std::string> result;
        for (const auto& entry : fs::directory_iterator(folder_.path())) {
            result.push_back(entry.path().filename().string());
        }
        return result;
    }

    bool isReport(const std::string& name) const { return json::accept(readFile(file(name))); }
};

TEST_F(ImportFilesTest, aReportTakesThePlaceOfItsFileAndOfNothingElse) {
    writeFile(file("report.json.new"), "mine");
    writeFile(file("report.json"), "old");
    ASSERT_EQ(::chmod(file("report.json").c_str(), 0600), 0);
    EXPECT_EQ(importGarden("--report report.json").exitCode, 0);
    EXPECT_TRUE(isReport("report.json"));
    EXPECT_EQ(readFile(file("report.json.new")), "mine");
    EXPECT_EQ(fs::status(file("report.json")).permissions(), fs::perms::owner_read | fs::perms::owner_write);

    fs::create_directory(file("reports"));
    fs::create_symlink("reports/new.json", file("link.json")); // which leads to nothing yet
    EXPECT_EQ(importGarden("--report link.json").exitCode, 0);
    EXPECT_TRUE(fs::is_symlink(file("link.json")));
    EXPECT_TRUE(isReport("reports/new.json"));

    const std::string longest = std::string(250, 'x') + ".json";
    EXPECT_EQ(importGarden("--report " + longest).exitCode, 0);
    EXPECT_TRUE(isReport(longest));

    // A model may be called what a temporary file might be.
    fs::create_hard_link(file("garden.toy"), file("garden.new"));
    EXPECT_EQ(importGarden("--report garden").exitCode, 0);
    EXPECT_EQ(readFile(file("garden.new")), readFile(TOY_MODELS_DIR "/garden.toy"));
    EXPECT_EQ(readFile(file("garden.toy")), readFile(TOY_MODELS_DIR "/garden.toy"));
    for (const std::string& name : names()) {
        EXPECT_NE(name.find(".import-host."), 0u) << name << " is left behind";
    }
}

TEST_F(ImportFilesTest, nothingIsWrittenOverWhatIsInUse) {
    EXPECT_EQ(importGarden("").exitCode, 0);
    fs::copy_file(TOY_PLUGIN, file("plugin.so"));
    fs::create_symlink("state/objects.state", file("state.json"));
    fs::create_symlink("state/later.json", file("later.json"));
    fs::create_symlink("garden.toy", file("model.json"));
    fs::create_symlink("plugin.so", file("plugin.json"));
    fs::create_symlink("one.json", file("other.json"));
    fs::create_directory(file("linked"));
    fs::create_symlink("../garden.toy", file("linked/garden.toy.json"));
    const std::string before = readFile(file("state/objects.state"));
    const std::pair<const char*, const char*> targets[] = {{"--report state.json", "is in the state folder"},
                                                           {"--report later.json", "is in the state folder"},
                                                           {"--report state/x/../y.json", "is in the state folder"},
                                                           {"--report model.json", "is the model itself"},
                                                           {"--report plugin.so", "is the plug-in"},
                                                           {"--report plugin.json", "is the plug-in"},
                                                           {"--output linked", "is the model itself"},
                                                           {"--output state", "is in the state folder"},
                                                           {"--report one.json --picture other.json", "the same file"},
                                                           {"--report one.json --picture ./one.json", "the same file"}};
    for (const auto& [options, reason] : targets) {
        const Result result = run(std::string("--plugin plugin.so --state state ") + options + " garden.toy");
        EXPECT_EQ(result.exitCode, 2) << options;
        EXPECT_NE(result.error.find(reason), std::string::npos) << result.error;
        EXPECT_EQ(readFile(file("state/objects.state")), before);
    }
    EXPECT_EQ(readFile(file("plugin.so")), readFile(TOY_PLUGIN));
    EXPECT_EQ(readFile(file("garden.toy")), readFile(TOY_MODELS_DIR "/garden.toy"));
    EXPECT_FALSE(fs::exists(file("one.json")));
}

TEST_F(ImportFilesTest, pipesAreNotWaitedFor) {
    EXPECT_EQ(importGarden("").exitCode, 0);
    ASSERT_EQ(::mkfifo(file("pipe").c_str(), 0600), 0);
    expectFailure("--plugin '" TOY_PLUGIN "' --state state --report pipe garden.toy", 1, "pipe: ", "nobody reads");
    expectFailure("--plugin '" TOY_PLUGIN "' --state state pipe", 1, "pipe: ", "not a regular file");
    fs::create_directory(file("piped"));
    fs::rename(file("pipe"), file("piped/objects.state"));
    expectFailure("--list piped", 1, "objects.state: ", "not a regular file");
    expectFailure("--plugin '" TOY_PLUGIN "' --state piped garden.toy", 1, "objects.state: ", "not a regular file");

    // The pipe behind this name has no other.
    EXPECT_EQ(
        std::system((std::string("'" IMPORT_HOST "' -q --plugin '" TOY_PLUGIN "' --state '") + file("state").string() +
                     "' --report /dev/stdout '" + file("garden.toy").string() + "' | cat >stdout.json")
                        .c_str()),
        0);
    EXPECT_TRUE(isReport("stdout.json"));

    ASSERT_EQ(std::system("mkfifo read && (cat read >copy.json &)"), 0);
    EXPECT_EQ(importGarden("--report read").exitCode, 0);
    while (!isReport("copy.json")) {
        std::this_thread::yield();
    }
}

TEST_F(ImportFilesTest, eachModelOfAFolderIsImportedOrNamed) {
    fs::create_directory(file("models"));
    for (const char* const name : {"good.toy", "latin-\xE9.toy", "house-\xF0\x9F\x8F\xA0.toy"}) {
        fs::copy(file("garden.toy"), file("models") / name);
    }
    const Result result = run("--plugin '" TOY_PLUGIN "' --pattern '*.toy' models");
    EXPECT_EQ(result.exitCode, 1);
    const std::string reason = ": the name has characters that can't be handed to a plug-in\n";
    EXPECT_NE(result.error.find("models/latin-\xEF\xBF\xBD.toy" + reason), std::string::npos) << result.error;
    EXPECT_NE(result.error.find("models/house-\xF0\x9F\x8F\xA0.toy" + reason), std::string::npos) << result.error;
    EXPECT_TRUE(fs::exists(file("models/good.toy.import/objects.state")));
}

TEST_F(ImportFilesTest, importsWithOneReportLeaveTheWholeOfOne) {
    EXPECT_EQ(importGarden("").exitCode, 0);
    std::thread imports[2];
    int exitCodes[2] = {-1, -1};
    for (int round = 0; round < 5; ++round) {
        for (int i = 0; i < 2; ++i) {
            imports[i] = std::thread([&, i] {
                const std::string state = "state-" + std::to_string(i);
                exitCodes[i] = std::system(("'" IMPORT_HOST "' --plugin '" TOY_PLUGIN "' --quiet --state " + state +
                                            " --report report.json garden.toy")
                                               .c_str());
            });
        }
        for (int i = 0; i < 2; ++i) {
            imports[i].join();
            EXPECT_EQ(exitCodes[i], 0);
        }
        EXPECT_TRUE(isReport("report.json"));
    }
}

} // namespace
