/**
 * @file StderrCapture.h
 * Keeps what goes to the standard error stream.
 */
#pragma once

#include <cstdio>
#include <string>

/** While it lives, text for the standard error stream is kept instead of shown; without a temporary file it is shown.
 */
class StderrCapture {
public:
    StderrCapture();
    ~StderrCapture();

    StderrCapture(const StderrCapture&) = delete;
    StderrCapture& operator=(const StderrCapture&) = delete;

    /** Ends the capture. @return what was written since the beginning */
    std::string finish();

private:
    FILE* kept_;
    int original_ = -1;
};
