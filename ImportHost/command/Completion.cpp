#include "command/Completion.h"

#include "command/Options.h"

namespace {

bool namesFolder(const Option& option) {
    return option.value == "DIR" || option.value == "STATE";
}

std::string firstSentence(const std::string& text) {
    const std::size_t end = text.find(". ");
    return end == std::string::npos ? text.substr(0, text.find_last_not_of('.') + 1) : text.substr(0, end);
}

/** Calls a function with each option. */
template <typename Function>
void forEachOption(const Function& function) {
    for (const OptionGroup& group : optionGroups()) {
        for (const Option& option : group.options) {
            function(option);
        }
    }
}

} // namespace

std::string bashCompletionText() {
    std::string names;
    std::string folders;
    std::string files;
    std::string others;
    forEachOption([&](const Option& option) {
        names += (names.empty() ? "" : " ") + option.name;
        if (option.value.empty()) {
            return;
        }
        std::string& kind = namesFolder(option) ? folders : option.value == "FILE" ? files : others;
        kind += (kind.empty() ? "" : "|") + option.name;
    });
    return "# bash completion for import-host\n"
           "_import_host() {\n"
           "    local word=${COMP_WORDS[COMP_CWORD]} option=${COMP_WORDS[COMP_CWORD - 1]}\n"
           "    # An equals sign is a word of its own.\n"
           "    if [[ $word == '=' ]]; then\n"
           "        word=\n"
           "    elif [[ $option == '=' ]]; then\n"
           "        option=${COMP_WORDS[COMP_CWORD - 2]}\n"
           "    fi\n"
           "    compopt -o filenames 2>/dev/null\n"
           "    case $option in\n"
           "    " +
           folders + ") mapfile -t COMPREPLY < <(compgen -d -- \"$word\") ;;\n    " + files +
           ") mapfile -t COMPREPLY < <(compgen -f -- \"$word\") ;;\n    " + others +
           ") COMPREPLY=() ;;\n"
           "    *)\n"
           "        if [[ $word == -* ]]; then\n"
           "            mapfile -t COMPREPLY < <(compgen -W '" +
           names +
           "' -- \"$word\")\n"
           "        else\n"
           "            mapfile -t COMPREPLY < <(compgen -f -- \"$word\")\n"
           "        fi\n"
           "        ;;\n"
           "    esac\n"
           "}\n"
           "complete -F _import_host import-host\n";
}

std::string zshCompletionText() {
    std::string text = "#compdef import-host\n_arguments \\\n";
    forEachOption([&](const Option& option) {
        std::string description;
        for (const char c : firstSentence(option.text)) {
            description += c == '\'' || c == '[' || c == ']' ? ' ' : c;
        }
        // One that has a short name completes under either, and not again.
        const std::string names = option.shortName + ' ' + option.name;
        const std::string head = option.shortName.empty()
                                     ? "'" + option.name
                                     : "'(" + names + ")'{" + option.shortName + ',' + option.name + "}'";
        text += "    " + head + (option.value.empty() ? "" : "=") + '[' + description + ']';
        if (!option.value.empty()) {
            text += ':' + option.value + ':' +
                    (namesFolder(option)      ? "_files -/"
                     : option.value == "FILE" ? "_files"
                                              : "");
        }
        text += "' \\\n";
    });
    return text + "    '*:model:_files'\n";
}
