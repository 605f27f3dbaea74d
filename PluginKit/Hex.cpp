#include <PluginKit/Hex.h>

namespace PluginKit {

namespace {

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

} // namespace

void appendHex(std::string& text, const char* bytes, std::size_t size) {
    constexpr char digits[] = "0123456789abcdef";
    const std::size_t begin = text.size();
    text.resize(begin + size * 2);
    char* to = &text[begin];
    for (std::size_t i = 0; i < size; ++i) {
        const auto byte = static_cast<unsigned char>(bytes[i]);
        *to++ = digits[byte >> 4];
        *to++ = digits[byte & 15];
    }
}

std::string toHex(const char* bytes, std::size_t size) {
    std::string text;
    appendHex(text, bytes, size);
    return text;
}

std::string fromHex(std::string_view text) {
    std::string bytes;
    if (text.size() % 2 != 0) {
        return bytes;
    }
    bytes.reserve(text.size() / 2);
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

} // namespace PluginKit
