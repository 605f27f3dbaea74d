/**
 * @file Progress.h
 * Shows how far a plug-in is.
 */
#pragma once

#include <cstdio>
#include <string>

/**
 * Reads along in the file of a progress stream while a plug-in writes to it. On a terminal a line that rewrites itself
 * shows how far it is, and is gone at the end; elsewhere there is a line for every tenth of the way.
 */
class Progress {
public:
    /** Shows progress on the present standard error stream, also when that is captured later; or nowhere. */
    explicit Progress(bool visible);
    ~Progress();

    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /** Begins to read along. */
    void follow(const std::string& progressFile);

    /** Shows what has come since the last call. */
    void update();

private:
    void show(double part, const std::string& what);

    FILE* shown_ = nullptr;
    FILE* file_ = nullptr;
    bool onTerminal_ = false;
    std::string line_;
    int percent_ = -1;
};
