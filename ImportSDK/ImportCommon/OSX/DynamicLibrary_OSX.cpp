#include "../OneTimeWarning.h"

#include <ImportCommon/DynamicLibrary.h>
#include <ImportCommon/StringOperations.h>

#include <dlfcn.h>

#include <new>

#if defined(__APPLE__)
#include <mach-o/dyld.h>
#endif

namespace ImportCommon {

namespace {

using EntryPoint = void (*)();

void callEntryPoint(DynamicLibrary& library, const char* name) {
    if (void* address = library.getSymbolAddress(name)) {
        reinterpret_cast<EntryPoint>(address)();
    }
}

/** The library of a loader's handle; null for a null handle, after the loader's reason went to the log once. */
DynamicLibrary* fromHandle(void* handle) {
    static OneTimeWarning loadWarning;
    if (handle == nullptr) {
        const char* reason = dlerror();
        // The reason is written as if it were a format without arguments: a doubled percent sign becomes one, and any
        // other stands for itself.
        std::string text = reason != nullptr ? reason : "";
        for (std::size_t i = text.find("%%"); i != std::string::npos; i = text.find("%%", i + 1)) {
            text.erase(i, 1);
        }
        loadWarning.report("%s", text.c_str());
        return nullptr;
    }
    DynamicLibrary* library = new (std::nothrow) DynamicLibrary(handle);
    if (library == nullptr) {
        dlclose(handle);
    }
    return library;
}

} // namespace

DynamicLibrary* DynamicLibrary::loadDynamicLibrary(const std::wstring& path, const std::wstring&) {
    return fromHandle(dlopen(StringOperations::ConvertToCurrentLocale(path).c_str(), RTLD_LAZY));
}

DynamicLibrary* DynamicLibrary::getExecutable() {
#if defined(__APPLE__)
    uint32_t size = 1024;
    std::string path(size, '\0');
    if (_NSGetExecutablePath(path.data(), &size) < 0) {
        path.resize(size);
        if (_NSGetExecutablePath(path.data(), &size) < 0) {
            return nullptr;
        }
    }
    wchar_t wide[4096] = {};
    StringOperations::ConvertFromUTF8(reinterpret_cast<const unsigned char*>(path.c_str()), wide);
    wide[4095] = 0;
    return loadDynamicLibrary(wide, std::wstring());
#else
    return fromHandle(dlopen(nullptr, RTLD_LAZY)); // the loader refuses to open an executable by its path
#endif
}

DynamicLibrary::DynamicLibrary(void* handle) : handle_(handle) {
    callEntryPoint(*this, "PluginInit");
}

DynamicLibrary::~DynamicLibrary() {
    if (handle_ != nullptr) {
        callEntryPoint(*this, "PluginDeInit");
        dlclose(handle_);
    }
}

void* DynamicLibrary::getSymbolAddress(const std::string& name) {
    return handle_ != nullptr ? dlsym(handle_, name.c_str()) : nullptr;
}

bool DynamicLibrary::isValid() const {
    return handle_ != nullptr;
}

} // namespace ImportCommon
