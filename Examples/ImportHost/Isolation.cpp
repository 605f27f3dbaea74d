#include "Isolation.h"

#include "Failure.h"

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

/** The child: writes what went wrong to the pipe, and ends without the parent's clean-up. */
[[noreturn]] void work(const std::function<void()>& work, int pipe) {
#if defined(__linux__)
    ::prctl(PR_SET_PDEATHSIG, SIGKILL); // a host that is killed takes its import along
#endif
    std::string failure;
    try {
        work();
    } catch (const std::exception& e) {
        failure = e.what();
    }
    std::fflush(stdout);
    const bool told = failure.empty() || ::write(pipe, failure.data(), failure.size()) >= 0;
    ::_exit(told ? 0 : 1);
}

std::string readToEnd(int pipe) {
    std::string text;
    char block[4096];
    for (;;) {
        const ssize_t size = ::read(pipe, block, sizeof block);
        if (size > 0)
            text.append(block, static_cast<std::size_t>(size));
        else if (size == 0 || errno != EINTR)
            return text;
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
    if (::pipe(ends) != 0)
        throw Failure(file, std::strerror(errno));
    std::fflush(nullptr); // what is buffered would be written twice
    const pid_t child = ::fork();
    if (child == 0) {
        ::close(ends[0]);
        work(function, ends[1]);
    }
    const int reason = errno;
    ::close(ends[1]);
    const std::string failure = child > 0 ? readToEnd(ends[0]) : std::string();
    ::close(ends[0]);
    if (child < 0)
        throw Failure(file, std::strerror(reason));

    const int status = waitFor(child);
    if (!failure.empty())
        throw Failure(failure);
    if (WIFSIGNALED(status))
        throw Failure(file, std::string("the plug-in crashed while importing it: ") + ::strsignal(WTERMSIG(status)));
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0)
        throw Failure(file, "the plug-in ended the process that imports it");
}
