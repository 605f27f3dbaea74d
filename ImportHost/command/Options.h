/**
 * @file Options.h
 * Every option of the command line, once: what is read, what the help shows, and what a shell completes.
 */
#pragma once

#include "command/Arguments.h"

#include <string>
#include <variant>
#include <vector>

/** Exit codes. */
enum ExitCode { Exit_Done = 0, Exit_Failed = 1, Exit_Usage = 2, Exit_Changed = 3 };

/** Where an option puts what it is given. */
using OptionTarget = std::variant<bool Arguments::*, int Arguments::*, std::string Arguments::*>;

struct Option {
    std::string name;      ///< with its dashes
    std::string shortName; ///< the same in one letter, or empty
    std::string value;     ///< what the help calls its value; empty for a switch
    std::string text;      ///< what it does, and its default
    OptionTarget target;
    std::string missing = {}; ///< libraries without which it was built; empty when it works
};

struct OptionGroup {
    std::string title;
    std::vector<Option> options;
};

/** All options, in the order in which they are shown. */
const std::vector<OptionGroup>& optionGroups();

/** The option of this name or letter; null when there is none. */
const Option* findOption(const std::string& name);
