#include "output/OutputFiles.h"

#include "Failure.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace {

bool outputClosed = false;

} // namespace

bool isOutputClosed() {
    return outputClosed;
}

void print(const std::string& text) {
    errno = 0;
    const bool written = std::fwrite(text.data(), 1, text.size(), stdout) == text.size();
    if (std::fflush(stdout) != 0 || !written) {
        outputClosed = outputClosed || errno == EPIPE;
        if (outputClosed) {
            return;
        }
        throw Failure("standard output", std::strerror(errno));
    }
}

void OutputFiles::add(const std::string& path, const std::function<std::string()>& content) {
    if (path.empty()) {
        return;
    }
    if (path == "-") {
        standardOutput_ += content();
    } else {
        files_.emplace_back(path, content());
    }
}

void OutputFiles::commit() {
    print(standardOutput_);
    for (PendingFile& file : files_) {
        file.commit();
    }
}
