/**
 * @file Arguments.h
 * The command line.
 */
#pragma once

#include <stdexcept>
#include <string>
#include <vector>

/** A command line that says nothing the program can do; the text names the option or argument. */
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

struct Arguments {
    std::string model;   ///< a file, or a folder whose models are all imported
    std::string old;     ///< the file that the model is compared with, instead of a state
    std::string plugin;  ///< by default the IFC plug-in
    std::string state;   ///< by default MODEL.import beside the model
    std::string list;    ///< state whose objects are listed; nothing is imported then
    std::string pattern; ///< of the models in a folder
    std::string report;  ///< for this and the next four: a file, "-", or empty for none
    std::string picture;
    std::string html;
    std::string csv;
    std::string bcf;
    std::string output;         ///< folder for report, picture and page of every model
    std::string storey;         ///< the only one in the picture; empty: all
    int environmentVersion = 1; ///< another one is for testing what a plug-in says to it
    bool compare = false;
    bool dryRun = false;
    bool exitCode = false;
    bool quiet = false;
    bool inProcess = false;  ///< whether the plug-in runs in this process
    bool keepOutput = false; ///< whether the streams of a failed import stay
    bool help = false;
    bool version = false;
    bool folder = false;    ///< whether the model is a folder
    bool ownState = false;  ///< whether the state is the default one
    bool ownPlugin = false; ///< whether the plug-in is the default one
};

/** Reads the command line. Throws UsageError. */
Arguments readArguments(int count, char** texts);

/** Throws UsageError when something that is written would take the place of something else. */
void checkTargets(const Arguments& arguments);

/** The files that are written, "-" for the standard output among them. */
std::vector<std::string> outputsOf(const Arguments& arguments);

/** Where the state of a model is kept unless the command line says otherwise. */
std::string defaultState(const std::string& model);
