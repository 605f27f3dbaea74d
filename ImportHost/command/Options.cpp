#include "command/Options.h"

namespace {

// The build names libraries that are missing.
#ifndef IMPORT_HOST_MISSING_FOR_BCF
#define IMPORT_HOST_MISSING_FOR_BCF ""
#endif
#ifndef IMPORT_HOST_MISSING_FOR_HTML
#define IMPORT_HOST_MISSING_FOR_HTML "its writer"
#endif

OptionGroup inputOptions() {
    return {
        "What is imported",
        {{"--compare", "", "",
          "Compare two files, OLD and NEW, and keep no state. Two files mean this even without it.",
          &Arguments::compare},
         {"--state", "", "DIR", "Folder with what is remembered of the model. Default: MODEL.import beside the model.",
          &Arguments::state},
         {"--plugin", "", "FILE", "Import plug-in. Default: the IFC plug-in that came with the program.",
          &Arguments::plugin},
         {"--pattern", "", "GLOB", "Names of a FOLDER's models, in upper or lower case. Default: *.ifc.",
          &Arguments::pattern},
         {"--environment-version", "", "N", "Version of the import environment to announce. Default: 1.",
          &Arguments::environmentVersion}}};
}

OptionGroup outputOptions() {
    return {"What is written (FILE may be - for standard output; default: none of these)",
            {{"--report", "", "FILE", "JSON for programs.", &Arguments::report},
             {"--picture", "", "FILE", "SVG: a plan of each storey, coloured by what happened.", &Arguments::picture},
             {"--storey", "", "NAME", "Draw this storey alone in the picture. Default: all.", &Arguments::storey},
             {"--html", "", "FILE", "A page with the model in three dimensions, the list of objects and the plans.",
              &Arguments::html, IMPORT_HOST_MISSING_FOR_HTML},
             {"--csv", "", "FILE", "A table for spreadsheets, one line per change.", &Arguments::csv},
             {"--bcf", "", "FILE", "BCF 2.1 for authoring tools: a topic with a viewpoint per object.", &Arguments::bcf,
              IMPORT_HOST_MISSING_FOR_BCF},
             {"--output", "", "DIR",
              "Write report, picture and page there as MODEL.json, MODEL.svg and MODEL.html. A FOLDER's models are "
              "always written so; default for them: beside each model.",
              &Arguments::output}}};
}

OptionGroup behaviourOptions() {
    return {"Behaviour",
            {{"--dry-run", "", "", "Compare and write, but leave the state as it is.", &Arguments::dryRun},
             {"--in-process", "", "", "Run the plug-in in this process, for debuggers and sanitizers.",
              &Arguments::inProcess},
             {"--keep-output", "", "", "Keep what a plug-in wrote before it failed, and say where.",
              &Arguments::keepOutput},
             {"--exit-code", "", "", "Exit with 3 when something changed.", &Arguments::exitCode},
             {"--quiet", "-q", "", "Print nothing but errors.", &Arguments::quiet}}};
}

OptionGroup otherOptions() {
    return {"Instead of an import",
            {{"--list", "", "STATE", "Show the objects that a state folder knows.", &Arguments::list},
             {"--help", "-h", "", "Show this page.", &Arguments::help},
             {"--version", "", "", "Show the version.", &Arguments::version}}};
}

} // namespace

const std::vector<OptionGroup>& optionGroups() {
    static const std::vector<OptionGroup> groups = {inputOptions(), outputOptions(), behaviourOptions(),
                                                    otherOptions()};
    return groups;
}

const Option* findOption(const std::string& name) {
    for (const OptionGroup& group : optionGroups()) {
        for (const Option& option : group.options) {
            if (name == option.name || (!option.shortName.empty() && name == option.shortName)) {
                return &option;
            }
        }
    }
    return nullptr;
}
