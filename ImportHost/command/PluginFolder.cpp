#include "command/PluginFolder.h"

#include <filesystem>

#if defined(__APPLE__)
#include <mach-o/dyld.h>

#include <cstdint>
#endif

namespace fs = std::filesystem;

namespace {

fs::path programFolder(const char* calledAs) {
    std::error_code error;
#if defined(__APPLE__)
    char buffer[4096];
    std::uint32_t size = sizeof buffer;
    const fs::path program = _NSGetExecutablePath(buffer, &size) == 0 ? fs::path(buffer) : fs::path();
#else
    const fs::path program = fs::read_symlink("/proc/self/exe", error);
#endif
    return program.empty() ? fs::absolute(calledAs, error).parent_path() : program.parent_path();
}

} // namespace

std::string defaultPlugin(const char* calledAs) {
    const fs::path folder = programFolder(calledAs);
    const fs::path beside = folder / "ifc-plugin.so";
    const fs::path installed = (folder / IMPORT_HOST_PLUGIN_FOLDER / "ifc-plugin.so").lexically_normal();
    std::error_code error;
    return (fs::exists(beside, error) || !fs::exists(installed, error) ? beside : installed).string();
}
