/**
 * @file TemporaryState.h
 * A place for the state of a model that is compared once.
 */
#pragma once

#include <sys/types.h>

#include <string>

/**
 * A new folder among the system's temporary ones, removed with all it holds at the end - also when a signal ends the
 * process before, of whatever kind: a child process waits for that, and outlives it by as long as the removal takes.
 */
class TemporaryState {
public:
    /** Throws Failure. */
    TemporaryState();
    ~TemporaryState();

    TemporaryState(const TemporaryState&) = delete;
    TemporaryState& operator=(const TemporaryState&) = delete;

    /** Where the state may be created. */
    std::string path() const { return folder_ + "/state"; }

private:
    std::string folder_;
    int lock_ = -1;      ///< of the folder, held as long as it is needed
    pid_t cleaner_ = -1; ///< the process that waits for the lock
};
