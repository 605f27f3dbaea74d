/**
 * @file Utf8Blocks.h
 * The ways ahead of the plain loops of the UTF-8 codec.
 *
 * Each handles characters of one kind at the front of a text with few branches: the length of a name and the places of
 * its accented letters can't be predicted. Where the kind ends, the plain loop takes over.
 *
 * | Way           | Stands in front of         | Handles                                                  |
 * |---------------|----------------------------|----------------------------------------------------------|
 * | decodePlain   | decodeEach                 | ASCII, 8 or 16 bytes at a time                           |
 * | decodePairs   | decodeEach                 | ASCII mixed with two-byte sequences, 8 bytes at a time   |
 * | decodeTriples | the search for the end of the text, then decodeEach | three-byte sequences, one by one |
 * | encodePlain   | the loop of ConvertToUTF8  | ASCII, 8 characters at a time                            |
 * | encodePairs   | the loop of ConvertToUTF8  | characters below U+0800, 8 at a time                     |
 * | encodeFront   | the loop of ConvertToUTF8  | which of the two; characters of three bytes, one by one  |
 *
 * None reads behind a terminating zero. decodePlain and decodePairs get a text whose end is known; the zero itself is a
 * character of it. decodeTriples doesn't know the end, and looks at a byte only when the one before has passed its test:
 * a zero is neither a lead byte nor, being below 0x80, a continuation, so that each test fails on a zero in turn. The
 * encoding ways get the number of characters, and leave a block that holds a zero to the plain loop.
 */
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace ImportCommon::Utf8Blocks {

inline wchar_t decodeSequence(const unsigned char* s, std::size_t length, std::size_t readable) {
    const unsigned int second = readable > 1 ? s[1] & 0x3FU : 0;
    if (length == 2) {
        return static_cast<wchar_t>((s[0] & 0x1FU) << 6 | second);
    }
    const unsigned int third = readable > 2 ? s[2] & 0x3FU : 0;
    return static_cast<wchar_t>((s[0] & 0x0FU) << 12 | second << 6 | third);
}

constexpr std::size_t blockSize = 8; // bytes or characters

/** How far a conversion has come. */
struct Progress {
    std::size_t read;
    std::size_t stored;
};

constexpr std::size_t chunkSize = 64; // characters that are looked at together

enum class Way { CountPlain, DecodePlain, DecodePairs, DecodeTriples, EncodePlain, EncodePairs, EncodeTriples };

#ifdef IMPORT_COMMON_COUNT_WAYS
/** Hears how many characters went which way. A test defines it: no result shows that a way is never taken. */
void taken(Way way, std::size_t characters);
#else
constexpr void taken(Way /*way*/, std::size_t /*characters*/) {
}
#endif

inline std::uint64_t wordAt(const unsigned char* s) {
    std::uint64_t word;
    std::memcpy(&word, s, sizeof word);
    return word;
}

constexpr std::uint64_t topBits = 0x8080808080808080;

static_assert(sizeof(wchar_t) == sizeof(std::uint32_t), "a character is a code point");
static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__, "the first byte of a word is its lowest");

/** The top bits of the bytes that open a longer sequence. Words are little-endian: what follows a byte is above it. */
inline std::uint64_t leadsOf(std::uint64_t word) {
    return word & word << 1 & topBits;
}

/** Whether a word holds one-byte and two-byte sequences only; @p before has the top bits of bytes that follow a lead. */
inline bool isPairs(std::uint64_t word, std::uint64_t before) {
    const std::uint64_t leads = leadsOf(word);
    const std::uint64_t continuations = (word & topBits) ^ leads;
    return ((leads & word << 2) | (continuations ^ before)) == 0;
}

template <std::size_t Size>
inline void widen(const unsigned char* s, wchar_t* out) {
    unsigned char block[Size]; // a copy, which the compiler knows not to overlap the result
    std::memcpy(block, s, Size);
    std::copy_n(block, Size, out);
}

