// A plug-in that fails in the way that the environment asks for.

#include <cstdlib>
#include <stdexcept>
#include <string_view>

extern "C" int ImportModel() {
    const char* value = std::getenv("BAD_PLUGIN");
    const std::string_view how = value != nullptr ? value : "";
    if (how == "crash")
        std::abort();
    if (how == "exit")
        std::_Exit(3);
    if (how == "throw")
        throw std::runtime_error("out of order");
    if (how == "fail")
        return 77;
    return 0; // says that it succeeded, and has written nothing
}
