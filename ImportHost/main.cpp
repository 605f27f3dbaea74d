/**
 * @file main.cpp
 * import-host: imports a model through a plug-in and says what changed since the last import.
 */
#include "command/Arguments.h"
#include "command/Help.h"
#include "command/ImportCommand.h"
#include "command/Options.h"
#include "command/StandardStreams.h"
#include "output/Listing.h"
#include "output/OutputFiles.h"
#include "state/StateFolder.h"

#include <exception>

namespace {

int run(int count, char** texts) {
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
        showFailure(e);
        return Exit_Failed;
    }
}

} // namespace

int main(int count, char** texts) {
    prepareStandardStreams();
    const int result = run(count, texts);
    if (isOutputClosed() && result == Exit_Done) {
        endByClosedPipe();
    }
    return result;
}
