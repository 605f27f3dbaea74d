#include "session/ImportSession.h"

#include "Failure.h"
#include "session/Isolation.h"
#include "session/OutputStreams.h"
#include "session/Progress.h"
#include "session/StderrCapture.h"
#include "state/Files.h"

#include <ImportCommon/DynamicLibrary.h>
#include <ImportCommon/EnvironmentVariables.h>
#include <ImportCommon/StringOperations.h>
#include <ImportCommon/ThreadOperations.h>

#include <PluginKit/PluginEntryPoints.h>
#include <PluginKit/Text.h>

#include <atomic>
#include <cerrno>
#include <cstring>
#include <memory>

using ImportCommon::DynamicLibrary;
using ImportCommon::EnvironmentVariables;
using ImportCommon::StringOperations;
using ImportCommon::ThreadOperations;

namespace {

constexpr int progressInterval = 5000; ///< between two looks at the progress stream, in microseconds

/** Sets a variable to a path. Throws Failure for a path that a plug-in would not read as it is. */
void setPath(const std::wstring& key, const std::string& path) {
    if (!isWidePortable(path)) {
        throw Failure(printable(path), "the name has characters that can't be handed to a plug-in");
    }
    const std::wstring wide = StringOperations::ConvertFromCurrentLocale(path);
    if (EnvironmentVariables::SetString(key, wide) != 0) {
        throw Failure(path, std::strerror(errno));
    }
    if (EnvironmentVariables::GetString(key) != wide) {
        throw Failure(path, "the name is too long to be handed to a plug-in");
    }
}

/** Four of the twenty values; the streams set the others. */
void prepareEnvironment(const ImportJob& job) {
    if (EnvironmentVariables::SetInt(L"fo_handle_version", job.environmentVersion) != 0) {
        throw Failure(job.model, std::strerror(errno));
    }
    setPath(L"fo_string_filename", job.model);
    setPath(L"fo_string_module", job.plugin);
    setPath(L"fo_string_path", job.outputFolder);
}

std::unique_ptr<DynamicLibrary> loadPlugin(const std::string& fileName) {
    // The reason for a failure goes to the log, which is the standard error stream; here it becomes part of our line.
    StderrCapture log;
    std::unique_ptr<DynamicLibrary> plugin;
    try {
        plugin.reset(DynamicLibrary::loadDynamicLibrary(StringOperations::ConvertFromCurrentLocale(fileName), L""));
    } catch (const std::exception& e) {
        throw Failure(fileName, std::string("the plug-in can't be initialised: ") + e.what());
    }
    const std::string reason = log.finish();
    if (!plugin || !plugin->isValid()) {
        throw Failure(fileName, "not a plug-in: " + (reason.empty() ? "it can't be loaded" : printable(reason)));
    }
    std::fputs(reason.c_str(), stderr);
    return plugin;
}

/** A call of an import function on a thread of its own. */
struct ImportCall {
    ImportModelFunction importModel;
    int result = ImportResult_Failed;
    std::string exception; ///< that was thrown instead of a result
    std::atomic<bool> hasEnded{false};
};

/** Runs on the new thread; @p data is a copy of the address of the call. */
unsigned int runImportCall(void* data, unsigned long) {
    ImportCall& call = **static_cast<ImportCall**>(data);
    try {
        call.result = call.importModel();
    } catch (const std::exception& e) {
        call.exception = std::string("the import function threw an exception: ") + e.what();
    } catch (...) {
        call.exception = "the import function threw an exception";
    }
    call.hasEnded = true;
    return 0;
}

/** Calls the import function, and shows its progress until it returns. */
int callImport(ImportModelFunction importModel, const ImportJob& job, Progress& progress) {
    ImportCall call;
    call.importModel = importModel;
    ImportCall* const address = &call;
    progress.follow(job.outputFolder + "/progress");
    const pthread_t thread = ThreadOperations::createThread(runImportCall, &address, sizeof address, false);
    if (thread == pthread_t{}) {
        throw Failure(job.plugin, "there is no thread for the import function");
    }
    while (!call.hasEnded) {
        progress.update();
        ThreadOperations::usleep(progressInterval);
    }
    ThreadOperations::closeThread(thread);
    progress.update();
    if (!call.exception.empty()) {
        throw Failure(job.plugin, call.exception);
    }
    return call.result;
}

/** The last error that the plug-in wrote to the log stream. */
std::string lastError(const std::string& outputFolder) {
    const std::string log = readFile(outputFolder + "/log");
    std::string error;
    for (const std::string_view line : split(log, '\n')) {
        if (line.compare(0, 6, "error\t") == 0) {
            error = printable(unescaped(line.substr(6)));
        }
    }
    return error;
}

/** The whole session, as a host that loads plug-ins into its own process would run it. */
void runSession(const ImportJob& job, Progress& progress) {
    OutputStreams streams(job.outputFolder);
    prepareEnvironment(job);

    std::unique_ptr<DynamicLibrary> plugin = loadPlugin(job.plugin); // calls "PluginInit"
    const auto importModel = reinterpret_cast<ImportModelFunction>(plugin->getSymbolAddress(importModelName));
    if (importModel == nullptr) {
        throw Failure(job.plugin, std::string("not an import plug-in: it has no function ") + importModelName);
    }
    const int result = callImport(importModel, job, progress);
    plugin.reset(); // calls "PluginDeInit", which may still write to the streams

    streams.close();
    if (result == ImportResult_WrongVersion) {
        throw Failure(job.plugin, "the plug-in does not know version " + std::to_string(job.environmentVersion) +
                                      " of the import environment");
    }
    if (result != ImportResult_Done) {
        const std::string reason = lastError(job.outputFolder);
        if (reason.empty()) {
            throw Failure(job.plugin, "the import function gave " + std::to_string(result) + " and no reason");
        }
        throw Failure(job.model, reason);
    }
}

} // namespace

void runImport(const ImportJob& job) {
    Progress progress(job.showsProgress); // before the session's error stream is captured
    runIsolated(job.model, [&] { runSession(job, progress); });
}
