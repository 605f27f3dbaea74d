#include "session/Progress.h"

#include <PluginKit/Text.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <stdexcept>
#include <vector>

namespace {

constexpr int barWidth = 40;

/** What is read of a line, and shown of its text, so that the line of a terminal has room for it; in bytes. */
constexpr std::size_t longestLine = 1000;
constexpr std::size_t longestText = 27;

/** The beginning of a text that is well-formed UTF-8. */
std::string shortened(std::string text) {
    if (text.size() > longestText) {
        std::size_t end = longestText;
        while ((static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) {
            --end;
        }
        text.resize(end);
    }
    return text;
}

/** Back to the line's beginning, and nothing behind it. */
constexpr const char* cleared = "\r\x1B[K";

} // namespace

Progress::Progress(bool visible) {
    const int copy = visible ? ::fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 0) : -1;
    if (copy < 0) {
        return;
    }
    shown_ = ::fdopen(copy, "w");
    if (shown_ == nullptr) {
        ::close(copy);
        return;
    }
    onTerminal_ = ::isatty(copy) != 0;
}

Progress::~Progress() {
    if (shown_ != nullptr) {
        // Also when it was another process that showed something: one that has crashed clears nothing away.
        if (onTerminal_) {
            std::fputs(cleared, shown_);
        }
        std::fclose(shown_);
    }
    if (file_ != nullptr) {
        std::fclose(file_);
    }
}

void Progress::follow(const std::string& progressFile) {
    if (shown_ != nullptr && file_ == nullptr) {
        file_ = std::fopen(progressFile.c_str(), "rb");
    }
}

void Progress::update() {
    if (file_ == nullptr) {
        return;
    }
    std::clearerr(file_);
    for (int c = std::fgetc(file_); c != EOF; c = std::fgetc(file_)) {
        if (c != '\n') {
            if (line_.size() < longestLine) {
                line_ += static_cast<char>(c);
            }
            continue;
        }
        const std::vector<std::string_view> fields = split(line_, '\t');
        try {
            show(toDouble(fields[0]), fields.size() > 1 ? shortened(printable(fields[1])) : "");
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
    if (percent <= percent_ || (!onTerminal_ && percent < 100 && percent / 10 == percent_ / 10 && percent_ >= 0)) {
        return;
    }
    percent_ = percent;
    if (onTerminal_) {
        const int filled = percent * barWidth / 100;
        const std::string bar = std::string(static_cast<std::size_t>(filled), '#') +
                                std::string(static_cast<std::size_t>(barWidth - filled), '.');
        std::fprintf(shown_, "%s[%s] %3d %% %s", cleared, bar.c_str(), percent, what.c_str());
    } else {
        std::fprintf(shown_, "%3d %% %s\n", percent, what.c_str());
    }
    std::fflush(shown_);
}
