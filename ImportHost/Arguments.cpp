#include "Arguments.h"

#include <PluginKit/Text.h>

#include <filesystem>
#include <limits>
#include <vector>

#if defined(__APPLE__)
#include <mach-o/dyld.h>
#endif

namespace fs = std::filesystem;

namespace {

fs::path programFolder(const char* calledAs) {
    std::error_code error;
#if defined(__APPLE__)
    char buffer[4096];
    std::uint32_t size = sizeof buffer;
    const fs::path program = _NSGetExecutablePath(buffer, &size) == 0 ? fs::path(buffer) : fs::path();
#else
    const fs::path program = fs::read_symlink("/proc/self/exe", error);
#endif
    return program.empty() ? fs::absolute(calledAs, error).parent_path() : program.parent_path();
}

int wholeNumber(const std::string& option, const std::string& text) {
    try {
        const long value = toLong(text);
        if (value >= std::numeric_limits<int>::min() && value <= std::numeric_limits<int>::max()) {
            return static_cast<int>(value);
        }
    } catch (const std::runtime_error&) {
        // Said below.
    }
    throw UsageError(option + " needs a whole number");
}

/** Whether a path lies in a folder that exists already. */
bool isInside(const fs::path& path, const fs::path& folder) {
    std::error_code error;
    for (fs::path parent = fs::absolute(path, error); parent != parent.root_path(); parent = parent.parent_path()) {
        if (fs::equivalent(parent, folder, error)) {
            return true;
        }
    }
    return false;
}

/** Nothing that is written may take the place of something else. */
void checkTargets(const Arguments& arguments) {
    std::error_code error;
    for (const std::string& target : {arguments.report, arguments.picture, arguments.state}) {
        if (!target.empty() && fs::equivalent(target, arguments.model, error)) {
            throw UsageError(printable(target) + " is the model itself");
        }
    }
    if (!arguments.report.empty() && fs::absolute(arguments.report, error).lexically_normal() ==
                                         fs::absolute(arguments.picture, error).lexically_normal()) {
        throw UsageError("report and picture are the same file");
    }
    for (const std::string& target : {arguments.report, arguments.picture}) {
        if (!target.empty() && isInside(target, arguments.state)) {
            throw UsageError(printable(target) + " is in the state folder");
        }
    }
}

} // namespace

Arguments readArguments(int count, char** texts) {
    Arguments arguments;
    std::vector<std::string> models;
    bool optionsEnd = false;
    for (int i = 1; i < count; ++i) {
        const std::string text = texts[i];
        if (optionsEnd || text.empty() || text[0] != '-') {
            models.push_back(text);
            continue;
        }
        if (text == "--") {
            optionsEnd = true;
            continue;
        }
        if (text == "--help" || text == "-h") {
            arguments.help = true;
            return arguments;
        }
        std::string* const value = text == "--plugin"    ? &arguments.plugin
                                   : text == "--state"   ? &arguments.state
                                   : text == "--report"  ? &arguments.report
                                   : text == "--picture" ? &arguments.picture
                                   : text == "--list"    ? &arguments.list
                                                         : nullptr;
        if (value == nullptr && text != "--environment-version") {
            throw UsageError("unknown option " + printable(text));
        }
        if (++i == count || texts[i][0] == '\0') {
            throw UsageError(text + " needs a value");
        }
        if (value != nullptr) {
            *value = texts[i];
        } else {
            arguments.environmentVersion = wholeNumber(text, texts[i]);
        }
    }
    if (!arguments.list.empty() && models.empty()) {
        return arguments;
    }
    if (!arguments.list.empty()) {
        throw UsageError("--list goes without a model");
    }
    if (models.size() != 1 || models[0].empty()) {
        throw UsageError(models.size() > 1 ? "more than one model" : "no model");
    }

    arguments.model = models[0];
    if (arguments.plugin.empty()) {
        arguments.plugin = (programFolder(texts[0]) / "ifc-plugin.so").string();
    }
    if (fs::is_directory(arguments.model)) {
        if (!arguments.state.empty() || !arguments.report.empty() || !arguments.picture.empty()) {
            throw UsageError("--state, --report and --picture go with one model, not with a folder");
        }
        return arguments;
    }
    if (arguments.state.empty()) {
        arguments.state = arguments.model + ".import";
    }
    checkTargets(arguments);
    return arguments;
}
