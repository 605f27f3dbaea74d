#include "session/Isolation.h"

#include "Failure.h"
#include "session/StderrCapture.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <exception>

#if defined(__linux__)
#include <sys/prctl.h>

#include <csignal>
#endif

namespace {

constexpr char succeeded = '+'; // what the child tells last; or '-', and what went wrong

/** The child: tells how it went, and ends without the parent's clean-up. */
[[noreturn]] void runChild(const std::function<void()>& function, int pipeEnd, [[maybe_unused]] pid_t parent) {
#if defined(__linux__)
    ::prctl(PR_SET_PDEATHSIG, SIGKILL); // a host that is killed takes its import along
    if (::getppid() != parent) {
        ::_exit(1); // it was killed before that
    }
#endif
    std::string outcome(1, succeeded);
    try {
        function();
    } catch (const std::exception& e) {
        outcome = std::string("-") + e.what();
    }
    std::fflush(stdout);
    const bool told = ::write(pipeEnd, outcome.data(), outcome.size()) == static_cast<ssize_t>(outcome.size());
    ::_exit(told ? 0 : 1);
}

std::string readToEnd(int pipeEnd) {
    std::string text;
    char block[4096];
    for (;;) {
        const ssize_t size = ::read(pipeEnd, block, sizeof block);
        if (size > 0) {
            text.append(block, static_cast<std::size_t>(size));
        } else if (size == 0 || errno != EINTR) {
            return text;
        }
    }
}

int waitFor(pid_t child) {
    int status = 0;
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    return status;
}

} // namespace

void runIsolated(const std::string& file, const std::function<void()>& function) {
    int ends[2];
    if (::pipe(ends) != 0) {
        throw Failure(file, std::strerror(errno));
    }
    for (const int end : ends) {
        ::fcntl(end, F_SETFD, FD_CLOEXEC); // a program that the plug-in leaves running is not waited for
    }
    std::fflush(nullptr); // what is buffered would be written twice
    const pid_t parent = ::getpid();
    StderrCapture words; // of the child
    const pid_t child = ::fork();
    if (child == 0) {
        ::close(ends[0]);
        runChild(function, ends[1], parent);
    }
    const int reason = errno;
    ::close(ends[1]);
    const std::string outcome = child > 0 ? readToEnd(ends[0]) : std::string();
    ::close(ends[0]);
    const int status = child > 0 ? waitFor(child) : 0;
    const std::string said = words.finish();
    if (child < 0) {
        throw Failure(file, std::strerror(reason));
    }

    // A crash is one line, whatever the system's libraries have to say of it.
    if (WIFSIGNALED(status)) {
        throw Failure(file, std::string("the plug-in crashed while importing it: ") + ::strsignal(WTERMSIG(status)));
    }
    std::fputs(said.c_str(), stderr);
    if (outcome.empty()) {
        throw Failure(file, "the plug-in ended the process that imports it");
    }
    if (outcome.front() != succeeded) {
        throw Failure(outcome.substr(1));
    }
}
