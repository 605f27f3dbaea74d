#include <PluginKit/Number.h>
#include <PluginKit/Utf8.h>

#include <charconv>
#include <stdexcept>

#if !defined(__cpp_lib_to_chars)
#include <locale>
#include <sstream>
#endif

namespace PluginKit {

namespace {

template <typename Number>
bool readAll(std::string_view text, Number& value) {
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    return result.ec == std::errc() && result.ptr == text.data() + text.size();
}

#if !defined(__cpp_lib_to_chars)
/** For standard libraries that read only whole numbers without a locale. */
bool readAll(std::string_view text, double& value) {
    std::istringstream stream{std::string(text)};
    stream.imbue(std::locale::classic());
    stream >> std::noskipws >> value;
    return stream && stream.peek() == std::istringstream::traits_type::eof();
}
#endif

} // namespace

void appendNumber(std::string& text, double value) {
    char buffer[32];
    text.append(buffer, static_cast<std::size_t>(std::to_chars(buffer, buffer + sizeof buffer, value).ptr - buffer));
}

std::string numberText(double value) {
    std::string text;
    appendNumber(text, value);
    return text;
}

double toDouble(std::string_view text) {
    double value = 0.0;
    if (!readAll(text, value)) {
        throw std::runtime_error("'" + printable(text) + "' is not a number");
    }
    return value;
}

long toLong(std::string_view text) {
    long value = 0;
    if (!readAll(text, value)) {
        throw std::runtime_error("'" + printable(text) + "' is not a whole number");
    }
    return value;
}

} // namespace PluginKit
