/**
 * @file main.cpp
 * import-host: imports a model through a plug-in and says what changed since the last import.
 */
#include "Arguments.h"
#include "Failure.h"
#include "comparison/Comparison.h"
#include "output/Listing.h"
#include "output/Picture.h"
#include "output/Report.h"
#include "output/Table.h"
#include "session/ImportSession.h"
#include "state/Files.h"
#include "state/ObjectStreams.h"
#include "state/StateFolder.h"

#include <ImportCommon/FileOperations.h>
#include <ImportCommon/StringOperations.h>

#include <PluginKit/Text.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <optional>

namespace fs = std::filesystem;

using ImportCommon::FileOperations;
using ImportCommon::StringOperations;

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

void print(const std::string& text) {
    std::fwrite(text.data(), 1, text.size(), stdout);
    if (std::fflush(stdout) != 0) {
        throw Failure("standard output", std::strerror(errno));
    }
}

/** What the plug-in warns of on the log stream. */
std::string warnings(const std::string& outputFolder) {
    const std::string log = readFile(outputFolder + "/log");
    std::string text;
    for (const std::string_view line : split(log, '\n')) {
        if (line.compare(0, 8, "warning\t") == 0) {
            text += "warning: " + printable(unescaped(line.substr(8))) + '\n';
        }
    }
    return text;
}

std::optional<ImportedModel> previousModel(const StateFolder& state) {
    return state.hasObjects() ? std::optional<ImportedModel>(state.model()) : std::nullopt;
}

void importAndCompare(const Arguments& arguments) {
    checkReadable(arguments.model);
    checkReadable(arguments.plugin);
    StateFolder state(arguments.state);

    runImport({fs::absolute(arguments.model).string(), fs::absolute(arguments.plugin).string(),
               fs::absolute(state.outputFolder()).string(), arguments.environmentVersion});
    const std::vector<ObjectRecord> objects = readObjects(state.outputFolder(), arguments.plugin);
    const Comparison comparison = compare(state.objects(), objects);
    const ImportedModel model = {arguments.model, currentTime()};

    // Everything is written before the first file takes its place, and the state comes last: whatever fails, the next
    // import still compares with what this one compared with.
    const std::string title = fs::path(arguments.model).filename().string();
    PendingFile report(arguments.report,
                       arguments.report.empty() ? "" : reportText(model, previousModel(state), comparison));
    PendingFile picture(arguments.picture, arguments.picture.empty() ? "" : pictureText(title, comparison));
    state.prepare(model, objects);
    print(warnings(state.outputFolder()) + tableText(comparison, !state.hasObjects()));
    report.commit();
    picture.commit();
    state.commit();
}

/** The IFC files of a folder, by name. */
std::vector<std::string> modelsIn(const std::string& folder) {
    std::vector<std::string> models;
    for (const std::wstring& file :
         FileOperations::ScanFilesInDirectory(StringOperations::ConvertFromCurrentLocale(folder))) {
        if (FileOperations::MatchExtension(file, L"*.ifc")) {
            models.push_back(StringOperations::ConvertToCurrentLocale(file));
        }
    }
    std::sort(models.begin(), models.end());
    if (models.empty()) {
        throw Failure(folder, "no model *.ifc in this folder");
    }
    return models;
}

int fail(const std::exception& reason) {
    std::fprintf(stderr, "import-host: %s\n", printable(reason.what()).c_str());
    return 1;
}

/** Imports each model of a folder into a state of its own; one that fails does not keep the others from it. */
int importFolder(Arguments arguments) {
    int result = 0;
    for (const std::string& model : modelsIn(arguments.model)) {
        print("== " + printable(model) + '\n');
        arguments.model = model;
        arguments.state = model + ".import";
        try {
            importAndCompare(arguments);
        } catch (const std::exception& e) {
            result = fail(e);
        }
    }
    return result;
}

} // namespace

int main(int count, char** texts) {
    try {
        const Arguments arguments = readArguments(count, texts);
        if (arguments.help) {
            print(std::string(usage) + '\n');
        } else if (!arguments.list.empty()) {
            print(listingText(StateFolder::read(arguments.list).objects));
        } else if (fs::is_directory(arguments.model)) {
            return importFolder(arguments);
        } else {
            importAndCompare(arguments);
        }
        return 0;
    } catch (const UsageError& e) {
        std::fprintf(stderr, "import-host: %s; %s\n", e.what(), usage);
        return 2;
    } catch (const std::exception& e) {
        return fail(e);
    }
}
