/**
 * @file ImportCommandTest.cpp
 * The command line of the host: forms of calling it, what it prints where, and what it refuses.
 */
#include "Support/ImportExample.h"

#include <map>
#include <sstream>

namespace {

using ImportCommandTest = ImportExampleTest;

std::set<std::string> filesIn(const fs::path& folder) {
    std::set<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder)) {
        names.insert(entry.path().filename().string());
    }
    return names;
}

TEST_F(ImportCommandTest, twoFilesAreComparedAndLeaveNoState) {
    writeFile(file("revised.ifc"), revised_);
    for (const char* const command : {"--compare house.ifc revised.ifc", "house.ifc revised.ifc"}) {
        SCOPED_TRACE(command);
        EXPECT_EQ(run(std::string(command) + " --exit-code --report report.json").exitCode, 3);
        const json report = json::parse(readFile(file("report.json")));
        EXPECT_EQ(report["counts"]["reidentified"], 1);
        EXPECT_NE(readFile(file("stdout")).find("FireRating: F90 -> F120"), std::string::npos);
        EXPECT_EQ(filesIn(folder_.path()),
                  (std::set<std::string>{"house.ifc", "revised.ifc", "report.json", "stdout", "stderr"}));
    }
    EXPECT_EQ(run("--exit-code --compare house.ifc house.ifc").exitCode, 0);
    EXPECT_EQ(run("--compare house.ifc missing.ifc").error, "import-host: missing.ifc: No such file or directory\n");
}

TEST_F(ImportCommandTest, aFirstImportSaysWhatToTypeNext) {
    fs::create_directory(file("two words"));
    writeFile(file("two words/it's.ifc"), house_);
    EXPECT_EQ(run("--exit-code \"two words/it's.ifc\"").exitCode, 0);
    const std::string shown = readFile(file("stdout"));
    const std::string next = "import-host --plugin ";
    const std::size_t at = shown.rfind(next);
    ASSERT_NE(at, std::string::npos) << shown;

    // What it says works as it stands.
    std::string typed = shown.substr(at + next.size(), shown.find('#', at) - at - next.size());
    typed = replaced(typed.substr(typed.find(' ')), "REVISED", "revised.ifc");
    writeFile(file("revised.ifc"), revised_);
    EXPECT_EQ(run("--exit-code" + typed).exitCode, 3);
    EXPECT_NE(readFile(file("stdout")).find("removed            1"), std::string::npos);
    EXPECT_EQ(readFile(file("stdout")).find("type next"), std::string::npos);
}

TEST_F(ImportCommandTest, oneModelAfterTheOtherIsCompared) {
    writeFile(file("revised.ifc"), revised_);
    writeFile(file("revised.toy"), revised_);
    EXPECT_EQ(run("house.ifc").exitCode, 0);
    EXPECT_EQ(run("--exit-code --report report.json revised.ifc").exitCode, 3);
    const std::string shown = readFile(file("stdout"));
    EXPECT_NE(shown.find("known from house.ifc.import: it is compared with that"), std::string::npos) << shown;
    json report = json::parse(readFile(file("report.json")));
    EXPECT_EQ(report["previous"]["model"], "house.ifc");
    EXPECT_EQ(report["counts"]["removed"], 1);

    // Each has its own state from then on.
    for (const char* const model : {"house.ifc", "revised.ifc"}) {
        EXPECT_EQ(run("--exit-code " + std::string(model)).exitCode, 0);
    }
    // Another kind of file, or another house, is no revision.
    writeFile(file("other.ifc"), std::regex_replace(house_, std::regex("'[0-3][0-9A-Za-z_$]{2}"), "'3zz"));
    for (const char* const model : {"revised.toy", "other.ifc"}) {
        EXPECT_EQ(run("--exit-code " + std::string(model)).exitCode, 0);
        EXPECT_NE(readFile(file("stdout")).find("first import"), std::string::npos);
    }
}

TEST_F(ImportCommandTest, eachStreamCarriesItsOwn) {
    import(house_);
    Result result = run("--state state house.ifc");
    EXPECT_EQ(readFile(file("stdout")).find('%'), std::string::npos);
    EXPECT_NE(readFile(file("stderr")).find("100 % "), std::string::npos);

    EXPECT_EQ(run("--state=state --report=- house.ifc").exitCode, 0);
    EXPECT_EQ(json::parse(readFile(file("stdout")))["counts"]["unchanged"], 35);

    EXPECT_EQ(run("-q --state state --exit-code -- house.ifc").exitCode, 0);
    EXPECT_EQ(readFile(file("stdout")) + readFile(file("stderr")), "");
    EXPECT_EQ(run("--quiet missing.ifc").error, "import-host: missing.ifc: No such file or directory\n");
    if (fs::exists("/dev/full")) {
        result = run("--state state --report - house.ifc >/dev/full 2>stderr; exit $? #");
        EXPECT_EQ(result.exitCode, 1);
        EXPECT_EQ(result.error, "import-host: standard output: No space left on device\n");
    }
}

