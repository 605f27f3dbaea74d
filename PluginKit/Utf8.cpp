#include <PluginKit/Utf8.h>

#include <algorithm>

namespace PluginKit {

namespace {

constexpr char32_t replacement = 0xFFFD;

bool isSurrogate(char32_t c) {
    return c >= 0xD800 && c <= 0xDFFF;
}

/** A character and how many bytes it takes; 0 bytes for what is not well-formed. */
struct Character {
    char32_t code;
    std::size_t length;
};

Character firstOf(std::string_view text) {
    constexpr Character none = {replacement, 0};
    constexpr char32_t smallest[] = {0, 0, 0x80, 0x800, 0x10000}; // of each length; below it the form is overlong
    const char32_t lead = static_cast<unsigned char>(text[0]);
    if (lead < 0x80) {
        return {lead, 1};
    }
    const std::size_t length = lead < 0xC2 ? 0 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : lead < 0xF5 ? 4 : 0;
    if (length == 0 || length > text.size()) {
        return none;
    }
    char32_t code = lead & (0x7Fu >> length);
    for (std::size_t i = 1; i < length; ++i) {
        const char32_t byte = static_cast<unsigned char>(text[i]);
        if ((byte & 0xC0) != 0x80) {
            return none;
        }
        code = code << 6 | (byte & 0x3F);
    }
    return code < smallest[length] || code > 0x10FFFF || isSurrogate(code) ? none : Character{code, length};
}

/** Hands out one character after the other, U+FFFD for each byte that belongs to none. */
template <typename Function>
void forEachCharacter(std::string_view text, Function&& function) {
    while (!text.empty()) {
        const Character character = firstOf(text);
        function(character.code);
        text.remove_prefix(std::max<std::size_t>(character.length, 1));
    }
}

void append(std::string& text, char32_t c) {
    const auto byte = [&](char32_t value) { text += static_cast<char>(value); };
    if (c < 0x80) {
        byte(c);
    } else if (c < 0x800) {
        byte(0xC0 | c >> 6);
        byte(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        byte(0xE0 | c >> 12);
        byte(0x80 | (c >> 6 & 0x3F));
        byte(0x80 | (c & 0x3F));
    } else {
        byte(0xF0 | c >> 18);
        byte(0x80 | (c >> 12 & 0x3F));
        byte(0x80 | (c >> 6 & 0x3F));
        byte(0x80 | (c & 0x3F));
    }
}

/** Whether a terminal may act on a character instead of showing it. */
bool isControl(char32_t c) {
    return c < 0x20 || (c >= 0x7F && c < 0xA0) || (c >= 0x2028 && c <= 0x202E) || (c >= 0x2066 && c <= 0x2069);
}

} // namespace

std::string validUtf8(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    forEachCharacter(text, [&](char32_t c) { append(result, c); });
    return result;
}

bool isWidePortable(std::string_view text) {
    while (!text.empty()) {
        const std::size_t length = firstOf(text).length;
        if (length == 0 || length > 3) {
            return false;
        }
        text.remove_prefix(length);
    }
    return true;
}

std::string printable(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    forEachCharacter(text, [&](char32_t c) { append(result, isControl(c) ? U'?' : c); });
    return result;
}

std::wstring toWide(std::string_view utf8) {
    std::wstring result;
    result.reserve(utf8.size());
    forEachCharacter(utf8, [&](char32_t c) { result += static_cast<wchar_t>(c); });
    return result;
}

std::string toUtf8(std::wstring_view text) {
    std::string result;
    result.reserve(text.size());
    for (const wchar_t element : text) {
        const auto c = static_cast<char32_t>(element);
        append(result, c > 0x10FFFF || isSurrogate(c) ? replacement : c);
    }
    return result;
}

std::string toUtf8(const wchar_t* text, std::size_t size) {
    return toUtf8(std::wstring_view(text, static_cast<std::size_t>(std::find(text, text + size, L'\0') - text)));
}

} // namespace PluginKit
