#include "session/Isolation.h"

#include "session/BoundedText.h"

#include <PluginKit/Text.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <exception>

#if defined(__linux__)
#include <sys/prctl.h>
#endif

namespace {

/** How what the child tells last begins. */
enum Outcome : char {
    Outcome_Succeeded = '+',
    Outcome_Failed = '-',    ///< what went wrong follows
    Outcome_NotLoaded = '!', ///< the same, and what the child said repeats it
};

/** How long the end of a child may go unnoticed that has left a process behind, in milliseconds. */
constexpr int childInterval = 20;

/** A pipe that no program inherits. */
class Pipe {
public:
    explicit Pipe(const std::string& file) {
        if (::pipe(ends_) != 0) {
            throw Failure(file, std::strerror(errno));
        }
        for (const int end : ends_) {
            ::fcntl(end, F_SETFD, FD_CLOEXEC);
        }
        ::fcntl(ends_[0], F_SETFL, O_NONBLOCK);
    }

    ~Pipe() {
        closeEnd(0);
        closeEnd(1);
    }

    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;

    int in() const { return ends_[1]; }
    int out() const { return ends_[0]; }

    void closeEnd(int end) {
        if (ends_[end] >= 0) {
            ::close(ends_[end]);
            ends_[end] = -1;
        }
    }

    /** Takes what there is, and closes the reading end when no more can come. */
    void drainTo(BoundedText& text) {
        char block[65536];
        while (ends_[0] >= 0) {
            const ssize_t size = ::read(ends_[0], block, sizeof block);
            if (size > 0) {
                text.append(std::string_view(block, static_cast<std::size_t>(size)));
            } else if (size == 0 || (errno != EINTR && errno != EAGAIN)) {
                closeEnd(0);
            } else if (errno == EAGAIN) {
                return;
            }
        }
    }

private:
    int ends_[2] = {-1, -1};
};

/** Folders that this process holds open, such as the lock of a state, are not for whatever a plug-in leaves behind. */
void closeFolders() {
    for (int handle = STDERR_FILENO + 1; handle < 1024; ++handle) {
        struct stat status {};
        if (::fstat(handle, &status) == 0 && S_ISDIR(status.st_mode)) {
            ::close(handle);
        }
    }
}

/** The child: tells how it went, and ends without the parent's clean-up. */
[[noreturn]] void runChild(const std::function<void()>& function, const Pipe& outcome, const Pipe& words,
                           [[maybe_unused]] pid_t parent) {
#if defined(__linux__)
    ::prctl(PR_SET_PDEATHSIG, SIGKILL); // a host that is killed takes its import along
    if (::getppid() != parent) {
        ::_exit(1); // it was killed before that
    }
#endif
    closeFolders();
    ::dup2(words.in(), STDOUT_FILENO); // a report on the standard output is not mixed with a plug-in's words
    ::dup2(words.in(), STDERR_FILENO);
    std::string text(1, Outcome_Succeeded);
    try {
        function();
    } catch (const LoadFailure& e) {
        text = std::string(1, Outcome_NotLoaded) + e.what();
    } catch (const std::exception& e) {
        text = std::string(1, Outcome_Failed) + reasonOf(e);
    }
    std::fflush(stdout);
    const bool told = ::write(outcome.in(), text.data(), text.size()) == static_cast<ssize_t>(text.size());
    ::_exit(told ? 0 : 1);
}

/** Reads along until the child has ended. @return its status */
int follow(pid_t child, Pipe& outcome, Pipe& words, BoundedText& outcomeText, BoundedText& wordsText) {
    outcome.closeEnd(1);
    words.closeEnd(1);
    int status = 0;
    for (bool hasEnded = false; !hasEnded;) {
        pollfd handles[] = {{outcome.out(), POLLIN, 0}, {words.out(), POLLIN, 0}};
        const bool open = outcome.out() >= 0 || words.out() >= 0;
        if (open) {
            ::poll(handles, 2, childInterval);
        }
        // First whether it has ended, then what it left to read. Its pipes may stay open: other processes have them.
        const pid_t ended = ::waitpid(child, &status, open ? WNOHANG : 0);
        hasEnded = ended == child || (ended < 0 && errno != EINTR);
        outcome.drainTo(outcomeText);
        words.drainTo(wordsText);
    }
    return status;
}

} // namespace

void runIsolated(const std::string& file, const std::function<void()>& function) {
    Pipe outcome(file);
    Pipe words(file);
    std::fflush(nullptr); // what is buffered would be written twice
    const pid_t parent = ::getpid();
    const pid_t child = ::fork();
    if (child < 0) {
        throw Failure(file, std::strerror(errno));
    }
    if (child == 0) {
        runChild(function, outcome, words, parent);
    }
    BoundedText outcomeText;
    BoundedText wordsText;
    const int status = follow(child, outcome, words, outcomeText, wordsText);
    const std::string result = outcomeText.text();
    const std::string said = wordsText.text();

    if (WIFSIGNALED(status)) {
        const std::string signal = ::strsignal(WTERMSIG(status));
        throw Failure(file, "the plug-in crashed while importing it: " + signal).with(said);
    }
    if (result.empty()) {
        throw Failure(file, "the plug-in ended the process that imports it").with(said);
    }
    if (result.front() != Outcome_Succeeded) {
        throw Failure(result.substr(1)).with(result.front() == Outcome_NotLoaded ? "" : said);
    }
    showWords(said);
}
