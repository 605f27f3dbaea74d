/**
 * @file Files.h
 * Whole files, read and replaced.
 */
#pragma once

#include "state/Interruption.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

/** Streams and states are read whole; no larger ones are. */
constexpr std::size_t largestFile = std::size_t(1) << 30;

/** The bytes of a regular file of at most @p limit bytes. Throws Failure; never waits for a pipe. */
std::string readFile(const std::string& path, std::size_t limit = largestFile);

/** Where a name leads: absolute, free of links, whether the file is there or not - also through links to nothing yet. */
std::string placeOf(const std::string& path);

/** Whether two names stand for one file, which need not be there yet. */
bool isSameFile(const std::string& a, const std::string& b);

/** Whether the file of a name lies in a folder, or in one inside it; neither need be there yet. */
bool isInside(const std::string& path, const std::string& folder);

/** Gives the bytes of a file piece by piece, and an empty piece behind the last one. A piece holds until the next call. */
using NextPiece = std::function<std::string_view()>;

/**
 * New content of a file: its bytes are safe on the disk under another name until one rename puts them in the file's
 * place. Whatever fails before leaves the file as it was. A file that is replaced keeps its permissions; where the path
 * is a link, what it leads to is replaced. A device or a pipe that somebody reads is written to.
 *
 * The other name is new and unlike any that a user would give, so nobody else's file is touched, and two processes that
 * write one file leave what one of them wrote.
 */
class PendingFile {
public:
    /** Writes the content; with an empty path there is no file and nothing to do. Throws Failure, and what next throws. */
    PendingFile(const std::string& path, const NextPiece& next);
    PendingFile(const std::string& path, std::string_view content);

    /** Removes what was written and not committed. A signal that ends the process before does so as well. */
    ~PendingFile();

    PendingFile(const PendingFile&) = delete;
    PendingFile& operator=(const PendingFile&) = delete;

    /** Replaces the file. Throws Failure. */
    void commit();

    /** Whether a file name is one that a process leaves behind which is killed while it writes. */
    static bool isTemporary(const std::string& fileName);

private:
    void writeThrough(const NextPiece& next) const;
    void writeTemporary(int file, const NextPiece& next);
    int createTemporary();

    std::string path_;
    std::string target_;
    std::string temporary_; ///< empty when there is nothing to rename
    std::optional<RemovedOnSignal> removal_;
};

/** Makes renames inside a folder last through a crash of the system. */
void syncFolder(const std::string& folder);