/** Decodes @p n bytes of ASCII, at least 8; up to the first other one, except that 8 bytes are left. */
inline std::size_t decodePlain(const unsigned char* s, std::size_t n, wchar_t* out) {
    constexpr std::size_t doubleBlock = 2 * blockSize;
    if (n < doubleBlock) {
        const std::size_t last = n - blockSize;
        if (((wordAt(s) | wordAt(s + last)) & topBits) != 0) {
            return 0;
        }
        widen<blockSize>(s, out);
        widen<blockSize>(s + last, out + last);
        return n;
    }
    const auto isAscii = [s](std::size_t i) { return ((wordAt(s + i) | wordAt(s + i + blockSize)) & topBits) == 0; };
    std::size_t i = 0;
    for (; n - i >= doubleBlock; i += doubleBlock) {
        if (!isAscii(i)) {
            return i;
        }
        widen<doubleBlock>(s + i, out + i);
    }
    if (i < n) {
        const std::size_t last = n - doubleBlock; // overlaps the block before
        if (!isAscii(last)) {
            return std::min(i, n - blockSize);
        }
        widen<doubleBlock>(s + last, out + last);
    }
    return n;
}

/** What the bytes do to a text of one-byte and two-byte sequences. */
struct PairBytes {
    std::array<std::uint32_t, 256> carried;  ///< what is added to the next byte
    std::array<std::uint8_t, 256> completed; ///< number of characters that it ends
};

constexpr PairBytes pairBytes = [] {
    PairBytes bytes{};
    for (std::uint32_t byte = 0; byte < 256; ++byte) {
        const bool isLead = byte >= 0xC0 && byte < 0xE0;
        bytes.carried[byte] = isLead ? ((byte & 0x1F) << 6) - 0x80 : 0;
        bytes.completed[byte] = isLead ? 0 : 1;
    }
    return bytes;
}();

/** Decodes @p n bytes of one-byte and two-byte sequences, at least 8, each of which has room; up to a block with others. */
inline Progress decodePairs(const unsigned char* s, std::size_t n, wchar_t* out) {
    n -= s[n - 1] >= 0xC0 ? 1 : 0;
    if (n < blockSize || !isPairs(wordAt(s), leadsOf(wordAt(s)) << 8)) {
        return {0, 0};
    }
    std::size_t stored = 0;
    std::uint32_t carried = 0;
    const auto decode = [&](unsigned int byte) {
        out[stored] = static_cast<wchar_t>(byte + carried); // of a lead, what its continuation replaces
        carried = pairBytes.carried[byte];
        stored += pairBytes.completed[byte];
    };
    std::size_t storedBehind[blockSize];
    for (std::size_t i = 0; i < blockSize; ++i) {
        decode(s[i]);
        storedBehind[i] = stored;
    }
    // The first block goes only so far that whole blocks remain: a last one of any length would cost a branch.
    std::size_t i = (n - 1) % blockSize + 1;
    stored = storedBehind[i - 1];
    carried = pairBytes.carried[s[i - 1]];
    while (i < n && isPairs(wordAt(s + i), leadsOf(wordAt(s + i - 1)))) {
        for (const std::size_t next = i + blockSize; i < next; ++i) {
            decode(s[i]);
        }
    }
    return {i - (s[i - 1] >= 0xC0 ? 1 : 0), stored};
}

/** Decodes three-byte sequences, up to one with other continuations at the latest; the number of characters. */
inline std::size_t decodeTriples(const unsigned char* s, std::size_t n, wchar_t* out, std::size_t capacity) {
    const std::size_t count = std::min(n / 3, capacity);
    std::size_t i = 0;
    for (; i < count && (s[0] & 0xF0) == 0xE0 && s[1] >= 0x80 && s[2] >= 0x80; s += 3) {
        out[i++] = decodeSequence(s, 3, 3);
    }
    taken(Way::DecodeTriples, i);
    return i;
}

/**
 * Decodes what is of one kind at the front of a text that may be read up to @p end, and more of it if that was little.
 * Both numbers move on.
 */
inline void decodeFront(const unsigned char* s, std::size_t end, std::size_t& i, wchar_t* out, std::size_t capacity,
                        std::size_t& stored) {
    std::size_t size = std::min(end - i, capacity - stored);
    if (size >= blockSize) {
        const std::size_t plain = decodePlain(s + i, size, out + stored);
        taken(Way::DecodePlain, plain);
        i += plain;
        stored += plain;
        size -= plain;
        if (i == end) {
            return;
        }
    }
    if (size >= blockSize) {
        const Progress pairs = decodePairs(s + i, std::min(size, chunkSize), out + stored);
        taken(Way::DecodePairs, pairs.stored);
        i += pairs.read;
        stored += pairs.stored;
    }
    const std::size_t triples = decodeTriples(s + i, end - i, out + stored, capacity - stored);
    i += 3 * triples;
    stored += triples;
}

