/**
 * @file Arguments.h
 * The command line.
 */
#pragma once

#include <stdexcept>
#include <string>

constexpr const char* usage = "usage: import-host [--plugin FILE] [--state DIR] [--report FILE.json] "
                              "[--picture FILE.svg] [--environment-version N] MODEL.ifc | FOLDER, "
                              "or import-host --list STATE";

class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

struct Arguments {
    std::string model;          ///< a file, or a folder whose IFC files are all imported
    std::string plugin;         ///< by default the IFC plug-in beside the program
    std::string state;          ///< by default MODEL.ifc.import beside the model
    std::string list;           ///< state whose objects are listed; nothing is imported then
    std::string report;         ///< empty: none
    std::string picture;        ///< empty: none
    int environmentVersion = 1; ///< another one is for testing what a plug-in says to it
    bool help = false;
};

/** Reads the command line. Throws UsageError. */
Arguments readArguments(int count, char** texts);
