#include "Models/Utf8Reference.h"
#include "Support/Stderr.h"

#include <ImportCommon/StringOperations.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <future>
#include <iostream>
#include <iterator>
#include <random>
#include <string>
#include <thread>
#include <utility>
#include <vector>

using ImportCommon::StringOperations;
using namespace std::string_literals;

namespace {

constexpr wchar_t untouchedWide = 0x77777; // which no text decodes to
constexpr char untouchedByte = '#';

/** What a codec function returned, and everything its output buffer held afterwards. */
template <typename Text>
using Outcome_t = std::pair<std::size_t, Text>;

// The buffers are blocks of exactly the size in use, so that the address sanitizer sees the first byte outside.

std::vector<unsigned char> exactly(const std::string& bytes) {
    return {bytes.begin(), bytes.end()};
}

Outcome_t<std::wstring> decode(const std::string& bytes, std::size_t n, std::size_t capacity) {
    std::vector<wchar_t> output(capacity, untouchedWide);
    const std::size_t result = StringOperations::ConvertFromUTF8(exactly(bytes).data(), n, output.data(), capacity);
    return {result, std::wstring(output.begin(), output.end())};
}

std::size_t count(const std::string& bytes, std::size_t n) {
    return StringOperations::StringLengthUTF8(exactly(bytes).data(), n);
}

std::wstring decodeString(const std::string& bytes, std::size_t n) {
    return StringOperations::ConvertFromUTF8(exactly(bytes).data(), n);
}

Outcome_t<std::string> encode(const std::wstring& text, std::size_t capacity) {
    const std::vector<wchar_t> input(text.begin(), text.end());
    std::vector<unsigned char> output(capacity, untouchedByte);
    const std::size_t result = StringOperations::ConvertToUTF8(input.data(), text.size(), output.data(), capacity);
    return {result, std::string(output.begin(), output.end())};
}

std::size_t modelCount(const std::string& bytes, std::size_t n) {
    return Utf8Reference::count(reinterpret_cast<const unsigned char*>(bytes.data()), n);
}

Outcome_t<std::wstring> modelDecode(const std::string& bytes, std::size_t n, std::size_t capacity) {
    std::wstring out;
    const auto* s = reinterpret_cast<const unsigned char*>(bytes.data());
    const std::size_t result = Utf8Reference::decode(s, n, capacity, out);
    out.resize(capacity, untouchedWide);
    return {result, out};
}

Outcome_t<std::string> modelEncode(const std::wstring& text, std::size_t capacity) {
    std::string out = Utf8Reference::encode(text, capacity);
    const std::size_t result = out.size();
    out.resize(capacity, untouchedByte);
    if (capacity > 0) {
        out[result] = 0;
    }
    return {result, out};
}

/** Runs of letters of one kind, of bytes that matter and of any bytes, cut off anywhere. */
std::string randomBytes(std::mt19937& random) {
    const std::string frequent = "\0abz\xC3\xDF\xE2\xEF\x80\xA9\xBF"s;
    const std::size_t size = random() % (random() % 2 == 0 ? 12 : 200);
    const unsigned int kinds = random() % 2 == 0 ? 4 : 6; // half of the texts are valid up to their end
    std::string bytes;
    while (bytes.size() < size) {
        const auto kind = random() % kinds;
        for (auto left = random() % (kind < 4 ? 60 : 4); left > 0; --left) {
            const auto any = [&random](unsigned int first, unsigned int count) {
                return static_cast<char>(first + random() % count);
            };
            const bool plain = kind == 0 || (kind == 1 && random() % 8 != 0);
            bytes += plain ? any(1, 0x7F) : kind == 4 ? frequent[random() % frequent.size()] : any(0, 0x100);
            if (!plain && kind < 4) {
                bytes.back() = kind == 3 ? any(0xE0, 0x10) : any(0xC0, 0x20);
                std::generate_n(std::back_inserter(bytes), kind == 3 ? 2 : 1, [&any] { return any(0x80, 0x40); });
            }
        }
    }
    bytes.resize(size);
    return bytes;
}

TEST(StringOperationsTest, agreesWithThePlainModel) {
    constexpr unsigned int seed = 20240611;
    std::cout << "seed " << seed << std::endl;
    std::mt19937 random(seed);
    const auto below = [&random](std::size_t limit) { return static_cast<std::size_t>(random()) % limit; };
    const auto near = [&below](std::size_t size) { return std::max<std::size_t>(size + below(20), 10) - 10; };
    testing::internal::CaptureStderr(); // the warnings about invalid text are no use here
    for (int round = 0; round < 30000 && !HasFailure(); ++round) {
        const std::string bytes = randomBytes(random);
        const std::size_t n = below(bytes.size() + 1);
        const std::string terminated = bytes + '\0';
        const std::size_t capacity = near(below(4) == 0 ? bytes.size() : modelCount(terminated, SIZE_MAX));
        for (const auto& [text, limit] :
             {std::pair(bytes, n), std::pair(bytes, bytes.size()), std::pair(terminated, SIZE_MAX)}) {
            EXPECT_EQ(decode(text, limit, capacity), modelDecode(text, limit, capacity)) << "round " << round;
            EXPECT_EQ(count(text, limit), modelCount(text, limit)) << "round " << round;
        }
        const std::size_t length = bytes.empty() || bytes[0] == 0 ? 0 : modelCount(terminated, n);
        auto expected = modelDecode(terminated, SIZE_MAX, length).second;
        std::replace(expected.begin(), expected.end(), untouchedWide, L'\0');
        EXPECT_EQ(decodeString(terminated, n), expected) << "round " << round;

        constexpr std::size_t magnitudes[] = {1, 0x90, 0x900, 0x10010, 0x200000, 0x100000000};
        auto [stored, wide] = modelDecode(bytes, bytes.size(), bytes.size());
        wide.resize(stored);
        const std::size_t rarity = below(2) == 0 ? 4 : 200;
        std::replace_if(
            wide.begin(), wide.end(), [&](wchar_t) { return below(rarity) == 0; },
            static_cast<wchar_t>(below(magnitudes[below(6)])));
        const std::size_t room = near(bytes.size());
        EXPECT_EQ(encode(wide, room), modelEncode(wide, room)) << "round " << round;
    }
    testing::internal::GetCapturedStderr();
}

TEST(StringOperationsTest, textIntoStringsAndArrays) {
    EXPECT_EQ(StringOperations::ConvertFromUTF8(nullptr, 5), L"");
    EXPECT_EQ(StringOperations::ConvertFromUTF8(exactly("Gr\xC3\xBC\xC3\x9F\0"s).data()), L"Gr\u00FC\u00DF");
    // What does not fit is skipped, and what still fits behind it is written.
    unsigned char bytes[70];
    EXPECT_EQ(StringOperations::ConvertToUTF8(std::wstring(68, L'x') + L"\u00E9y", bytes), 69u);
    EXPECT_EQ(std::string(bytes, bytes + 70), std::string(68, 'x') + "y\0"s);
    wchar_t wide[4096];
    EXPECT_EQ(StringOperations::ConvertFromUTF8(exactly("abc\0"s).data(), wide), 4u);
    EXPECT_EQ(StringOperations::ConvertFromUTF8(exactly("\xC3\xA9 and more").data(), 2, wide), 1u);

    EXPECT_EQ(StringOperations::AsWString(4294967295u), L"-1");
    EXPECT_EQ(StringOperations::IntFromWString(L" -7abc"), -7);
    EXPECT_EQ(StringOperations::IntFromWString(L""), 0);
    EXPECT_EQ(StringOperations::IntFromWString(std::wstring(67, L' ') + L"123"), 12); // only 69 bytes are looked at
}

TEST(StringOperationsTest, currentLocale) {
    for (const std::string& expected : {"abc"s, "ab"s, "abc\0\0\0"s, ""s}) {
        std::vector<char> buffer(expected.size(), untouchedByte);
        StringOperations::ConvertToCurrentLocale(L"abc", 3, buffer.data(), buffer.size());
        EXPECT_EQ(std::string(buffer.begin(), buffer.end()), expected);
    }
    // What can't be a text is none.
    for (const auto& [text, n] : {std::pair<const wchar_t*, std::size_t>(nullptr, 3), {L"abc", SIZE_MAX}}) {
        char buffer[] = "##";
        EXPECT_NO_THROW(StringOperations::ConvertToCurrentLocale(text, n, buffer, sizeof buffer));
        EXPECT_EQ(std::string(buffer, sizeof buffer), "\0\0\0"s);
    }
    EXPECT_EQ(StringOperations::ConvertToCurrentLocale(L"Gr\u00FC\u00DF"), "Gr\xC3\xBC\xC3\x9F");
    EXPECT_EQ(StringOperations::ConvertToCurrentLocale(L"a\0b"s), "a\0"s);
    EXPECT_EQ(StringOperations::ConvertToCurrentLocale(std::wstring(70000, L'x')), std::string(65535, 'x'));
    EXPECT_EQ(StringOperations::ConvertFromCurrentLocale("Gr\xC3\xBC\xC3\x9F"), L"Gr\u00FC\u00DF");
    EXPECT_EQ(StringOperations::ConvertFromCurrentLocale("ab\0c"s), L"ab");
}

// Text that comes with a byte count has no terminator that the message could rely on.
TEST(StringOperationsDeathTest, eachFunctionWarnsOnce) {
    const auto expectReport = [](const auto& fault, const std::string& pattern) {
        const auto twice = [&fault] {
            fault("ab\x80");
            fault("cd\x80");
        };
        expectStderrOfFreshProcess(twice, pattern);
    };
    expectReport([](const std::string& s) { count(s, 3); }, "StringOperations::StringLengthUTF8 error for string ab.");
    expectReport([](const std::string& s) { decode(s, 3, 10); },
                 "StringOperations::ConvertFromUTF8 error for string ab.");
    expectReport([](const std::string& s) { decodeString(s, 3); },
                 "StringOperations::StringLengthUTF8 error for string ab."
                 " StringOperations::ConvertFromUTF8, Invalid Conversion.");
}

// The first thread can't finish its message before the stream is unlocked: the other must not wait for that.
TEST(StringOperationsDeathTest, oneOfTwoThreadsWarns) {
    const auto race = [] {
        std::promise<void> silent;
        std::atomic<bool> done{false};
        const auto fault = [&] {
            count("ab\x80", 3);
            if (!done.exchange(true)) {
                silent.set_value();
            }
        };
        flockfile(stderr);
        std::thread first(fault);
        std::thread second(fault);
        const bool waits = silent.get_future().wait_for(std::chrono::seconds(20)) != std::future_status::ready;
        funlockfile(stderr);
        first.join();
        second.join();
        std::fputs(waits ? "both" : "one", stderr);
    };
    expectStderrOfFreshProcess(race, "StringOperations::StringLengthUTF8 error for string ab.one");
}

} // namespace
