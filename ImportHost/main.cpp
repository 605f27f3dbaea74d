/**
 * @file main.cpp
 * import-host: imports a model through a plug-in and says what changed since the last import.
 */
#include "command/Arguments.h"
#include "command/Help.h"
#include "command/ImportCommand.h"
#include "command/Options.h"
#include "output/Listing.h"
#include "output/OutputFiles.h"
#include "state/StateFolder.h"

#include <exception>

int main(int count, char** texts) {
    try {
        const Arguments arguments = readArguments(count, texts);
        if (arguments.help || arguments.version) {
            print(arguments.help ? helpText() : versionText());
            return Exit_Done;
        }
        if (!arguments.list.empty()) {
            print(listingText(StateFolder::read(arguments.list).objects));
            return Exit_Done;
        }
        return importCommand(arguments);
    } catch (const UsageError& e) {
        showError((std::string(e.what()) + "; " + usageText()).c_str());
        return Exit_Usage;
    } catch (const std::exception& e) {
        showError(e.what());
        return Exit_Failed;
    }
}
