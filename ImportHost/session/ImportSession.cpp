#include "session/ImportSession.h"

#include "Failure.h"
#include "session/Isolation.h"
#include "session/OutputStreams.h"
#include "session/Progress.h"
#include "state/Files.h"

#include <ImportCommon/DynamicLibrary.h>
#include <ImportCommon/EnvironmentVariables.h>
#include <ImportCommon/ForeignObjectEnv.h>
#include <ImportCommon/StringOperations.h>
#include <ImportCommon/ThreadOperations.h>

#include <PluginKit/PluginEntryPoints.h>
#include <PluginKit/Text.h>
#include <dlfcn.h>

#include <atomic>
#include <cerrno>
#include <cstring>
#include <memory>
#include <utility>

#if defined(__GLIBCXX__)
#include <cxxabi.h>
#endif

using ImportCommon::DynamicLibrary;
using ImportCommon::EnvironmentVariables;
using ImportCommon::StringOperations;
using ImportCommon::ThreadOperations;

namespace {

constexpr int progressInterval = 5000; ///< between two looks at the progress stream, in microseconds

/** A path as a plug-in reads it. Throws Failure when that would be another one. */
std::wstring widePath(const std::string& path) {
    if (!isWidePortable(path)) {
        throw Failure(path, "the name has characters that can't be handed to a plug-in");
    }
    return StringOperations::ConvertFromCurrentLocale(path);
}

/** The import environment, and nothing of it when the session is over. */
class Environment {
public:
    explicit Environment(const ForeignObjectEnv_t& env) {
        if (!foreignobject_env_serialize(env)) {
            throw Failure(StringOperations::ConvertToCurrentLocale(env.fileName), std::strerror(errno));
        }
        const std::pair<const wchar_t*, const std::wstring*> texts[] = {
            {L"fo_string_filename", &env.fileName}, {L"fo_string_module", &env.module}, {L"fo_string_path", &env.path}};
        for (const auto& [key, text] : texts) {
            if (EnvironmentVariables::GetString(key) != *text) {
                throw Failure(StringOperations::ConvertToCurrentLocale(*text),
                              "the name is too long to be handed to a plug-in");
            }
        }
    }

    /** Nobody may find a handle in it that is no longer open. */
    ~Environment() { foreignobject_env_serialize(ForeignObjectEnv_t()); }

    Environment(const Environment&) = delete;
    Environment& operator=(const Environment&) = delete;
};

/** Why the loader does not load a library: the library that asked it has only logged that. */
std::string loaderReason(const std::string& fileName) {
    void* const handle = ::dlopen(fileName.c_str(), RTLD_LAZY | RTLD_LOCAL);
    const char* const reason = handle == nullptr ? ::dlerror() : nullptr;
    if (handle != nullptr) {
        ::dlclose(handle);
    }
    return reason == nullptr ? "it can't be loaded" : printable(reason);
}

std::unique_ptr<DynamicLibrary> loadPlugin(const std::string& fileName) {
    std::unique_ptr<DynamicLibrary> plugin;
    try {
        plugin.reset(DynamicLibrary::loadDynamicLibrary(StringOperations::ConvertFromCurrentLocale(fileName), L""));
    } catch (const std::exception& e) {
        throw Failure(fileName, "the plug-in can't be initialised: " + reasonOf(e));
    } catch (...) {
        throw Failure(fileName, "the plug-in can't be initialised");
    }
    if (!plugin || !plugin->isValid()) {
        throw LoadFailure(fileName, "not a plug-in: " + loaderReason(fileName));
    }
    return plugin;
}

/** A call of an import function on a thread of its own. */
struct ImportCall {
    ImportModelFunction importModel;
    int result = ImportResult_Failed;
    std::string exception; ///< that was thrown instead of a result
    std::atomic<bool> hasEnded{false};
};

/**
 * Runs on the new thread; @p data is a copy of the address of the call. What unwinds an ending thread is no object, so the
 * handler that lets it pass refers to nothing.
 */
__attribute__((no_sanitize("null"))) unsigned int runImportCall(void* data, unsigned long) {
    ImportCall& call = **static_cast<ImportCall**>(data);
    // Also when the function ends its thread, which then runs nothing but destructors.
    struct End {
        ImportCall& call;
        ~End() { call.hasEnded = true; }
    } const end = {call};
    call.exception = "the import function ended its thread";
    try {
        call.result = call.importModel();
        call.exception.clear();
    } catch (const std::exception& e) {
        call.exception = "the import function threw an exception: " + reasonOf(e);
#if defined(__GLIBCXX__)
    } catch (const abi::__forced_unwind&) {
        throw; // the thread is ending
#endif
    } catch (...) {
        call.exception = "the import function threw an exception";
    }
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
    ForeignObjectEnv_t env;
    env.version = job.environmentVersion;
    env.fileName = widePath(job.model);
    env.module = widePath(job.plugin);
    env.path = widePath(job.outputFolder);
    OutputStreams streams(job.outputFolder);
    streams.handOver(env);
    const Environment environment(env);

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
    if (job.isInProcess) {
        runSession(job, progress);
    } else {
        runIsolated(job.model, [&] { runSession(job, progress); });
    }
}
