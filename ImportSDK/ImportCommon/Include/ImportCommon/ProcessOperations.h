/**
 * @file ProcessOperations.h
 * Processes, which are not available on this platform.
 */
#pragma once

#include <ImportCommon/Export.h>

#include <string>

namespace ImportCommon {

/** Processes. Not available on this platform: every function gives a fixed result. */
class IMPORT_COMMON_API ProcessOperations {
public:
    /**
     * Starts nothing.
     * @param path       not looked at
     * @param arguments  not looked at
     * @param flag       not looked at
     * @return InvalidHandle()
     */
    static int createProcess(const std::wstring& path, const std::wstring& arguments, bool flag);

    /**
     * Does nothing.
     * @param process   not looked at
     * @param exitCode  not looked at
     */
    static void terminateProcess(int process, unsigned int exitCode);

    /**
     * Does nothing.
     * @param process  not looked at
     */
    static void closeProcess(int process);

    /**
     * Always true; @p exitCode is left as it is.
     * @param process   not looked at
     * @param exitCode  left as it is
     * @return true
     */
    static bool hasEnded(int process, unsigned int* exitCode);

    /**
     * The handle of no process: 0.
     * @return 0
     */
    static int InvalidHandle();
};

} // namespace ImportCommon
