/**
 * @file DynamicLibrary.h
 * Shared libraries at run time, with the plug-in entry points "PluginInit" and "PluginDeInit".
 */
#pragma once

#include <ImportCommon/Export.h>

#include <string>

namespace ImportCommon {

/**
 * A loaded library.
 *
 * A library that exports a function "PluginInit" has it called, without arguments, as soon as it is loaded; one that
 * exports "PluginDeInit" has that called just before it is unloaded. Results of both are ignored; neither has to exist.
 * An exception from "PluginInit" passes through, and the library stays loaded, since the exception may need its code.
 * Loading throws `std::bad_alloc` without memory for a path or message.
 *
 * The system looks for a symbol in the library and then in the libraries that it depends on. A library without entry
 * points of its own thus has those of a dependency called, and the executable those of any library that it was linked
 * with. A plug-in defines both, even if they do nothing.
 */
class IMPORT_COMMON_API DynamicLibrary {
public:
    /**
     * Loads the library at @p path (symbols are bound as they are used). The second text is not used. An empty path is
     * left to the system: on Linux it gives the running executable.
     * @param path    path of the library
     * @param second  not used
     * @return the library, owned by the caller, who deletes it to unload; null when it could not be loaded: the first
     *         failure in a process writes the system's reason to the log
     */
    static DynamicLibrary* loadDynamicLibrary(const std::wstring& path, const std::wstring& second);

    /**
     * The running executable as a library; owned by the caller; null on failure.
     * @return the library or null
     */
    static DynamicLibrary* getExecutable();

    /**
     * Takes over a handle of the system's loader (null: not loaded) and calls "PluginInit" if the library has it.
     *
     * REQUIRES: null, or an open handle that nobody else closes; "PluginInit" takes no arguments.
     *
     * @param handle  the handle, closed with this object; may be null
     */
    explicit DynamicLibrary(void* handle);

    /** Calls "PluginDeInit" if the library has it, and unloads. An exception from there ends the process. */
    ~DynamicLibrary();

    /** Not copied: one object unloads the library. */
    DynamicLibrary(const DynamicLibrary&) = delete;
    /** Not copied: one object unloads the library. */
    DynamicLibrary& operator=(const DynamicLibrary&) = delete;

    /**
     * Address of a symbol that the library or one of its dependencies exports; null when there is none or nothing is
     * loaded. Valid while this object lives.
     * @param name  the symbol's name, as the linker knows it
     * @return the address or null
     */
    void* getSymbolAddress(const std::string& name);

    /**
     * Whether a library is loaded.
     * @return whether one is
     */
    bool isValid() const;

private:
    void* handle_;
};

} // namespace ImportCommon
