#include "command/TemporaryState.h"

#include "Failure.h"

#include <fcntl.h>
#include <stdlib.h>
#include <sys/file.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <filesystem>

namespace fs = std::filesystem;

namespace {

/** Waits until nobody holds the lock of a folder any more, and removes it. */
void removeWhenUnlocked(const std::string& folder) {
    const int lock = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    int result = 0;
    do {
        result = ::flock(lock, LOCK_EX);
    } while (result != 0 && errno == EINTR);
    // An import that is just ending may write a last file behind the back of the removal.
    constexpr int mostAttempts = 100;
    std::error_code error;
    for (int i = 0; result == 0 && i < mostAttempts; ++i) {
        fs::remove_all(folder, error);
        if (!error && !fs::exists(folder, error)) {
            return;
        }
        ::usleep(10'000);
    }
}

/**
 * Starts a process that does so. Signals to the host's process group don't reach it; only a SIGKILL of its own ends it
 * early.
 * @return its id, or a negative number
 */
pid_t startCleaner(const std::string& folder) {
    sigset_t all;
    sigset_t old;
    ::sigfillset(&all);
    ::sigprocmask(SIG_SETMASK, &all, &old); // the new process keeps that
    const pid_t cleaner = ::fork();
    if (cleaner == 0) {
        for (int handle = 0; handle < 1024; ++handle) {
            ::close(handle); // nobody shall wait for the end of an output that this process has nothing to do with
        }
        try {
            removeWhenUnlocked(folder);
        } catch (const std::exception&) {
            // There is nobody left to tell.
        }
        ::_exit(0);
    }
    if (cleaner > 0) {
        ::setpgid(cleaner, cleaner); // from here, so that it is done before anything else happens
    }
    ::sigprocmask(SIG_SETMASK, &old, nullptr);
    return cleaner;
}

} // namespace

TemporaryState::TemporaryState() {
    std::error_code error;
    const fs::path folder = fs::temp_directory_path(error);
    if (error) {
        throw Failure("the folder for temporary files", error.message());
    }
    folder_ = (folder / "import-host-XXXXXX").string();
    if (::mkdtemp(folder_.data()) == nullptr) {
        throw Failure(folder_, std::strerror(errno));
    }
    lock_ = ::open(folder_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (lock_ >= 0 && ::flock(lock_, LOCK_EX) == 0) {
        cleaner_ = startCleaner(folder_);
    }
}

TemporaryState::~TemporaryState() {
    std::error_code ignored;
    fs::remove_all(folder_, ignored);
    if (lock_ >= 0) {
        ::flock(lock_, LOCK_UN); // a process that a plug-in left running may hold the same handle
        ::close(lock_);
    }
    while (cleaner_ > 0 && ::waitpid(cleaner_, nullptr, 0) < 0 && errno == EINTR) {
    }
}
