#include "command/StandardStreams.h"

#include <fcntl.h>
#include <unistd.h>

#include <csignal>

void prepareStandardStreams() {
    int handle = 0;
    do {
        handle = ::open("/dev/null", O_RDWR); // takes the smallest number that is free
    } while (handle >= 0 && handle <= STDERR_FILENO);
    if (handle > STDERR_FILENO) {
        ::close(handle);
    }
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
}

void endByClosedPipe() {
    std::signal(SIGPIPE, SIG_DFL);
    std::raise(SIGPIPE);
    ::_exit(128 + SIGPIPE);
}
