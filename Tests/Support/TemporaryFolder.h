/**
 * @file TemporaryFolder.h
 * A place for a test's files.
 */
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

/** A new, empty folder that is the current one as long as it lives, and is removed with all its contents. */
class TemporaryFolder {
public:
    TemporaryFolder() : before_(std::filesystem::current_path()) {
        path_ = (std::filesystem::canonical(std::filesystem::temp_directory_path()) / "import-common-XXXXXX").string();
        if (mkdtemp(path_.data()) == nullptr) {
            throw std::runtime_error("no temporary folder");
        }
        std::filesystem::current_path(path_);
    }

    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::current_path(before_, ignored);
        std::filesystem::remove_all(path_, ignored);
    }

    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    /** Its absolute path, free of links. */
    const std::string& path() const { return path_; }

    /** The same; names of temporary folders are plain ASCII. */
    std::wstring widePath() const { return {path_.begin(), path_.end()}; }

private:
    std::filesystem::path before_;
    std::string path_;
};

inline void writeFile(const std::string& path, const std::string& content) {
    std::ofstream(path, std::ios::binary) << content;
}

inline std::string readFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}
