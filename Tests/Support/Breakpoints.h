/**
 * @file Breakpoints.h
 * Where code stops in a debugger.
 */
#pragma once

#include <sys/ptrace.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <functional>
#include <string>
#include <vector>

/**
 * Runs actions in a child that this process traces as a debugger does. For each of them the result has a "." for the
 * end of the action, behind a "!" for every stop in it; empty where no process may trace another.
 */
inline std::string stopsOf(const std::vector<std::function<void()>>& actions) {
    const pid_t child = fork();
    if (child == 0) {
        if (ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0) {
            _exit(1);
        }
        raise(SIGSTOP);
        for (const auto& action : actions) {
            action();
            raise(SIGUSR1);
        }
        _exit(0);
    }
    std::string stops;
    int status = 0;
    while (waitpid(child, &status, 0) == child && WIFSTOPPED(status)) {
        if (WSTOPSIG(status) == SIGTRAP || WSTOPSIG(status) == SIGUSR1) {
            stops += WSTOPSIG(status) == SIGTRAP ? '!' : '.';
        } else if (WSTOPSIG(status) != SIGSTOP) {
            stops += "signal " + std::to_string(WSTOPSIG(status)) + " ";
            ptrace(PTRACE_KILL, child, nullptr, nullptr);
        }
        ptrace(PTRACE_CONT, child, nullptr, nullptr);
    }
    return stops;
}
