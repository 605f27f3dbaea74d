#include "session/BoundedText.h"

#include <PluginKit/Text.h>

#include <algorithm>
#include <cstdio>

void BoundedText::append(std::string_view text) {
    const std::size_t room = std::min(part - begin_.size(), text.size());
    begin_ += text.substr(0, room);
    text.remove_prefix(room);
    if (text.size() > part) {
        leftOut_ += end_.size() + text.size() - part;
        end_ = text.substr(text.size() - part);
        return;
    }
    end_ += text;
    if (end_.size() > part) {
        leftOut_ += end_.size() - part;
        end_.erase(0, end_.size() - part);
    }
}

std::string BoundedText::text() const {
    if (leftOut_ == 0) {
        return begin_ + end_;
    }
    return begin_ + "\n[" + std::to_string(leftOut_) + " bytes left out]\n" + end_;
}

void showWords(const std::string& text) {
    std::string shown;
    for (const std::string_view line : split(text, '\n')) {
        if (!line.empty()) {
            shown += printable(line) + '\n';
        }
    }
    std::fputs(shown.c_str(), stderr);
}
