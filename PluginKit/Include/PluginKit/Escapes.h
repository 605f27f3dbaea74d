/**
 * @file Escapes.h
 * Text of any content as one field of a line.
 */
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace PluginKit {

/** The text with control characters (below U+0020, and U+007F) and percent signs as % and two lower-case digits. */
std::string escaped(std::string_view text);
void appendEscaped(std::string& to, std::string_view text);

/**
 * The text that was escaped; digits of either case are taken, and a percent sign without two digits stands for itself.
 * Compare what this gives, never escaped texts: another plug-in may spell the same text in another way.
 */
std::string unescaped(std::string_view text);

/** The parts between separators; one more than there are separators. */
std::vector<std::string_view> split(std::string_view text, char separator);

/**
 * The same parts one after the other, where they are too many to be held together.
 *
 *     Parts lines(stream, '\n');
 *     for (std::string_view line; lines.next(line);) { ... }
 */
class Parts {
public:
    Parts(std::string_view text, char separator) : rest_(text), separator_(separator) {}

    /** @return false behind the last part */
    bool next(std::string_view& part) {
        if (isAtEnd_) {
            return false;
        }
        const std::size_t end = rest_.find(separator_);
        part = rest_.substr(0, end);
        isAtEnd_ = end == std::string_view::npos;
        rest_.remove_prefix(isAtEnd_ ? rest_.size() : end + 1);
        return true;
    }

private:
    std::string_view rest_;
    char separator_;
    bool isAtEnd_ = false;
};

} // namespace PluginKit
