#include "command/ModelFolder.h"

#include "Failure.h"

#include <ImportCommon/FileOperations.h>
#include <ImportCommon/StringOperations.h>

#include <fnmatch.h>

#include <algorithm>
#include <filesystem>

namespace fs = std::filesystem;

using ImportCommon::FileOperations;
using ImportCommon::StringOperations;

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
    for (const std::wstring& file :
         FileOperations::ScanFilesInDirectory(StringOperations::ConvertFromCurrentLocale(folder))) {
        files.emplace_back(StringOperations::ConvertToCurrentLocale(file));
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
