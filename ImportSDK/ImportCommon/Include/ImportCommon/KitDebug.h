/**
 * @file KitDebug.h
 * The diagnostic log, the debugger test, and timing calls that do nothing on this platform.
 */
#pragma once

#include <ImportCommon/Export.h>

namespace ImportCommon {

/** Severity of a log message. The library itself reports every warning and error as KitLogLevel_Warning. */
enum KitLogLevel_e : int {
    KitLogLevel_Trace = 0,  ///< steps of an operation
    KitLogLevel_Debug = 1,  ///< for the developer
    KitLogLevel_Info = 2,   ///< for the user
    KitLogLevel_Notice = 3, ///< what the user should know
    KitLogLevel_Warning = 4 ///< a fault
};

/**
 * Formats a message as `printf` does and writes it to the standard error stream as it stands.
 *
 * Nothing is added, not even a newline, and @p level is not looked at: every message is written. That is meant; who
 * wants lines writes the newline.
 *
 * REQUIRES: @p format is not null, and the arguments are those that it asks for.
 *
 * @param level   the severity
 * @param format  as for `printf`
 */
#if defined(__GNUC__)
__attribute__((format(printf, 2, 3)))
#endif
IMPORT_COMMON_API void
KitLog(KitLogLevel_e level, const char* format, ...);

/**
 * Time in ticks; always 0 on this platform.
 * @return 0
 */
IMPORT_COMMON_API long long KitGetTime();

/**
 * Seconds between two times of KitGetTime; always 0.0 on this platform.
 * @param start  a time of KitGetTime
 * @param end    a later one
 * @return 0.0
 */
IMPORT_COMMON_API double KitTimeDeltaAsSeconds(long long start, long long end);

/**
 * Whether a debugger traces this process; false when the system can't tell. Any tracer counts, also one that only logs
 * system calls or allocations.
 * @return whether one does
 */
IMPORT_COMMON_API bool IsDebuggerPresent();

/**
 * Stops at a breakpoint when IsDebuggerPresent says so, and does nothing otherwise. A tracer that doesn't expect
 * breakpoints ends the process with a signal.
 *
 * The library calls it the first time that
 * - a getter of CExternalVersion, ExternalGUID or IFC2X3PropertySingleValue is called for a kind or type that it
 *   doesn't serve (each getter has a first time of its own);
 * - createPropertySingleValueInteger, createPropertySingleValueInteger64 or createPropertySingleValueReal is given a
 *   type that it doesn't make;
 * - fromByteStream of a version finds too few bytes for volume and centroid, too few for distances, or another number
 *   than those of a box;
 * - a function writes its warning to the log: StringOperations for invalid UTF-8 (and with it whatever decodes text),
 *   ForeignObjectSolid without memory, DynamicLibrary for a library that can't be loaded.
 */
IMPORT_COMMON_API void KitDebugBreak();

} // namespace ImportCommon
