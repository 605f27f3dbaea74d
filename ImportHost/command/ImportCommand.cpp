#include "command/ImportCommand.h"

#include "Failure.h"
#include "command/Hints.h"
#include "command/ModelFolder.h"
#include "command/Options.h"
#include "command/RelatedState.h"
#include "command/TemporaryState.h"
#include "comparison/Comparison.h"
#include "output/Bcf.h"
#include "output/Csv.h"
#include "output/OutputFiles.h"
#include "output/Picture.h"
#include "output/Report.h"
#include "output/Table.h"
#include "output/html/ComparisonPage.h"
#include "session/BoundedText.h"
#include "session/ImportSession.h"
#include "state/DoubtfulObjects.h"
#include "state/ObjectStreams.h"
#include "state/StateFolder.h"

#include <PluginKit/Text.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <optional>

namespace fs = std::filesystem;

namespace {

/** Throws Failure unless @p path is a file that can be read. */
void checkReadable(const std::string& path) {
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    if (fs::is_directory(status)) {
        throw Failure(path, "a folder, not a file");
    }
    if (::access(path.c_str(), R_OK) != 0) {
        throw Failure(path, std::strerror(errno));
    }
    if (!fs::is_regular_file(status)) {
        throw Failure(path, "not a regular file");
    }
}

/** Shows what the plug-in warns of on the log stream. */
void showWarnings(const std::string& outputFolder) {
    const std::string log = readFile(outputFolder + "/log");
    for (const std::string_view line : split(log, '\n')) {
        if (line.compare(0, 8, "warning\t") == 0) {
            std::fprintf(stderr, "warning: %s\n", printable(unescaped(line.substr(8))).c_str());
        }
    }
}

std::vector<ObjectRecord> importStreams(const StateFolder& state, const std::string& model,
                                        const Arguments& arguments) {
    runImport({fs::absolute(model).string(), fs::absolute(arguments.plugin).string(),
               fs::absolute(state.outputFolder()).string(), arguments.environmentVersion, !arguments.quiet,
               arguments.inProcess});
    if (!arguments.quiet) {
        showWarnings(state.outputFolder());
    }
    return readObjects(state.outputFolder(), arguments.plugin);
}

std::vector<ObjectRecord> importInto(StateFolder& state, const std::string& model, const Arguments& arguments) {
    try {
        return importStreams(state, model, arguments);
    } catch (const std::exception& e) {
        if (!arguments.keepOutput) {
            throw;
        }
        state.keepOutput();
        const auto* const failure = dynamic_cast<const Failure*>(&e);
        const std::string reason = failure != nullptr ? reasonOf(e) : model + ": " + reasonOf(e);
        throw Failure(reason + "; what it wrote is in " + state.outputFolder()).with(failure ? failure->details() : "");
    }
}

bool usesStandardOutput(const Arguments& arguments) {
    const std::vector<std::string> outputs = outputsOf(arguments);
    return std::find(outputs.begin(), outputs.end(), "-") != outputs.end();
}

/** What a model is compared with. */
struct Before {
    const std::vector<ObjectRecord>& objects;
    std::optional<ImportedModel> model; ///< nothing on a first import
    std::string streams;                ///< folder of its last import
};

void writeOutputs(const Outcome& outcome, const PageSources& sources, const Arguments& arguments, OutputFiles& files) {
    files.add(arguments.report, [&] { return reportText(outcome); });
    files.add(arguments.csv, [&] { return csvText(outcome.comparison); });
    files.add(arguments.bcf, [&] { return bcfText(outcome); });
    files.add(arguments.picture, [&] { return pictureText(outcome, arguments.storey); });
    files.add(arguments.html, [&] { return comparisonPageText(outcome, sources); });
}

/** Imports a model, compares it with the state, and tells whether something changed. */
bool compareWithState(StateFolder& state, const Arguments& arguments) {
    const std::vector<ObjectRecord> objects = importInto(state, arguments.model, arguments);

    // A revision under another name has no state yet, but perhaps the model that it revises has.
    std::optional<RelatedState> related;
    if (!state.hasObjects() && arguments.ownState && !arguments.folder) {
        related = findRelatedState(arguments.model, objects);
    }
    const Before before = related ? Before{related->state.objects, related->state.model, related->folder + "/output"}
                          : state.hasObjects() ? Before{state.objects(), state.model(), state.lastOutputFolder()}
                                               : Before{state.objects(), std::nullopt, ""};
    const Comparison comparison = compare(before.objects, objects);
    const ImportedModel model = {arguments.model, currentTime()};
    const Outcome outcome = {model, before.model, comparison,
                             doubtfulObjects(readFile(state.outputFolder() + "/info"))};

    // Everything is written before the first file takes its place, and the state comes last: whatever fails, the next
    // import still compares with what this one compared with.
    OutputFiles files;
    writeOutputs(outcome, {objects, before.objects, state.outputFolder(), before.streams}, arguments, files);
    if (!arguments.dryRun) {
        state.prepare(model, objects);
    }
    if (!arguments.quiet && !usesStandardOutput(arguments)) {
        const bool isFirst = !before.model && !arguments.folder;
        print((related ? relatedStateHint(arguments, related->folder) : "") + tableText(outcome) +
              (isFirst ? firstImportHint(arguments) : ""));
    }
    files.commit();
    if (!arguments.dryRun) {
        state.commit();
    }
    return before.model &&
           (comparison.displacement || comparison.count(Status::Unchanged) != comparison.changes.size());
}

bool importFiles(const Arguments& arguments) {
    for (const std::string& file : {arguments.old, arguments.model, arguments.plugin}) {
        if (!file.empty()) {
            checkReadable(file);
        }
    }
    if (arguments.old.empty()) {
        StateFolder state(arguments.state);
        return compareWithState(state, arguments);
    }
    const TemporaryState folder;
    {
        StateFolder state(folder.path());
        state.prepare({arguments.old, currentTime()}, importInto(state, arguments.old, arguments));
        state.commit();
    }
    StateFolder state(folder.path());
    return compareWithState(state, arguments);
}

/** The same; whatever goes wrong names a file. */
bool importAndCompare(const Arguments& arguments) {
    try {
        return importFiles(arguments);
    } catch (const Failure&) {
        throw;
    } catch (const std::exception& e) {
        throw Failure(arguments.model, reasonOf(e));
    }
}

/** Where report, picture and page of a model are written when only their folder is given. */
Arguments withOutputs(Arguments arguments, const std::string& folder) {
    std::string base = fs::path(arguments.model).filename().string();
    if (!folder.empty()) {
        std::error_code error;
        fs::create_directories(folder, error);
        if (error) {
            throw Failure(folder, error.message());
        }
        base = (fs::path(folder) / base).string();
    }
    const auto setUnlessGiven = [&](std::string& target, const char* suffix) {
        if (target.empty()) {
            target = base + suffix;
        }
    };
    setUnlessGiven(arguments.report, ".json");
    setUnlessGiven(arguments.picture, ".svg");
    if (findOption("--html")->missing.empty()) {
        setUnlessGiven(arguments.html, ".html");
    }
    checkTargets(arguments);
    return arguments;
}

/** Imports each model of a folder into a state of its own; one that fails does not keep the others from it. */
int importFolder(Arguments arguments) {
    bool failed = false;
    bool changed = false;
    bool first = false;
    for (const std::string& model : modelsIn(arguments.model, arguments.pattern)) {
        arguments.model = model;
        arguments.state = defaultState(model);
        try {
            if (!arguments.quiet) {
                print("== " + printable(model) + '\n');
            }
            const fs::path folder =
                arguments.output.empty() ? fs::path(model).parent_path() : fs::path(arguments.output);
            first = first || !fs::exists(arguments.state);
            changed = importAndCompare(withOutputs(arguments, folder.string())) || changed;
        } catch (const std::exception& e) {
            showFailure(e);
            failed = true;
        }
    }
    if (first && !arguments.quiet && !arguments.dryRun) {
        print('\n' + folderHint());
    }
    return failed ? Exit_Failed : changed && arguments.exitCode ? Exit_Changed : Exit_Done;
}

} // namespace

void showError(const char* text) {
    std::fprintf(stderr, "import-host: %s\n", printable(text).c_str());
}

void showFailure(const std::exception& reason) {
    try {
        showError(reasonOf(reason).c_str());
        if (const auto* const failure = dynamic_cast<const Failure*>(&reason)) {
            showWords(failure->details());
        }
    } catch (const std::bad_alloc&) {
        std::fputs("import-host: not enough memory\n", stderr);
    }
}

int importCommand(const Arguments& arguments) {
    if (arguments.folder) {
        return importFolder(arguments);
    }
    const bool changed =
        importAndCompare(arguments.output.empty() ? arguments : withOutputs(arguments, arguments.output));
    return changed && arguments.exitCode ? Exit_Changed : Exit_Done;
}
