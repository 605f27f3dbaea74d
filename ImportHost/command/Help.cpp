#include "command/Help.h"

#include "command/Options.h"

#include <algorithm>
#include <sstream>

namespace {

constexpr std::size_t pageWidth = 80;
constexpr std::size_t textColumn = 28;

constexpr const char* summary = "imports a model through a plug-in and says what changed since the last import";

struct Line {
    const char* command;
    const char* text;
};

constexpr Line synopsis[] = {{"[OPTION...] MODEL", "compare it with its last import"},
                             {"[OPTION...] --compare OLD NEW", "compare two files"},
                             {"[OPTION...] FOLDER", "import each of its models"},
                             {"--list STATE", "show what is known"}};

constexpr const char* description =
    "Each object of the model is unchanged, moved, reshaped, reclassed (another class), reidentified (the same object "
    "under a new id), added or removed, or only its properties differ. What is known of a model, its state, is "
    "replaced "
    "only by an import that succeeded. Warnings and progress go to standard error.";

constexpr Line exitCodes[] = {{"0", "done"},
                              {"1", "a model, a plug-in or a file failed; one line says which and why"},
                              {"2", "the command line makes no sense"},
                              {"3", "something changed, with --exit-code; a first import changes nothing"}};

constexpr Line examples[] = {{"import-host house.ifc", "remembers the house; again after a revision: what changed"},
                             {"import-host --compare --html changes.html old.ifc new.ifc", "two files, to look at"},
                             {"import-host --quiet --report - house.ifc", "JSON for the next program"}};

/** Text behind an indent, on lines that fit the page. */
std::string wrapped(const std::string& text, std::size_t indent) {
    std::istringstream words(text);
    std::string result;
    std::size_t column = indent;
    for (std::string word; words >> word; column += word.size()) {
        if (result.empty()) {
            result = word;
            continue;
        }
        const bool fits = column + 1 + word.size() <= pageWidth;
        result += fits ? " " : '\n' + std::string(indent, ' ');
        column = fits ? column + 1 : indent;
        result += word;
    }
    return result + '\n';
}

/** A name, and a text in a column of its own. */
std::string entry(const std::string& name, const std::string& text) {
    const std::string head = "  " + name;
    const std::string gap = head.size() + 2 <= textColumn ? std::string(textColumn - head.size(), ' ')
                                                          : '\n' + std::string(textColumn, ' ');
    return head + gap + wrapped(text, textColumn);
}

std::string nameAndValue(const Option& option) {
    return (option.shortName.empty() ? "" : option.shortName + ", ") + option.name +
           (option.value.empty() ? "" : ' ' + option.value);
}

std::string textOf(const Option& option) {
    return option.missing.empty() ? option.text
                                  : option.text + " (Not in this build, which lacks " + option.missing + ".)";
}

/** For the typesetter: no hyphen is a dash, and no line begins with a command. */
std::string roff(const std::string& text) {
    std::string result;
    for (const char c : text) {
        result += c == '-' ? "\\-" : c == '\\' ? "\\e" : std::string(1, c);
    }
    return !result.empty() && (result.front() == '.' || result.front() == '\'') ? "\\&" + result : result;
}

std::string upperCase(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; });
    return text;
}

} // namespace

std::string versionText() {
    return "import-host " IMPORT_HOST_VERSION "\n";
}

std::string usageText() {
    return "usage: import-host [OPTION...] MODEL | OLD NEW | FOLDER, or import-host --list STATE; --help shows all";
}

std::string helpText() {
    std::string text = wrapped(std::string("import-host ") + summary + '.', 0) + "\nUsage:\n";
    for (const Line& line : synopsis) {
        const std::string command = std::string("  import-host ") + line.command;
        text += command + std::string(45 - command.size(), ' ') + line.text + '\n';
    }
    text += '\n' + wrapped(description, 0);
    for (const OptionGroup& group : optionGroups()) {
        text += '\n' + group.title + ":\n";
        for (const Option& option : group.options) {
            text += entry(nameAndValue(option), textOf(option));
        }
    }
    text += "\nA value may follow an equals sign: --report=FILE. Words after -- are models.\n\nExit codes:\n";
    for (const Line& line : exitCodes) {
        text += std::string("  ") + line.command + "  " + line.text + '\n';
    }
    text += "\nExamples:\n";
    for (const Line& line : examples) {
        text += std::string("  ") + line.command + "\n      " + line.text + '\n';
    }
    return text;
}

std::string manualText() {
    std::string text =
        ".TH IMPORT\\-HOST 1 \"\" \"import\\-host " IMPORT_HOST_VERSION "\" \"User Commands\"\n.SH NAME\n";
    text += "import\\-host \\- " + roff(summary) + "\n.SH SYNOPSIS\n";
    for (const Line& line : synopsis) {
        text += ".B import\\-host\n" + roff(line.command) + "\n.br\n";
    }
    text += ".SH DESCRIPTION\n" + roff(description) + '\n';
    text += ".PP\nA value may also follow an equals sign. Words after \\-\\- are models.\n";
    for (const OptionGroup& group : optionGroups()) {
        text += ".SH \"" + upperCase(roff(group.title)) + "\"\n";
        for (const Option& option : group.options) {
            text += ".TP\n.B " + roff(nameAndValue(option)) + '\n' + roff(option.text) + '\n';
        }
    }
    text += ".SH \"EXIT STATUS\"\n";
    for (const Line& line : exitCodes) {
        text += std::string(".TP\n.B ") + line.command + '\n' + roff(line.text) + '\n';
    }
    text += ".SH EXAMPLES\n";
    for (const Line& line : examples) {
        text += ".TP\n.B " + roff(line.command) + '\n' + roff(line.text) + '\n';
    }
    return text;
}
