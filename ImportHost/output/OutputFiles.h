/**
 * @file OutputFiles.h
 * Everything that is written of a comparison.
 */
#pragma once

#include "state/Files.h"

#include <deque>
#include <functional>
#include <string>

/**
 * Writes a text to the standard output. Throws Failure, but not when that is a pipe that nobody reads: an import does not
 * depend on who looks at it.
 */
void print(const std::string& text);

/** Whether something was printed that nobody reads. */
bool isOutputClosed();

/**
 * Files that take their places together: all are written before the first replaces what was there, so that one which
 * can't be written leaves every other as it was.
 */
class OutputFiles {
public:
    /** Writes a file beside its place. An empty path is no file, "-" the standard output. Throws Failure. */
    void add(const std::string& path, const std::function<std::string()>& content);

    /** Puts the files in their places. Throws Failure. */
    void commit();

private:
    std::deque<PendingFile> files_;
    std::string standardOutput_;
};
