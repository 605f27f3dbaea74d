/**
 * @file OneTimeWarning.h
 * Reports a misuse once per process.
 */
#pragma once

#include <ImportCommon/KitDebug.h>

#include <atomic>

namespace ImportCommon {

/**
 * The one-time warning of a function: a function-local static of the function that reports. The first report goes to
 * the log, if it has a message, and stops in an attached debugger; later ones are silent, also those of other threads.
 */
class OneTimeWarning {
public:
    template <typename... Arguments>
    void report(const char* format, Arguments... arguments) {
        if (isFirst()) {
            KitLog(KitLogLevel_Warning, format, arguments...);
            KitDebugBreak();
        }
    }

    void report(const char* message) { report("%s", message); }

    void report() {
        if (isFirst()) {
            KitDebugBreak();
        }
    }

    /** Reports unless @p valid, which is the result. */
    bool unless(bool valid) {
        if (!valid) {
            report();
        }
        return valid;
    }

private:
    bool isFirst() { return !reported_.load(std::memory_order_relaxed) && !reported_.exchange(true); }

    std::atomic<bool> reported_{false};
};

} // namespace ImportCommon
