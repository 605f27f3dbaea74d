#include "comparison/Measure.h"

#include <PluginKit/Text.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <stdexcept>

namespace {

constexpr double relativeTolerance = 2e-5;
constexpr double absoluteTolerance = 1e-6;

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

/** The number at the front of a text, which it takes off; nothing when there is none. */
std::optional<double> takeNumber(std::string_view& text) {
    const std::size_t sign = text.substr(0, 1) == "-" ? 1 : 0;
    if (text.size() <= sign || !isDigit(text[sign])) {
        return std::nullopt;
    }
    double number = 0.0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
    if (result.ec != std::errc()) {
        return std::nullopt;
    }
    text.remove_prefix(static_cast<std::size_t>(result.ptr - text.data()));
    return number;
}

} // namespace

std::optional<Measure> Measure::read(std::string_view text) {
    try {
        const std::size_t blank = std::min(text.find(' '), text.size());
        const std::string_view factor = text.substr(std::min(blank + 1, text.size()));
        return Measure{toDouble(text.substr(0, blank)), factor.empty() ? 1.0 : toDouble(factor)};
    } catch (const std::runtime_error&) {
        return std::nullopt;
    }
}

std::optional<long> wholeNumber(std::string_view text) {
    try {
        return toLong(text);
    } catch (const std::runtime_error&) {
        return std::nullopt;
    }
}

bool sameMeasure(double a, double b) {
    return std::abs(a - b) <= relativeTolerance * std::max(std::abs(a), std::abs(b)) + absoluteTolerance;
}

bool areSameButForRounding(std::string_view a, std::string_view b) {
    while (!a.empty() && !b.empty()) {
        const std::optional<double> x = takeNumber(a);
        const std::optional<double> y = takeNumber(b);
        if (x && y ? !sameMeasure(*x, *y) : (x || y)) {
            return false;
        }
        if (!x) {
            if (a.front() != b.front()) {
                return false;
            }
            a.remove_prefix(1);
            b.remove_prefix(1);
        }
    }
    return a.empty() && b.empty();
}

bool areSameNumberLists(std::string_view a, std::string_view b) {
    const auto isList = [](std::string_view text) {
        const bool hasSeparator =
            text.find(", ") != std::string_view::npos || text.find(" .. ") != std::string_view::npos;
        return hasSeparator && text.find_first_not_of("0123456789+-.eE, ") == std::string_view::npos;
    };
    return a == b || (isList(a) && isList(b) && areSameButForRounding(a, b));
}
