#include "state/Interruption.h"

#include <unistd.h>

#include <atomic>
#include <csignal>

namespace {

constexpr int signals[] = {SIGINT, SIGTERM, SIGHUP};

std::atomic<const char*> paths[16];

/** Calls nothing but what a signal may interrupt. */
void removeAndEnd(int signal) {
    for (const std::atomic<const char*>& path : paths) {
        if (path != nullptr) {
            ::unlink(path);
        }
    }
    ::raise(signal); // which is back to what it does by default
}

void handleSignals() {
    static bool areHandled = false;
    if (areHandled) {
        return;
    }
    areHandled = true;
    for (const int signal : signals) {
        struct sigaction old {};
        if (::sigaction(signal, nullptr, &old) == 0 && old.sa_handler == SIG_DFL) {
            struct sigaction action {};
            action.sa_handler = removeAndEnd;
            action.sa_flags = static_cast<int>(SA_RESETHAND | SA_NODEFER);
            ::sigaction(signal, &action, nullptr);
        }
    }
}

} // namespace

static_assert(std::atomic<const char*>::is_always_lock_free, "a signal handler must not wait");

RemovedOnSignal::RemovedOnSignal(std::string path) : path_(std::move(path)) {
    handleSignals();
    for (std::atomic<const char*>& place : paths) {
        const char* none = nullptr;
        if (place.compare_exchange_strong(none, path_.c_str())) {
            return;
        }
    }
}

RemovedOnSignal::~RemovedOnSignal() {
    for (std::atomic<const char*>& place : paths) {
        const char* own = path_.c_str();
        if (place.compare_exchange_strong(own, nullptr)) {
            return;
        }
    }
}
