/**
 * @file Progress.h
 * Shows how far a plug-in is.
 */
#pragma once

#include <condition_variable>
#include <cstdio>
#include <mutex>
#include <string>
#include <thread>

/**
 * Reads along in the file of a progress stream while the plug-in writes to it, and shows a bar on a terminal, or a line
 * for every tenth of the way elsewhere. The plug-in works in the caller's thread, this object in one of its own.
 */
class Progress {
public:
    explicit Progress(const std::string& progressFile);
    ~Progress();

    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

private:
    void run();
    void readOn();
    void show(double part, const std::string& what);

    FILE* file_;
    bool onTerminal_;
    std::string line_;
    int shown_ = -1;
    bool done_ = false;
    std::mutex mutex_;
    std::condition_variable wake_;
    std::thread thread_;
};
