#include "OneTimeWarning.h"
#include "Utf8Blocks.h"

#include <ImportCommon/StringOperations.h>

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace ImportCommon {

namespace {

using namespace Utf8Blocks;

/** Number of bytes of the sequence that a lead byte opens; 0 for a byte that opens none. */
std::size_t sequenceLength(unsigned char lead) {
    if (lead < 0x80) {
        return 1;
    }
    if ((lead & 0xE0) == 0xC0) {
        return 2;
    }
    return (lead & 0xF0) == 0xE0 ? 3 : 0;
}

/**
 * Number of bytes of a longer sequence at @p s that may be read. In terminated text a zero byte ends the text wherever
 * it stands, so that nothing behind it is touched.
 */
std::size_t readableLength(const unsigned char* s, std::size_t length, bool terminated) {
    if (terminated) {
        for (std::size_t i = 1; i < length; ++i) {
            if (s[i] == 0) {
                return i;
            }
        }
    }
    return length;
}

/** Whether eight bytes are plain ASCII without a zero. */
bool isPlain(const unsigned char* s) {
    constexpr std::uint64_t ones = 0x0101010101010101;
    const std::uint64_t block = wordAt(s);
    return (((block - ones) | block) & ones << 7) == 0;
}

/** Number of bytes before the first zero. */
std::size_t lengthOf(const unsigned char* s, std::size_t n) {
    if (n == 0) {
        return 0; // there need not even be a text
    }
    const char* text = reinterpret_cast<const char*>(s);
    return n == SIZE_MAX ? std::strlen(text) : strnlen(text, n);
}

constexpr std::size_t retryAfter = 64; // elements of mixed text to go through before another look for blocks

enum class Outcome { finished, unfinished, invalid };

/**
 * Decodes sequence by sequence: the whole text, or up to @p last at least. It stays a function so that short texts of one
 * kind don't pay for its registers.
 */
[[gnu::noinline]] Outcome decodeEach(const unsigned char* s, std::size_t n, std::size_t last, Progress& at,
                                     wchar_t* out, std::size_t capacity) {
    std::size_t i = at.read;
    std::size_t stored = at.stored;
    while (i < std::min(n, last)) {
        const std::size_t length = sequenceLength(s[i]);
        if (length == 0) {
            return Outcome::invalid;
        }
        if (length == 1) {
            const unsigned char byte = s[i++];
            if (stored < capacity) {
                out[stored++] = static_cast<wchar_t>(byte);
            }
            if (byte == 0) {
                at.stored = stored;
                return Outcome::finished;
            }
        } else if (stored < capacity && length <= n - i) {
            const std::size_t readable = readableLength(s + i, length, n == SIZE_MAX);
            out[stored++] = decodeSequence(s + i, length, readable);
            i += readable;
        } else {
            ++i; // only the lead byte: what follows is met as a lead byte and ends the conversion
        }
    }
    at = {i, stored};
    return i < n ? Outcome::unfinished : Outcome::finished;
}

/** How much of a text a message may show without reading behind it. */
int shownLength(std::size_t n) {
    return static_cast<int>(std::min<std::size_t>(n, INT_MAX));
}

} // namespace

std::size_t StringOperations::StringLengthUTF8(const unsigned char* s, std::size_t n) {
    static OneTimeWarning once;
    std::size_t count = 0;
    const std::size_t end = lengthOf(s, n);
    for (std::size_t i = 0; i < n && s[i] != 0; ++count) {
        if (i < end && end - i > blockSize && isPlain(s + i)) {
            i += blockSize;
            count += blockSize - 1;
            taken(Way::CountPlain, blockSize);
            continue;
        }
        const std::size_t length = sequenceLength(s[i]);
        if (length == 0) {
            once.report("StringOperations::StringLengthUTF8 error for string %.*s", shownLength(n), s);
            return 0;
        }
        i += readableLength(s + i, length, n == SIZE_MAX);
    }
    return count;
}

std::size_t StringOperations::ConvertFromUTF8(const unsigned char* s, std::size_t n, wchar_t* out,
                                              std::size_t capacity) {
    std::size_t stored = decodeTriples(s, n, out, capacity); // before the end of the text is looked for
    std::size_t i = 3 * stored;
    if (i < n && s[i] == 0) {
        if (stored < capacity) {
            out[stored++] = 0;
        }
        return stored;
    }
    const std::size_t zero = i + lengthOf(s + i, n == SIZE_MAX ? n : n - i);
    const std::size_t end = zero < n ? zero + 1 : n;
    for (;;) {
        if (i < end) {
            const std::size_t from = i;
            decodeFront(s, end, i, out, capacity, stored);
            if (i >= end) {
                return stored; // a terminator was a character, not the continuation of one
            }
            if (i - from >= blockSize) {
                continue;
            }
        }
        Progress at = {i, stored};
        const std::size_t last = i < end && end - i > retryAfter ? i + retryAfter : n;
        const Outcome outcome = decodeEach(s, n, last, at, out, capacity);
        if (outcome == Outcome::finished) {
            return at.stored;
        }
        if (outcome == Outcome::invalid) {
            static OneTimeWarning once;
            once.report("StringOperations::ConvertFromUTF8 error for string %.*s", shownLength(n), s);
            return 0;
        }
        i = at.read;
        stored = at.stored;
    }
}

std::wstring StringOperations::ConvertFromUTF8(const unsigned char* s, std::size_t n) {
    if (s == nullptr || n == 0 || s[0] == 0) {
        return std::wstring();
    }
    static OneTimeWarning once;
    const std::size_t length = StringLengthUTF8(s, n);
    if (length == 0) {
        once.report(" StringOperations::ConvertFromUTF8, Invalid Conversion.");
        return std::wstring();
    }
    std::wstring text(length, L'\0');
    ConvertFromUTF8(s, SIZE_MAX, text.data(), length);
    return text;
}

std::wstring StringOperations::ConvertFromUTF8(const unsigned char* s) {
    return s != nullptr ? ConvertFromUTF8(s, std::strlen(reinterpret_cast<const char*>(s))) : std::wstring();
}

std::size_t StringOperations::ConvertToUTF8(const wchar_t* w, std::size_t n, unsigned char* out, std::size_t capacity) {
    if (capacity == 0) {
        return 0;
    }
    const std::size_t room = capacity - 1;
    std::size_t stored = 0;
    std::size_t retry = 0;
    for (std::size_t i = 0; i < n;) {
        if (i >= retry) {
            const Progress front = encodeFront(w + i, n - i, out + stored, room - stored);
            i += front.read;
            stored += front.stored;
            retry = i + (front.read >= blockSize ? 0 : retryAfter);
            continue;
        }
        const auto c = static_cast<std::uint32_t>(w[i++]);
        if (c < 0x80) {
            if (stored + 1 <= room) {
                out[stored++] = static_cast<unsigned char>(c);
            }
            if (c == 0) {
                break;
            }
        } else if (c < 0x800) {
            if (stored + 2 <= room) {
                out[stored++] = static_cast<unsigned char>(0xC0 | c >> 6);
                out[stored++] = static_cast<unsigned char>(0x80 | (c & 0x3F));
            }
        } else if (c < 0x10000 && stored + 3 <= room) {
            encodeTriple(c, out + stored);
            stored += 3;
        }
    }
    out[stored] = 0;
    return stored;
}

std::wstring StringOperations::AsWString(unsigned int value) {
    char text[70] = {};
    std::snprintf(text, sizeof text, "%d", static_cast<int>(value));
    return ConvertFromUTF8(reinterpret_cast<const unsigned char*>(text));
}

int StringOperations::IntFromWString(const std::wstring& w) {
    unsigned char text[70] = {};
    ConvertToUTF8(w, text);
    return static_cast<int>(std::strtol(reinterpret_cast<const char*>(text), nullptr, 10));
}

void StringOperations::ConvertToCurrentLocale(const wchar_t* w, std::size_t n, char* out, std::size_t capacity) {
    const bool isText = w != nullptr && n <= std::wstring().max_size();
    const std::string text = isText ? ConvertToCurrentLocale(std::wstring(w, n)) : std::string();
    const std::size_t copied = std::min(text.size(), capacity);
    std::copy_n(text.data(), copied, out);
    std::fill_n(out + copied, capacity - copied, '\0');
}

std::string StringOperations::ConvertToCurrentLocale(const std::wstring& w) {
    unsigned char bytes[65536];
    const std::size_t size = ConvertToUTF8(w, bytes);
    return std::string(reinterpret_cast<const char*>(bytes), size);
}

std::size_t StringOperations::ConvertFromCurrentLocale(const char* s, std::size_t n, wchar_t* out,
                                                       std::size_t capacity) {
    return ConvertFromUTF8(reinterpret_cast<const unsigned char*>(s), n, out, capacity);
}

std::wstring StringOperations::ConvertFromCurrentLocale(const std::string& s) {
    return ConvertFromUTF8(reinterpret_cast<const unsigned char*>(s.c_str()));
}

} // namespace ImportCommon
