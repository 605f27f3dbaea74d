/**
 * @file ImportSession.h
 * One call of a plug-in.
 */
#pragma once

#include <string>

struct ImportJob {
    std::string model;
    std::string plugin;
    std::string outputFolder;
    int environmentVersion;
    bool showsProgress; ///< on the standard error stream
    bool isInProcess;   ///< for debuggers and sanitizers
};

/**
 * Prepares the import environment, loads the plug-in, lets it import the model into the streams of the output folder
 * and unloads it, all in a child process unless the job says otherwise. Throws Failure unless the plug-in says that it
 * succeeded and every byte it wrote reached its file.
 */
void runImport(const ImportJob& job);
