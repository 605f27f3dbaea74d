#include <PluginKit/Text.h>

#include <charconv>
#include <cstdint>
#include <cstdlib>
#include <stdexcept>

namespace {

constexpr std::string_view replacement = "\xEF\xBF\xBD";

int hexDigit(char c) {
    if (c >= '0' && c <= '9') {
        return c - '0';
    }
    if (c >= 'a' && c <= 'f') {
        return c - 'a' + 10;
    }
    if (c >= 'A' && c <= 'F') {
        return c - 'A' + 10;
    }
    return -1;
}

/** Length of the well-formed character at the front of @p text; 0 when there is none. */
std::size_t characterLength(std::string_view text) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned lead = byte(0);
    const std::size_t length = lead < 0x80   ? 1
                               : lead < 0xC2 ? 0
                               : lead < 0xE0 ? 2
                               : lead < 0xF0 ? 3
                               : lead < 0xF5 ? 4
                                             : 0;
    if (length > text.size()) {
        return 0;
    }
    for (std::size_t i = 1; i < length; ++i) {
        if ((byte(i) & 0xC0) != 0x80) {
            return 0;
        }
    }
    const bool overlong = (lead == 0xE0 && byte(1) < 0xA0) || (lead == 0xF0 && byte(1) < 0x90);
    const bool surrogate = lead == 0xED && byte(1) > 0x9F;
    const bool tooLarge = lead == 0xF4 && byte(1) > 0x8F;
    return overlong || surrogate || tooLarge ? 0 : length;
}

} // namespace

std::vector<std::string_view> split(std::string_view text, char separator) {
    std::vector<std::string_view> fields;
    for (;;) {
        const std::size_t end = text.find(separator);
        fields.push_back(text.substr(0, end));
        if (end == std::string_view::npos) {
            return fields;
        }
        text.remove_prefix(end + 1);
    }
}

std::string escaped(std::string_view text) {
    std::string result;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x20 || byte == 0x7F || byte == '%') {
            result += '%' + toHex(&c, 1);
        } else {
            result += c;
        }
    }
    return result;
}

std::string unescaped(std::string_view text) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const std::string bytes = text[i] == '%' ? fromHex(text.substr(i + 1, 2)) : std::string();
        result += bytes.empty() ? text[i] : bytes[0];
        i += bytes.empty() ? 0 : 2;
    }
    return result;
}

std::string toHex(const char* bytes, std::size_t size) {
    constexpr char digits[] = "0123456789abcdef";
    std::string result;
    for (std::size_t i = 0; i < size; ++i) {
        const auto byte = static_cast<unsigned char>(bytes[i]);
        result += digits[byte >> 4];
        result += digits[byte & 15];
    }
    return result;
}

std::string fromHex(std::string_view text) {
    std::string bytes;
    if (text.size() % 2 != 0) {
        return bytes;
    }
    for (std::size_t i = 0; i < text.size(); i += 2) {
        const int high = hexDigit(text[i]);
        const int low = hexDigit(text[i + 1]);
        if (high < 0 || low < 0) {
            return "";
        }
        bytes += static_cast<char>(high * 16 + low);
    }
    return bytes;
}

std::string checksum(std::string_view text) {
    std::uint64_t sum = 0xcbf29ce484222325u;
    for (const char c : text) {
        sum = (sum ^ static_cast<unsigned char>(c)) * 0x100000001b3u;
    }
    std::string result;
    for (int shift = 56; shift >= 0; shift -= 8) {
        const char byte = static_cast<char>(sum >> shift & 0xFF);
        result += toHex(&byte, 1);
    }
    return result;
}

double toDouble(std::string_view text) {
    const std::string number(text);
    char* end = nullptr;
    const double value = std::strtod(number.c_str(), &end);
    if (number.empty() || end != number.c_str() + number.size()) {
        throw std::runtime_error("'" + printable(text) + "' is not a number");
    }
    return value;
}

long toLong(std::string_view text) {
    long value = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    if (text.empty() || result.ec != std::errc() || result.ptr != text.data() + text.size()) {
        throw std::runtime_error("'" + printable(text) + "' is not a whole number");
    }
    return value;
}

std::string numberText(double value) {
    char buffer[32];
    return std::string(buffer, std::to_chars(buffer, buffer + sizeof buffer, value).ptr);
}

std::string validUtf8(std::string_view text) {
    std::string result;
    while (!text.empty()) {
        const std::size_t length = characterLength(text);
        result += length == 0 ? replacement : text.substr(0, length);
        text.remove_prefix(length == 0 ? 1 : length);
    }
    return result;
}

bool isWidePortable(std::string_view text) {
    while (!text.empty()) {
        const std::size_t length = characterLength(text);
        if (length == 0 || length > 3) {
            return false;
        }
        text.remove_prefix(length);
    }
    return true;
}

std::string printable(std::string_view text) {
    std::string result = validUtf8(text);
    for (char& c : result) {
        if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F) {
            c = '?';
        }
    }
    return result;
}
