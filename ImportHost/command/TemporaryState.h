/**
 * @file TemporaryState.h
 * A place for the state of a model that is compared once.
 */
#pragma once

#include <string>

/** A new folder among the system's temporary ones, removed with all it holds at the end. */
class TemporaryState {
public:
    /** Throws Failure. */
    TemporaryState();
    ~TemporaryState();

    TemporaryState(const TemporaryState&) = delete;
    TemporaryState& operator=(const TemporaryState&) = delete;

    const std::string& path() const { return path_; }

private:
    std::string path_;
};
