/**
 * @file Files.h
 * Whole files, read and replaced.
 */
#pragma once

#include <string>

/** A file's bytes. Throws Failure. */
std::string readFile(const std::string& path);

/**
 * New content of a file: its bytes are safe on the disk under another name until one rename puts them in the file's
 * place. Whatever fails before leaves the file as it was.
 */
class PendingFile {
public:
    /** Writes the content; with an empty path there is no file and nothing to do. Throws Failure. */
    PendingFile(const std::string& path, const std::string& content);

    /** Removes what was written and not committed. */
    ~PendingFile();

    PendingFile(const PendingFile&) = delete;
    PendingFile& operator=(const PendingFile&) = delete;

    /** Replaces the file. Throws Failure. */
    void commit();

private:
    std::string path_;
    std::string target_;
    std::string temporary_; ///< empty when there is nothing to rename
};

/** Makes renames inside a folder last through a crash of the system. */
void syncFolder(const std::string& folder);
