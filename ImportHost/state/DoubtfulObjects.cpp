#include "state/DoubtfulObjects.h"

#include <PluginKit/Text.h>

#include <stdexcept>

std::optional<std::size_t> doubtfulObjects(std::string_view infoStream) {
    constexpr std::string_view key = "doubtful\t";
    std::optional<std::size_t> number;
    for (const std::string_view line : split(infoStream, '\n')) {
        if (line.substr(0, key.size()) != key) {
            continue;
        }
        try {
            const long value = toLong(line.substr(key.size()));
            number = value >= 0 ? std::optional<std::size_t>(value) : std::nullopt;
        } catch (const std::runtime_error&) {
            number.reset();
        }
    }
    return number;
}
