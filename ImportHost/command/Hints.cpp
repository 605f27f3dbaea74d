#include "command/Hints.h"

#include <PluginKit/Text.h>

namespace {

/** A word as a shell reads it. */
std::string quoted(const std::string& word) {
    const char* const plain = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_-+./,:@%";
    if (!word.empty() && word.find_first_not_of(plain) == std::string::npos) {
        return word;
    }
    std::string result = "'";
    for (const char c : word) {
        result += c == '\'' ? std::string("'\\''") : std::string(1, c);
    }
    return result + '\'';
}

} // namespace

std::string firstImportHint(const Arguments& arguments) {
    if (arguments.dryRun) {
        return "No state was kept (--dry-run).\n";
    }
    const std::string plugin = arguments.ownPlugin ? "" : " --plugin " + quoted(arguments.plugin);
    const std::string state = " --state " + quoted(arguments.state);
    const std::string model = quoted(arguments.model);
    const std::string command = "  import-host" + plugin;
    return printable("The state is in " + arguments.state + ". What to type next:") + '\n' +
           printable(command + (arguments.ownState ? "" : state) + ' ' + model) + "  # after it was revised\n" +
           printable(command + state) + " REVISED  # when the revision is another file\n";
}

std::string folderHint() {
    return "Each state is in MODEL.import beside the model: the same command shows what was revised since.\n";
}

std::string relatedStateHint(const Arguments& arguments, const std::string& folder) {
    return printable(arguments.model + " was not imported before, but most of its objects are known from " + folder +
                     ": it is compared with that.") +
           '\n' + (arguments.dryRun ? "" : printable("Its own state is in " + arguments.state + '.') + '\n') + '\n';
}
