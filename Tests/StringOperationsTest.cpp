#include <ImportCommon/StringOperations.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <random>
#include <string>
#include <vector>

using ImportCommon::StringOperations;
using namespace std::string_literals;

namespace {

constexpr wchar_t untouchedWide = 0x7777;
constexpr unsigned char untouchedByte = 0xEE;

/** A block of exactly the given size, so that the address sanitizer sees the first byte outside it. */
template <typename T>
std::unique_ptr<T[]> exactly(const std::basic_string<T>& content) {
    auto block = std::make_unique<T[]>(content.size());
    std::copy(content.begin(), content.end(), block.get());
    return block;
}

std::unique_ptr<unsigned char[]> exactlyBytes(const std::string& content) {
    return exactly(std::basic_string<unsigned char>(content.begin(), content.end()));
}

/** What a codec function returned, and everything its output buffer held afterwards. */
template <typename Text>
struct Outcome_s {
    std::size_t result;
    Text buffer;
    bool operator==(const Outcome_s& other) const { return result == other.result && buffer == other.buffer; }
};

template <typename Text>
std::ostream& operator<<(std::ostream& stream, const Outcome_s<Text>& outcome) {
    stream << outcome.result << " [";
    for (const auto c : outcome.buffer) {
        stream << ' ' << std::hex << (static_cast<long>(c) & 0xFFFFFFFFL) << std::dec;
    }
    return stream << " ]";
}

Outcome_s<std::wstring> decode(const std::string& bytes, std::size_t n, std::size_t capacity) {
    const auto input = exactlyBytes(bytes);
    const auto output = exactly(std::wstring(capacity, untouchedWide));
    const std::size_t result = StringOperations::ConvertFromUTF8(input.get(), n, output.get(), capacity);
    return {result, std::wstring(output.get(), capacity)};
}

Outcome_s<std::string> encode(const std::wstring& text, std::size_t capacity) {
    const auto input = exactly(text);
    const auto output = exactly(std::basic_string<unsigned char>(capacity, untouchedByte));
    const std::size_t result = StringOperations::ConvertToUTF8(input.get(), text.size(), output.get(), capacity);
    return {result, std::string(output.get(), output.get() + capacity)};
}

int sequenceLength(unsigned char lead) {
    return lead < 0x80 ? 1 : (lead & 0xE0) == 0xC0 ? 2 : (lead & 0xF0) == 0xE0 ? 3 : 0;
}

std::size_t modelLength(const std::string& bytes, std::size_t n) {
    std::size_t i = 0;
    std::size_t count = 0;
    for (; i < n && bytes[i] != 0; ++count) {
        const int length = sequenceLength(static_cast<unsigned char>(bytes[i]));
        if (length == 0) {
            return 0;
        }
        i += 1;
        for (int k = 1; k < length && (n != SIZE_MAX || bytes[i] != 0); ++k) {
            i += 1;
        }
    }
    return count;
}

Outcome_s<std::wstring> modelDecode(const std::string& bytes, std::size_t n, std::size_t capacity) {
    std::wstring out(capacity, untouchedWide);
    std::size_t i = 0;
    std::size_t k = 0;
    while (i < n) {
        const auto lead = static_cast<unsigned char>(bytes[i++]);
        const int length = sequenceLength(lead);
        if (length == 0) {
            return {0, out};
        }
        if (length == 1) {
            if (k < capacity) {
                out[k++] = static_cast<wchar_t>(lead);
            }
            if (lead == 0) {
                return {k, out};
            }
        } else if (k < capacity && i < n - static_cast<std::size_t>(length - 2)) {
            int value = lead & (length == 2 ? 0x1F : 0x0F);
            for (int c = 1; c < length; ++c) {
                const bool terminator = n == SIZE_MAX && bytes[i] == 0;
                value = (value << 6) | (terminator ? 0 : bytes[i++] & 0x3F);
            }
            out[k++] = static_cast<wchar_t>(value);
        }
    }
    return {k, out};
}

Outcome_s<std::string> modelEncode(const std::wstring& text, std::size_t capacity) {
    std::string out(capacity, static_cast<char>(untouchedByte));
    std::size_t k = 0;
    for (std::size_t i = 0; capacity > 0 && i < text.size(); ++i) {
        const auto c = static_cast<long>(text[i]);
        std::string bytes;
        if (c >= 0 && c < 0x80) {
            bytes = {static_cast<char>(c)};
        } else if (c >= 0x80 && c < 0x800) {
            bytes = {static_cast<char>(0xC0 | (c >> 6)), static_cast<char>(0x80 | (c & 0x3F))};
        } else if (c >= 0x800 && c < 0x10000) {
            bytes = {static_cast<char>(0xE0 | (c >> 12)), static_cast<char>(0x80 | ((c >> 6) & 0x3F)),
                     static_cast<char>(0x80 | (c & 0x3F))};
        }
        if (k + bytes.size() <= capacity - 1) {
            out.replace(k, bytes.size(), bytes);
            k += bytes.size();
        }
        if (c == 0) {
            break;
        }
    }
    if (capacity > 0) {
        out[std::min(k, capacity - 1)] = 0;
    }
    return {k, out};
}

TEST(StringOperations, decodesAndCounts) {
    const struct {
        std::string bytes;
        std::size_t n, capacity, result;
        std::wstring stored;
        std::size_t length;
    } cases[] = {
        {"abc\0"s, SIZE_MAX, 10, 4, L"abc\0"s, 3},
        {"abc\0"s, SIZE_MAX, 3, 3, L"abc", 3},
        {"abc", 3, 10, 3, L"abc", 3},
        {"abcde", 5, 2, 2, L"ab", 5},
        {"a\0b"s, 3, 10, 2, L"a\0"s, 1},
        {"a\xC3\xA9\xE2\x82\xAC\0"s, SIZE_MAX, 10, 4, L"a\u00E9\u20AC\0"s, 3},
        // A full buffer drops short characters, but a longer one ends the conversion as invalid.
        {"\xC3\xA9", 2, 0, 0, L"", 1},
        {"ab\xC3\xA9\0"s, SIZE_MAX, 1, 0, L"a", 3},
        {"a\xE2\x82\xAC", 4, 1, 0, L"a", 2},
        // Invalid leads
        {"\xF0\x9F\x98\x80\0"s, SIZE_MAX, 10, 0, L"", 0},
        {"ab\x80z\0"s, SIZE_MAX, 10, 0, L"ab", 0},
        // Sequences cut off by the byte count
        {"a\xC3", 2, 10, 1, L"a", 2},
        {"a\xE2", 2, 10, 1, L"a", 2},
        {"a\xE2\x82", 3, 10, 0, L"a", 2},
        {"\xC3\0z"s, 3, 10, 2, L"\u00C0z", 2},
        // Sequences cut off by the terminator
        {"a\xC3\0"s, SIZE_MAX, 10, 3, L"a\u00C0\0"s, 2},
        {"\xE2\0"s, SIZE_MAX, 10, 2, L"\u2000\0"s, 1},
        {"\xE2\x82\0"s, SIZE_MAX, 10, 2, L"\u2080\0"s, 1},
        // Continuation bytes are taken as they come; overlong forms and surrogates are accepted.
        {"\xC3G", 2, 10, 1, L"\u00C7", 1},
        {"\xC0\x80z", 3, 10, 2, L"\0z"s, 2},
        {"\xED\xA0\x80", 3, 10, 1, std::wstring(1, static_cast<wchar_t>(0xD800)), 1},
    };
    for (const auto& c : cases) {
        std::wstring buffer = c.stored;
        buffer.resize(c.capacity, untouchedWide);
        const Outcome_s<std::wstring> expected{c.result, buffer};
        EXPECT_EQ(decode(c.bytes, c.n, c.capacity), expected) << c.bytes;
        EXPECT_EQ(StringOperations::StringLengthUTF8(exactlyBytes(c.bytes).get(), c.n), c.length) << c.bytes;
    }
}

TEST(StringOperations, encodes) {
    const std::string x68(68, 'x');
    const std::wstring w68(68, L'x');
    const struct {
        std::wstring text;
        std::size_t capacity;
        std::string stored;
    } cases[] = {
        {std::wstring(100, L'x'), 70, x68 + 'x'},
        {w68 + L"\u00E9", 70, x68},
        {w68 + L"\u00E9y", 70, x68 + 'y'},
        {L"\u20AC\u00E9z", 4, "\xE2\x82\xAC"},
        {L"\u20AC\u00E9z", 3, "\xC3\xA9"},
        {L"\u20AC\u00E9z", 2, "z"},
        {L"z", 1, ""},
        {L"z", 0, ""},
        {L"a\0b"s, 10, "a\0"s},
        {L"\u007F\u0080\u07FF\u0800\uFFFF", 20, "\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF"},
        {{L'a', 0x10000, 0x1F600, static_cast<wchar_t>(-1), L'b'}, 20, "ab"},
    };
    for (const auto& c : cases) {
        Outcome_s<std::string> expected{c.stored.size(), (c.stored + '\0').substr(0, c.capacity)};
        expected.buffer.resize(c.capacity, static_cast<char>(untouchedByte));
        EXPECT_EQ(encode(c.text, c.capacity), expected) << c.stored << " in " << c.capacity;
    }
}

TEST(StringOperations, agreesWithThePlainModel) {
    constexpr unsigned int seed = 20240611;
    std::cout << "seed " << seed << std::endl;
    std::mt19937 random(seed);
    const auto below = [&random](std::size_t limit) { return static_cast<std::size_t>(random()) % limit; };
    const std::string frequent = "\0abz\xC3\xDF\xE2\xEF\x80\xA9\xBF"s;
    testing::internal::CaptureStderr(); // the warnings about invalid text are no use here
    for (int round = 0; round < 30000 && !HasFailure(); ++round) {
        std::string bytes(below(12), 0);
        const bool anyByte = below(8) == 0;
        std::generate(bytes.begin(), bytes.end(),
                      [&] { return anyByte ? static_cast<char>(below(256)) : frequent[below(frequent.size())]; });
        const std::size_t capacity = below(10);
        const std::size_t n = below(bytes.size() + 1);
        const std::string terminated = bytes + '\0';
        for (const auto& [text, count] : {std::pair(bytes, n), std::pair(terminated, SIZE_MAX)}) {
            const auto input = exactlyBytes(text);
            EXPECT_EQ(decode(text, count, capacity), modelDecode(text, count, capacity)) << "round " << round;
            EXPECT_EQ(StringOperations::StringLengthUTF8(input.get(), count), modelLength(text, count))
                << "round " << round;
        }
        const std::size_t length = bytes.empty() || bytes[0] == 0 ? 0 : modelLength(terminated, n);
        auto expected = modelDecode(terminated, SIZE_MAX, length).buffer;
        std::replace(expected.begin(), expected.end(), untouchedWide, L'\0');
        EXPECT_EQ(StringOperations::ConvertFromUTF8(exactlyBytes(terminated).get(), n), expected) << "round " << round;

        constexpr std::size_t magnitudes[] = {1, 0x90, 0x900, 0x10010, 0x200000, 0x100000000};
        std::wstring wide(below(12), 0);
        std::generate(wide.begin(), wide.end(), [&] { return static_cast<wchar_t>(below(magnitudes[below(6)])); });
        EXPECT_EQ(encode(wide, capacity), modelEncode(wide, capacity)) << "round " << round;
    }
    testing::internal::GetCapturedStderr();
}

TEST(StringOperations, decodesIntoStringsAndArrays) {
    const auto text = [](const char* s) { return reinterpret_cast<const unsigned char*>(s); };
    EXPECT_EQ(StringOperations::ConvertFromUTF8(nullptr), L"");
    EXPECT_EQ(StringOperations::ConvertFromUTF8(nullptr, 5), L"");
    EXPECT_EQ(StringOperations::ConvertFromUTF8(text("")), L"");
    EXPECT_EQ(StringOperations::ConvertFromUTF8(text("abc"), 0), L"");
    EXPECT_EQ(StringOperations::ConvertFromUTF8(text("Gr\xC3\xBC\xC3\x9F")), L"Gr\u00FC\u00DF");
    EXPECT_EQ(StringOperations::ConvertFromUTF8(text("Gr\xC3\xBC\xC3\x9F"), 4), L"Gr\u00FC");
    EXPECT_EQ(StringOperations::ConvertFromUTF8(text("Gr\xC3\xBC"), 3), L"Gr\u00FC");
    EXPECT_EQ(StringOperations::ConvertFromUTF8(text("ab\x80")), L"");

    wchar_t wide[4096];
    EXPECT_EQ(StringOperations::ConvertFromUTF8(text("abc"), wide), 4u);
    EXPECT_EQ(StringOperations::ConvertFromUTF8(text("\xC3\xA9 and more"), 2, wide), 1u);
    EXPECT_EQ(wide[0], L'\u00E9');
}

TEST(StringOperations, integers) {
    EXPECT_EQ(StringOperations::AsWString(0), L"0");
    EXPECT_EQ(StringOperations::AsWString(2147483647u), L"2147483647");
    EXPECT_EQ(StringOperations::AsWString(4294967295u), L"-1");
    EXPECT_EQ(StringOperations::IntFromWString(L"12abc"), 12);
    EXPECT_EQ(StringOperations::IntFromWString(L" -7"), -7);
    EXPECT_EQ(StringOperations::IntFromWString(L""), 0);
    EXPECT_EQ(StringOperations::IntFromWString(std::wstring(67, L' ') + L"123"), 12); // only 69 bytes are looked at
}

TEST(StringOperations, currentLocale) {
    const struct {
        std::wstring text;
        std::size_t capacity;
        std::string buffer;
    } cases[] = {
        {L"abc", 3, "abc"},
        {L"abc", 2, "ab"},
        {L"abc", 8, "abc\0\0\0\0\0"s},
        {L"\u00E9", 1, "\xC3"},
        {L"\u00E9", 4, "\xC3\xA9\0\0"s},
        {L"abc", 0, ""},
    };
    for (const auto& c : cases) {
        const auto output = exactly(std::string(c.capacity, '#'));
        StringOperations::ConvertToCurrentLocale(exactly(c.text).get(), c.text.size(), output.get(), c.capacity);
        EXPECT_EQ(std::string(output.get(), c.capacity), c.buffer);
    }
    EXPECT_EQ(StringOperations::ConvertToCurrentLocale(L"Gr\u00FC\u00DF"), "Gr\xC3\xBC\xC3\x9F");
    EXPECT_EQ(StringOperations::ConvertToCurrentLocale(L"a\0b"s), "a\0"s);
    EXPECT_EQ(StringOperations::ConvertToCurrentLocale(std::wstring(70000, L'x')), std::string(65535, 'x'));
    EXPECT_EQ(StringOperations::ConvertFromCurrentLocale("Gr\xC3\xBC\xC3\x9F"), L"Gr\u00FC\u00DF");
    EXPECT_EQ(StringOperations::ConvertFromCurrentLocale("ab\0c"s), L"ab");
    wchar_t wide[3] = {untouchedWide, untouchedWide, untouchedWide};
    EXPECT_EQ(StringOperations::ConvertFromCurrentLocale("\xC3\xA9z", 3, wide, 3), 2u);
    EXPECT_EQ(std::wstring(wide, 3), (std::wstring{L'\u00E9', L'z', untouchedWide}));
}

// The warnings are per process, so a fresh one is started for each of these.
TEST(StringOperationsDeathTest, eachFunctionWarnsOnce) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    const auto report = [](const auto& fault) {
        std::fputs("<<", stderr);
        fault("ab\x80z\0"s);
        fault("cd\x80z\0"s);
        std::fputs(">>", stderr);
        std::exit(0);
    };
    EXPECT_EXIT(report([](const std::string& s) {
                    StringOperations::StringLengthUTF8(exactlyBytes(s).get(), SIZE_MAX);
                }),
                testing::ExitedWithCode(0), "<<StringOperations::StringLengthUTF8 error for string ab.z>>");
    EXPECT_EXIT(report([](const std::string& s) { decode(s, SIZE_MAX, 10); }), testing::ExitedWithCode(0),
                "<<StringOperations::ConvertFromUTF8 error for string ab.z>>");
    EXPECT_EXIT(report([](const std::string& s) { StringOperations::ConvertFromUTF8(exactlyBytes(s).get(), 3); }),
                testing::ExitedWithCode(0),
                "<<StringOperations::StringLengthUTF8 error for string ab.z?"
                " StringOperations::ConvertFromUTF8, Invalid Conversion.>>");
}

// Text given with a byte count has no terminator that the message could rely on.
TEST(StringOperationsDeathTest, warningStaysInsideCountedText) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT((StringOperations::StringLengthUTF8(exactlyBytes("ab\x80").get(), 3), std::exit(0)),
                testing::ExitedWithCode(0), "StringLengthUTF8 error for string ab.$");
    EXPECT_EXIT((decode("ab\x80", 3, 10), std::exit(0)), testing::ExitedWithCode(0),
                "ConvertFromUTF8 error for string ab.$");
}

} // namespace
