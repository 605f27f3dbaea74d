#include <ImportCommon/KitDebug.h>

#include <cstdarg>
#include <cstdio>

#if defined(__APPLE__)
#include <sys/sysctl.h>
#include <sys/types.h>
#include <unistd.h>
#elif defined(__linux__)
#include <fcntl.h>
#include <unistd.h>

#include <cstring>
#endif

#if !defined(__i386__) && !defined(__x86_64__) && !defined(__aarch64__)
#include <csignal>
#endif

namespace ImportCommon {

void KitLog(KitLogLevel_e, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    std::vfprintf(stderr, format, arguments);
    va_end(arguments);
}

long long KitGetTime() {
    return 0;
}

double KitTimeDeltaAsSeconds(long long, long long) {
    return 0.0;
}

bool IsDebuggerPresent() {
#if defined(__APPLE__)
    int name[] = {CTL_KERN, KERN_PROC, KERN_PROC_PID, getpid()};
    kinfo_proc process = {};
    size_t size = sizeof process;
    sysctl(name, 4, &process, &size, nullptr, 0);
    return (process.kp_proc.p_flag & P_TRACED) != 0;
#elif defined(__linux__)
    // The line "TracerPid:" stands within the first few hundred bytes; its number is 0 for a process on its own.
    char status[4096] = {};
    const int file = open("/proc/self/status", O_RDONLY | O_CLOEXEC);
    if (file < 0) {
        return false;
    }
    const ssize_t size = read(file, status, sizeof status - 1);
    close(file);
    const char key[] = "\nTracerPid:\t";
    const char* line = size > 0 ? std::strstr(status, key) : nullptr;
    return line != nullptr && line[sizeof key - 1] != '0';
#else
    return false;
#endif
}

void KitDebugBreak() {
    if (IsDebuggerPresent()) {
#if defined(__i386__) || defined(__x86_64__)
        __asm__ volatile("int3");
#elif defined(__aarch64__)
        __asm__ volatile("brk #0xf000");
#else
        std::raise(SIGTRAP);
#endif
    }
}

} // namespace ImportCommon
