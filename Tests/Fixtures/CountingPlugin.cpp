// Each entry point adds its letter to an environment variable: what was called, and in which order, can still be read
// after the library is unloaded.
#include <cstdlib>
#include <string>

namespace {

void record(char call) {
    const char* const calls = std::getenv("PLUGIN_CALLS");
    setenv("PLUGIN_CALLS", ((calls ? calls : "") + std::string(1, call)).c_str(), 1);
}

} // namespace

extern "C" {

void PluginInit() {
    record('I');
}

void PluginDeInit() {
    record('D');
}

int CountingPluginAnswer() {
    return 42;
}
}
