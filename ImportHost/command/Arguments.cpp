#include "command/Arguments.h"

#include "command/Options.h"
#include "command/PluginFolder.h"
#include "state/Files.h"

#include <PluginKit/Text.h>

#include <algorithm>
#include <filesystem>
#include <limits>
#include <vector>

namespace fs = std::filesystem;

namespace {

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

/** Goes through the words of the command line, and fills in what they say. */
class WordReader {
public:
    WordReader(int count, char** texts) : words_(texts + (count > 0 ? 1 : 0), texts + count) {}

    void read() {
        while (next_ < words_.size()) {
            const std::string word = words_[next_++];
            if (optionsEnd_ || word.empty() || word[0] != '-') {
                models.push_back(word);
            } else if (word == "--") {
                optionsEnd_ = true;
            } else {
                readOption(word);
            }
        }
    }

    Arguments arguments;
    std::vector<std::string> models;

private:
    void readOption(const std::string& word) {
        const std::size_t equals = word.compare(0, 2, "--") == 0 ? word.find('=') : std::string::npos;
        const std::string name = word.substr(0, equals);
        const Option* const option = findOption(name);
        if (option == nullptr) {
            throw UsageError("unknown option " + printable(name));
        }
        if (!option->missing.empty()) {
            throw UsageError(name + " is not in this build, which lacks " + option->missing);
        }
        if (const auto* const flag = std::get_if<bool Arguments::*>(&option->target)) {
            if (equals != std::string::npos) {
                throw UsageError(name + " takes no value");
            }
            arguments.*(*flag) = true;
            return;
        }
        const std::string value = equals != std::string::npos ? word.substr(equals + 1)
                                  : next_ < words_.size()     ? words_[next_++]
                                                              : "";
        if (value.empty()) {
            throw UsageError(name + " needs a value");
        }
        if (const auto* const number = std::get_if<int Arguments::*>(&option->target)) {
            arguments.*(*number) = wholeNumber(name, value);
        } else {
            arguments.*std::get<std::string Arguments::*>(option->target) = value;
        }
    }

    std::vector<std::string> words_;
    std::size_t next_ = 0;
    bool optionsEnd_ = false;
};

/** Options that say something about one thing must not be given with another. */
void checkCombination(const Arguments& arguments) {
    if (arguments.folder) {
        if (!arguments.state.empty() || !outputsOf(arguments).empty()) {
            throw UsageError("--state, --report, --picture, --html, --csv and --bcf go with one model, not with a "
                             "folder; see --output");
        }
    } else if (!arguments.pattern.empty()) {
        throw UsageError("--pattern goes with a folder");
    }
    if (!arguments.old.empty() && arguments.keepOutput) {
        throw UsageError("--keep-output goes with a state, which two models are compared without");
    }
    if (!arguments.old.empty() && !arguments.state.empty()) {
        throw UsageError("two models are compared without a state");
    }
    if (!arguments.storey.empty() && arguments.picture.empty() && arguments.output.empty() && !arguments.folder) {
        throw UsageError("--storey goes with --picture");
    }
}

void readModels(const std::vector<std::string>& models, Arguments& arguments) {
    for (const std::string& model : models) {
        if (model.empty()) {
            throw UsageError("the name of a model is empty");
        }
    }
    if (arguments.compare && models.size() != 2) {
        throw UsageError("--compare needs two models, OLD and NEW");
    }
    if (models.empty()) {
        throw UsageError("no model");
    }
    if (models.size() > 2) {
        throw UsageError("more than two models");
    }
    arguments.model = models.back();
    if (models.size() == 2) {
        arguments.old = models.front();
    }
    std::error_code error;
    arguments.folder = models.size() == 1 && fs::is_directory(arguments.model, error);
}

} // namespace

std::vector<std::string> outputsOf(const Arguments& arguments) {
    std::vector<std::string> outputs = {arguments.report, arguments.picture, arguments.html, arguments.csv,
                                        arguments.bcf};
    outputs.erase(std::remove(outputs.begin(), outputs.end(), ""), outputs.end());
    return outputs;
}

std::string defaultState(const std::string& model) {
    return model + ".import";
}

void checkTargets(const Arguments& arguments) {
    std::vector<const Option*> written;
    for (const char* const name : {"--report", "--picture", "--html", "--csv", "--bcf"}) {
        const Option* const option = findOption(name);
        const std::string& target = arguments.*std::get<std::string Arguments::*>(option->target);
        if (target.empty()) {
            continue;
        }
        for (const Option* const other : written) {
            if (isSameFile(target, arguments.*std::get<std::string Arguments::*>(other->target))) {
                throw UsageError(other->name + " and " + name + " are the same file");
            }
        }
        written.push_back(option);
        if (target == "-") {
            continue;
        }
        for (const std::string& model : {arguments.model, arguments.old}) {
            if (!model.empty() && isSameFile(target, model)) {
                throw UsageError(printable(target) + " is the model itself");
            }
        }
        if (isSameFile(target, arguments.plugin)) {
            throw UsageError(printable(target) + " is the plug-in");
        }
        if (!arguments.state.empty() && isInside(target, arguments.state)) {
            throw UsageError(printable(target) + " is in the state folder");
        }
    }
    if (!arguments.state.empty() && isSameFile(arguments.state, arguments.model)) {
        throw UsageError(printable(arguments.state) + " is the model itself");
    }
}

Arguments readArguments(int count, char** texts) {
    WordReader reader(count, texts);
    reader.read();
    Arguments& arguments = reader.arguments;
    if (arguments.help || arguments.version) {
        return arguments;
    }
    if (!arguments.list.empty()) {
        if (!reader.models.empty()) {
            throw UsageError("--list goes without a model");
        }
        if (!outputsOf(arguments).empty() || !arguments.output.empty()) {
            throw UsageError("--list shows what is known, and writes no file");
        }
        return arguments;
    }

    readModels(reader.models, arguments);
    checkCombination(arguments);
    if (arguments.plugin.empty()) {
        arguments.plugin = defaultPlugin(texts[0]);
        arguments.ownPlugin = true;
    }
    if (arguments.pattern.empty()) {
        arguments.pattern = "*.ifc";
    }
    if (!arguments.folder && arguments.old.empty() && arguments.state.empty()) {
        arguments.state = defaultState(arguments.model);
        arguments.ownState = true;
    }
    checkTargets(arguments);
    return arguments;
}