TEST_F(ImportCommandTest, aDryRunLeavesTheStateAsItIs) {
    EXPECT_EQ(run("--dry-run --report report.json house.ifc").exitCode, 0);
    EXPECT_EQ(json::parse(readFile(file("report.json")))["counts"]["added"], 35);
    EXPECT_FALSE(fs::exists(file("house.ifc.import")));

    import(house_);
    writeFile(file("revised.ifc"), revised_);
    const std::string before = readFile(file("state/objects.state"));
    for (int time = 0; time < 2; ++time) {
        EXPECT_EQ(run("--dry-run --exit-code --state state revised.ifc").exitCode, 3);
    }
    EXPECT_EQ(readFile(file("state/objects.state")), before);
    EXPECT_EQ(filesIn(file("state")), (std::set<std::string>{"objects.state", "output"}));
}

TEST_F(ImportCommandTest, anOutputThatCanNotBeWrittenLeavesAllOthersAsTheyWere) {
    const std::map<std::string, std::string> outputs = {{"--report", "{"},
                                                        {"--picture", "<?xml"},
                                                        {"--html", "<!"},
                                                        {"--csv", "\xEF\xBB\xBF\"object\""},
                                                        {"--bcf", "PK"}};
    import(house_);
    std::string all;
    for (const auto& [option, beginning] : outputs) {
        if (run(option + "=x -h=").error.find("not in this build") == std::string::npos) {
            all += ' ' + option + " out" + option;
            writeFile(file("out" + option), "old");
        }
    }
    writeFile(file("revised.ifc"), revised_);
    for (const auto& [option, beginning] : outputs) {
        if (all.find(option) != std::string::npos) {
            expectFailure("--state state" + all + ' ' + option + " nowhere/x revised.ifc", 1,
                          "nowhere/x: ", "No such file");
        }
    }
    for (const auto& [option, beginning] : outputs) {
        EXPECT_TRUE(!fs::exists(file("out" + option)) || readFile(file("out" + option)) == "old") << option;
    }
    EXPECT_EQ(run("--exit-code --state state" + all + " revised.ifc").exitCode, 3);
    for (const auto& [option, beginning] : outputs) {
        EXPECT_TRUE(!fs::exists(file("out" + option)) || readFile(file("out" + option)).find(beginning) == 0) << option;
    }
    std::size_t left = 0;
    for (const std::string& name : filesIn(folder_.path())) {
        left += name.find("out-") == 0 ? 1 : 0;
    }
    EXPECT_EQ(left, static_cast<std::size_t>(std::count(all.begin(), all.end(), ' ')) / 2);
}

TEST_F(ImportCommandTest, modelsOfAFolderAreFoundByPatternAndReportedEach) {
    const auto runWithToys = [](const std::string& arguments) {
        return std::system(("'" IMPORT_HOST "' --plugin '" TOY_PLUGIN "' " + arguments + " >stdout 2>stderr").c_str());
    };
    fs::create_directory(file("models"));
    for (const char* const name : {"a.toy", "b.TOY"}) {
        fs::copy_file(TOY_MODELS_DIR "/garden.toy", file("models") / name);
    }
    writeFile(file("models/notes.txt"), "no model");
    EXPECT_NE(runWithToys("models"), 0);
    EXPECT_NE(readFile(file("stderr")).find("models: no model *.ifc in this folder"), std::string::npos);

    EXPECT_EQ(runWithToys("--pattern '*.toy' models"), 0);
    EXPECT_EQ(json::parse(readFile(file("models/b.TOY.json")))["counts"]["added"], 5);
    EXPECT_NE(readFile(file("models/a.toy.svg")).find("<svg"), std::string::npos);
    EXPECT_TRUE(fs::exists(file("models/a.toy.import/objects.state")));

    // What was written is no model, and goes elsewhere on demand.
    fs::copy_file(TOY_MODELS_DIR "/garden-revised.toy", file("models/a.toy"), fs::copy_options::overwrite_existing);
    const int status = runWithToys("--pattern '?.toy*' --output results/of --exit-code models");
    EXPECT_EQ(WEXITSTATUS(status), 3) << readFile(file("stderr"));
    EXPECT_EQ(json::parse(readFile(file("results/of/a.toy.json")))["counts"]["reidentified"], 1);
    EXPECT_EQ(json::parse(readFile(file("results/of/b.TOY.json")))["counts"]["unchanged"], 5);
    EXPECT_EQ(json::parse(readFile(file("models/a.toy.json")))["counts"]["added"], 5);
}

