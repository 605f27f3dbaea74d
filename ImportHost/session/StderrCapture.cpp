#include "session/StderrCapture.h"

#include <unistd.h>

StderrCapture::StderrCapture() : kept_(std::tmpfile()) {
    if (kept_ == nullptr) {
        return;
    }
    std::fflush(stderr);
    original_ = ::dup(STDERR_FILENO);
    if (original_ >= 0) {
        ::dup2(::fileno(kept_), STDERR_FILENO);
    }
}

StderrCapture::~StderrCapture() {
    finish();
}

std::string StderrCapture::finish() {
    if (kept_ == nullptr) {
        return "";
    }
    if (original_ >= 0) {
        std::fflush(stderr);
        ::dup2(original_, STDERR_FILENO);
        ::close(original_);
        original_ = -1;
    }

    std::string text;
    std::rewind(kept_);
    for (int c = std::fgetc(kept_); c != EOF; c = std::fgetc(kept_)) {
        text += static_cast<char>(c);
    }
    std::fclose(kept_);
    kept_ = nullptr;
    return text;
}
