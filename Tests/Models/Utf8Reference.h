/**
 * @file Utf8Reference.h
 * The library's UTF-8 rules once more, written to be read, not to be fast.
 */
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace Utf8Reference {

/** One lead byte with what follows it. */
struct Character {
    unsigned int length; ///< 0 for an invalid lead byte
    unsigned int present;
    wchar_t value;
};

/**
 * The character whose lead byte stands at @p i. In terminated text a zero byte ends a longer one; the bits that are
 * missing are zero. Bytes beyond @p n are not looked at.
 */
inline Character characterAt(const unsigned char* s, std::size_t i, std::size_t n, bool terminated) {
    const unsigned int lead = s[i];
    if (lead <= 0x7F) {
        return {1, 1, static_cast<wchar_t>(lead)};
    }
    if (lead < 0xC0 || lead > 0xEF) {
        return {0, 0, 0};
    }
    Character c{lead < 0xE0 ? 2U : 3U, 1, static_cast<wchar_t>(lead < 0xE0 ? lead - 0xC0 : lead - 0xE0)};
    bool ended = false;
    for (unsigned int k = 1; k < c.length; ++k) {
        ended = ended || n - i <= k || (terminated && s[i + k] == 0);
        c.value = static_cast<wchar_t>(c.value * 64 + (ended ? 0 : s[i + k] % 64));
        c.present += ended ? 0 : 1;
    }
    return c;
}

inline std::size_t count(const unsigned char* s, std::size_t n) {
    std::size_t characters = 0;
    std::size_t i = 0;
    while (i < n && s[i] != 0) {
        const Character c = characterAt(s, i, n, n == SIZE_MAX);
        if (c.length == 0) {
            return 0;
        }
        i += n == SIZE_MAX ? c.present : c.length;
        ++characters;
    }
    return characters;
}

/** @p out receives what is stored, also when the result is 0 for an invalid byte. */
inline std::size_t decode(const unsigned char* s, std::size_t n, std::size_t capacity, std::wstring& out) {
    out.clear();
    std::size_t i = 0;
    while (i < n) {
        const Character c = characterAt(s, i, n, n == SIZE_MAX);
        if (c.length == 0) {
            return 0;
        }
        const bool room = out.size() < capacity;
        if (c.length == 1) {
            if (room) {
                out += c.value;
            }
            if (c.value == 0) {
                break;
            }
            ++i;
        } else if (room && (n == SIZE_MAX || n - i >= c.length)) {
            out += c.value;
            i += c.present;
        } else {
            ++i;
        }
    }
    return out.size();
}

inline std::string encode(const std::wstring& w, std::size_t capacity) {
    std::string out;
    for (const wchar_t wide : w) {
        const auto c = static_cast<std::uint32_t>(wide);
        std::string bytes;
        if (c <= 0x7F) {
            bytes = {static_cast<char>(c)};
        } else if (c <= 0x7FF) {
            bytes = {static_cast<char>(0xC0 + c / 64), static_cast<char>(0x80 + c % 64)};
        } else if (c <= 0xFFFF) {
            bytes = {static_cast<char>(0xE0 + c / 4096), static_cast<char>(0x80 + c / 64 % 64),
                     static_cast<char>(0x80 + c % 64)};
        }
        if (out.size() + bytes.size() < capacity) {
            out += bytes;
        }
        if (c == 0) {
            break;
        }
    }
    return out;
}

} // namespace Utf8Reference
