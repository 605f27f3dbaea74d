#include "command/ModelFolder.h"

#include "Failure.h"

#include <fnmatch.h>

#include <algorithm>
#include <filesystem>

namespace fs = std::filesystem;

namespace {

/** Whether a file is the report, picture or page of another. */
bool isOutput(const fs::path& file, const std::vector<fs::path>& files) {
    const std::string extension = file.extension().string();
    const bool written = extension == ".json" || extension == ".svg" || extension == ".html";
    return written && std::binary_search(files.begin(), files.end(), fs::path(file).replace_extension());
}

} // namespace

std::vector<std::string> modelsIn(const std::string& folder, const std::string& pattern) {
    std::vector<fs::path> files;
    std::error_code error;
    // By their bytes: a name that is no UTF-8 is still a file's, and said to be one that can't be imported.
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
        std::error_code unknown;
        if (!fs::is_directory(entry->status(unknown))) {
            files.push_back(entry->path());
        }
    }
    if (error) {
        throw Failure(folder, error.message());
    }
    std::sort(files.begin(), files.end());

    std::vector<std::string> models;
    for (const fs::path& file : files) {
        if (::fnmatch(pattern.c_str(), file.filename().c_str(), FNM_CASEFOLD) == 0 && !isOutput(file, files)) {
            models.push_back(file.string());
        }
    }
    if (models.empty()) {
        throw Failure(folder, "no model " + pattern + " in this folder");
    }
    return models;
}
