#include "state/Numbers.h"

#include <PluginKit/Text.h>

#include <cmath>
#include <stdexcept>

namespace {

/** The highest power of a length that is kept is the fourth. */
constexpr double largestMeasure = farthest * farthest * farthest * farthest;

double numberUpTo(double limit, std::string_view text, const char* what) {
    const double number = toDouble(text);
    if (!std::isfinite(number)) {
        throw std::runtime_error(std::string(what) + " is not finite");
    }
    if (std::abs(number) > limit) {
        throw std::runtime_error(std::string(what) + " is out of range");
    }
    return number;
}

} // namespace

double toMeasure(std::string_view text) {
    return numberUpTo(largestMeasure, text, "a number");
}

double toCoordinate(std::string_view text) {
    return numberUpTo(farthest, text, "a coordinate");
}

Vector3 toVector(std::string_view text) {
    const std::vector<std::string_view> fields = split(text, ' ');
    Vector3 vector{};
    if (fields.size() != vector.size()) {
        throw std::runtime_error("not a position");
    }
    for (std::size_t i = 0; i < vector.size(); ++i) {
        vector[i] = toCoordinate(fields[i]);
    }
    return vector;
}

void appendVector(std::string& text, const Vector3& vector) {
    for (const double number : vector) {
        appendNumber(text, number);
        text += ' ';
    }
    text.pop_back();
}
