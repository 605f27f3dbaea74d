#include "session/Progress.h"

#include <PluginKit/Text.h>
#include <unistd.h>

#include <algorithm>
#include <stdexcept>
#include <vector>

namespace {

constexpr int barWidth = 40;

} // namespace

Progress::Progress(const std::string& progressFile)
    : file_(std::fopen(progressFile.c_str(), "rb")), onTerminal_(::isatty(STDOUT_FILENO) != 0) {
}

Progress::~Progress() {
    if (file_ == nullptr) {
        return;
    }
    std::fclose(file_);
    if (onTerminal_ && shown_ >= 0) {
        std::printf("\n");
    }
    std::fflush(stdout);
}

void Progress::update() {
    if (file_ == nullptr) {
        return;
    }
    std::clearerr(file_);
    for (int c = std::fgetc(file_); c != EOF; c = std::fgetc(file_)) {
        if (c != '\n') {
            line_ += static_cast<char>(c);
            continue;
        }
        const std::vector<std::string_view> fields = split(line_, '\t');
        try {
            show(toDouble(fields[0]), fields.size() > 1 ? printable(fields[1]) : "");
        } catch (const std::runtime_error&) {
            // A line that says nothing is nothing to stop an import for.
        }
        line_.clear();
    }
}

void Progress::show(double part, const std::string& what) {
    if (!(part >= 0.0)) {
        return;
    }
    const int percent = static_cast<int>(std::min(part, 1.0) * 100.0);
    if (percent <= shown_ || (!onTerminal_ && percent < 100 && percent / 10 == shown_ / 10 && shown_ >= 0)) {
        return;
    }
    shown_ = percent;
    if (onTerminal_) {
        const int filled = percent * barWidth / 100;
        const std::string bar = std::string(static_cast<std::size_t>(filled), '#') +
                                std::string(static_cast<std::size_t>(barWidth - filled), '.');
        std::printf("\r[%s] %3d %% %-12s", bar.c_str(), percent, what.c_str());
    } else {
        std::printf("%3d %% %s\n", percent, what.c_str());
    }
    std::fflush(stdout);
}
