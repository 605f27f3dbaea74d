/**
 * @file Progress.h
 * Shows how far a plug-in is.
 */
#pragma once

#include <cstdio>
#include <string>

/**
 * Reads along in the file of a progress stream while the plug-in writes to it, and shows a bar on a terminal, or a line
 * for every tenth of the way elsewhere.
 */
class Progress {
public:
    explicit Progress(const std::string& progressFile);
    ~Progress();

    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /** Shows what has come since the last call. */
    void update();

private:
    void show(double part, const std::string& what);

    FILE* file_;
    bool onTerminal_;
    std::string line_;
    int shown_ = -1;
};
