/**
 * @file WritePages.cpp
 * Writes the manual page and the files of the shells while the program is built.
 */
#include "command/Completion.h"
#include "command/Help.h"

#include <cstdio>
#include <exception>
#include <fstream>
#include <string>

int main(int count, char** texts) {
    try {
        const std::string folder = count == 2 ? texts[1] : ".";
        const std::pair<const char*, std::string> pages[] = {{"/import-host.1", manualText()},
                                                             {"/import-host.bash", bashCompletionText()},
                                                             {"/_import-host", zshCompletionText()}};
        for (const auto& [name, text] : pages) {
            std::ofstream file(folder + name, std::ios::binary);
            file << text;
            if (!file.flush()) {
                std::fprintf(stderr, "%s%s: can't be written\n", folder.c_str(), name);
                return 1;
            }
        }
        return 0;
    } catch (const std::exception& e) {
        std::fprintf(stderr, "%s\n", e.what());
        return 1;
    }
}