/** Which bits any of the characters has, at least 8 of them; all bits if one of them is zero. */
inline std::uint32_t bitsOf(const wchar_t* w, std::size_t n) {
    std::uint32_t bits[blockSize] = {};
    const auto add = [&bits](const wchar_t* block) {
        for (std::size_t i = 0; i < blockSize; ++i) {
            const auto c = static_cast<std::uint32_t>(block[i]);
            bits[i] |= c | (c - 1);
        }
    };
    for (std::size_t i = 0; i + blockSize < n; i += blockSize) {
        add(w + i);
    }
    add(w + n - blockSize);
    std::uint32_t all = 0;
    for (const std::uint32_t each : bits) {
        all |= each;
    }
    return all;
}

/** Encodes ASCII, at least 8 characters of it. */
inline void encodePlain(const wchar_t* w, std::size_t n, unsigned char* out) {
    const auto narrow = [w, out](std::size_t first) {
        for (std::size_t i = first; i < first + blockSize; ++i) {
            out[i] = static_cast<unsigned char>(w[i]);
        }
    };
    for (std::size_t i = 0; n - i > blockSize; i += blockSize) {
        narrow(i);
    }
    narrow(n - blockSize);
}

constexpr std::uint32_t firstTriple = 0x800;

/** The sequences of the characters that need no more than two bytes. */
constexpr auto pairCodes = [] {
    struct {
        unsigned char bytes[firstTriple][2];
    } codes{};
    for (std::uint32_t c = 0; c < firstTriple; ++c) {
        codes.bytes[c][0] = static_cast<unsigned char>(c < 0x80 ? c : 0xC0 | c >> 6);
        codes.bytes[c][1] = static_cast<unsigned char>(c < 0x80 ? 0 : 0x80 | (c & 0x3F));
    }
    return codes;
}();

/** Encodes characters of one and two bytes, at least 8 of them, up to the end of the room for more than one block. */
inline Progress encodePairs(const wchar_t* w, std::size_t n, unsigned char* out, std::size_t room) {
    std::size_t stored = 0;
    const auto encode = [&stored, out](wchar_t wide) {
        const auto c = static_cast<std::uint32_t>(wide);
        std::memcpy(out + stored, pairCodes.bytes[c], 2); // the second byte of ASCII is where the text ends or goes on
        stored += 1 + ((0x7F - c) >> 31); // one more when that is negative; a comparison would become a branch
    };
    std::size_t storedBehind[blockSize];
    for (std::size_t i = 0; i < blockSize; ++i) {
        encode(w[i]);
        storedBehind[i] = stored;
    }
    std::size_t i = (n - 1) % blockSize + 1; // as in decodePairs
    stored = storedBehind[i - 1];
    while (i < n && room - stored >= 2 * blockSize) {
        for (const std::size_t next = i + blockSize; i < next; ++i) {
            encode(w[i]);
        }
    }
    return {i, stored};
}

inline void encodeTriple(std::uint32_t c, unsigned char* out) {
    out[0] = static_cast<unsigned char>(0xE0 | c >> 12);
    out[1] = static_cast<unsigned char>(0x80 | (c >> 6 & 0x3F));
    out[2] = static_cast<unsigned char>(0x80 | (c & 0x3F));
}

/** Encodes characters at the front of a text, which is not empty. */
inline Progress encodeFront(const wchar_t* w, std::size_t n, unsigned char* out, std::size_t room) {
    const auto isTriple = [w](std::size_t i) { return static_cast<std::uint32_t>(w[i]) - firstTriple < 0xF800; };
    if (isTriple(0)) {
        std::size_t i = 0;
        for (; i < n && room >= 3 && isTriple(i); ++i, room -= 3, out += 3) {
            encodeTriple(static_cast<std::uint32_t>(w[i]), out);
        }
        taken(Way::EncodeTriples, i);
        return {i, 3 * i};
    }
    const std::size_t size = std::min(n, chunkSize);
    if (size < blockSize || room < std::max(size, 2 * blockSize)) {
        return {0, 0};
    }
    const std::uint32_t bits = bitsOf(w, size);
    if (bits < 0x80) {
        encodePlain(w, size, out);
        taken(Way::EncodePlain, size);
        return {size, size};
    }
    const Progress pairs = bits < firstTriple ? encodePairs(w, size, out, room) : Progress{0, 0};
    taken(Way::EncodePairs, pairs.read);
    return pairs;
}

} // namespace ImportCommon::Utf8Blocks
