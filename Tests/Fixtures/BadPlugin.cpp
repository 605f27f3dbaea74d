// A plug-in that fails in the way that the environment asks for.

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string_view>

extern "C" int ImportModel() {
    const char* value = std::getenv("BAD_PLUGIN");
    const std::string_view how = value != nullptr ? value : "";
    if (how == "crash") {
        std::abort();
    }
    if (how == "exit") {
        std::_Exit(3);
    }
    if (how == "quit") {
        std::_Exit(0); // as if all had gone well
    }
    if (how == "shout") {
        std::fputs("one\ntwo\n", stderr);
        std::abort();
    }
    if (how == "leave") {
        if (fork() == 0) {
            execlp("sleep", "sleep", "60", nullptr);
        }
        return 77;
    }
    if (how == "throw") {
        throw std::runtime_error("out of order");
    }
    if (how == "fail") {
        return 77;
    }
    return 0; // says that it succeeded, and has written nothing
}