TEST_F(ImportCommandTest, theHelpNamesEverything) {
    EXPECT_EQ(run("--version").exitCode, 0);
    EXPECT_EQ(readFile(file("stdout")).find("import-host "), 0u);
    EXPECT_EQ(run("--colours --help").exitCode, 2);
    EXPECT_EQ(run("--help missing.ifc").exitCode, 0);
    const std::string help = readFile(file("stdout"));
    std::istringstream lines(help);
    for (std::string line; std::getline(lines, line);) {
        EXPECT_LE(line.size(), 80u) << line;
    }
    // Each option that it names is one, and says of itself what it needs.
    std::size_t found = 0;
    const std::regex option("\n  (?:-., )?(--[a-z-]+)( [A-Z]+)?");
    for (std::sregex_iterator match(help.begin(), help.end(), option), end; match != end; ++match, ++found) {
        const std::string name = (*match)[1];
        const std::string error = run((*match)[2].length() > 0 ? name : name + "=1").error;
        EXPECT_TRUE(error.find("needs a value") != std::string::npos ||
                    error.find("takes no value") != std::string::npos ||
                    error.find("not in this build") != std::string::npos)
            << error;
    }
    EXPECT_GE(found, 15u);

    // So do the manual page and what a shell completes.
    const std::string manual = readFile(HOST_PAGES_DIR "/import-host.1");
    const std::string bash = readFile(HOST_PAGES_DIR "/import-host.bash");
    const std::string zsh = readFile(HOST_PAGES_DIR "/_import-host");
    for (std::sregex_iterator match(help.begin(), help.end(), option), end; match != end; ++match) {
        const std::string name = (*match)[1];
        EXPECT_NE(manual.find(std::regex_replace(name, std::regex("-"), "\\-")), std::string::npos) << name;
        EXPECT_NE(bash.find(name), std::string::npos) << name;
        EXPECT_TRUE(std::regex_search(zsh, std::regex(name + ((*match)[2].length() > 0 ? "=\\[" : "(\\[|\\}'\\[)"))))
            << name;
    }
    EXPECT_NE(zsh.find("'(-q --quiet)'{-q,--quiet}'["), std::string::npos) << zsh;
    const auto completed = [](const std::string& words, int at) {
        const std::string script = ". '" HOST_PAGES_DIR "/import-host.bash'; COMP_WORDS=(import-host " + words +
                                   "); COMP_CWORD=" + std::to_string(at) + "; _import_host; echo \"${COMPREPLY[*]}\"";
        EXPECT_EQ(
            std::system(("bash -c '" + std::regex_replace(script, std::regex("'"), "'\\''") + "' >completed").c_str()),
            0);
        return readFile("completed");
    };
    fs::create_directory(file("house folder"));
    EXPECT_EQ(completed("--re", 1), "--report\n");
    EXPECT_EQ(completed("--state hou", 2), "house folder\n");
    EXPECT_EQ(completed("--report = house.", 3), "house.ifc\n");
    EXPECT_EQ(completed("house.", 1), "house.ifc\n");
}

TEST_F(ImportCommandTest, whatMakesNoSenseIsRefused) {
    import(house_);
    const std::pair<const char*, const char*> calls[] = {
        {"", "no model"},
        {"''", "the name of a model is empty"},
        {"--colour house.ifc", "--colour"},
        {"--report", "--report needs a value"},
        {"--report= house.ifc", "--report needs a value"},
        {"--environment-version one house.ifc", "whole number"},
        {"--report house.ifc house.ifc", "house.ifc is the model itself"},
        {"--report ./model.ifc --compare model.ifc house.ifc", "model.ifc is the model itself"},
        {"--state house.ifc house.ifc", "house.ifc is the model itself"},
        {"--report new.json --picture ./new.json house.ifc", "same file"},
        {"--report - --picture - house.ifc", "same file"},
        {"--state state --report state/objects.state house.ifc", "in the state folder"},
        {"--compare house.ifc", "OLD and NEW"},
        {"--compare house.ifc house.ifc house.ifc", "OLD and NEW"},
        {"house.ifc house.ifc house.ifc", "more than two models"},
        {"--state state house.ifc house.ifc", "without a state"},
        {"--storey Ground house.ifc", "--storey goes with --picture"},
        {"--pattern '*.x' house.ifc", "--pattern goes with a folder"},
        {"--state state .", "not with a folder"},
        {"--list state house.ifc", "without a model"},
        {"--list state --report new.json", "writes no file"},
        {"--output new --report new/house.ifc.svg house.ifc", "same file"},
    };
    for (const auto& [arguments, reason] : calls) {
        expectFailure(arguments, 2, reason, "usage: ");
    }
}

} // namespace
