#include <ImportCommon/StringOperations.h>

#include <gtest/gtest.h>
#include <iconv.h>

#include <array>
#include <string>
#include <vector>

using ImportCommon::StringOperations;
using namespace std::string_literals;

namespace {

constexpr wchar_t unassigned = -1;

using CodePage_t = std::array<wchar_t, 256>;

wchar_t convert(int set, int byte) {
    return StringOperations::ConvertIsoLatinToWideChar(static_cast<StringOperations::CharSet_e>(set),
                                                       static_cast<char>(byte));
}

/** A part of ISO 8859 as the system knows it. */
CodePage_t systemsCodePage(int part) {
    const iconv_t converter = iconv_open("WCHAR_T", ("ISO-8859-" + std::to_string(part)).c_str());
    EXPECT_NE(converter, reinterpret_cast<iconv_t>(-1));
    CodePage_t page;
    for (std::size_t i = 0; i < page.size(); ++i) {
        char byte = static_cast<char>(i);
        wchar_t character = 0;
        char* input = &byte;
        char* output = reinterpret_cast<char*>(&character);
        std::size_t inputLeft = 1;
        std::size_t outputLeft = sizeof character;
        const bool converted = iconv(converter, &input, &inputLeft, &output, &outputLeft) == 0 && outputLeft == 0;
        page[i] = converted ? character : unassigned;
    }
    iconv_close(converter);
    return page;
}

/** The parts by number: as the system has them, but in the editions that the library keeps to. */
std::array<CodePage_t, 10> expectedCodePages() {
    std::array<CodePage_t, 10> pages{};
    for (std::size_t part = 1; part <= 9; ++part) {
        pages[part] = systemsCodePage(static_cast<int>(part));
    }
    // Greek before the euro, the drachma and the iota below; Hebrew before the marks of direction.
    pages[7][0xA1] = 0x02BD;
    pages[7][0xA2] = 0x02BC;
    pages[7][0xA4] = pages[7][0xA5] = pages[7][0xAA] = unassigned;
    pages[8][0xAF] = 0x203E;
    pages[8][0xFD] = pages[8][0xFE] = unassigned;

    wchar_t privateUse = 0xF79C;
    for (const std::size_t part : {8u, 7u, 6u, 3u}) {
        for (wchar_t& character : pages[part]) {
            if (character == unassigned) {
                character = privateUse++;
            }
        }
    }
    EXPECT_EQ(privateUse, 0xF7FC);
    return pages;
}

TEST(IsoLatinTest, agreesWithTheSystem) {
    const auto pages = expectedCodePages();
    for (int byte = 0; byte < 256; ++byte) {
        for (std::size_t part = 1; part <= 9; ++part) {
            EXPECT_EQ(convert(28590 + static_cast<int>(part), byte), pages[part][static_cast<std::size_t>(byte)])
                << "part " << part << ", byte " << byte;
        }
        for (const int unknown : {0, -1, 1252, 28590, 28600, 28605, 65001}) {
            EXPECT_EQ(convert(unknown, byte), byte < 128 ? byte : byte - 256) << unknown;
        }
    }
}

TEST(IsoLatinTest, strictConversionToLatin1) {
    const struct {
        std::wstring text;
        bool fits;
        std::string bytes;
    } cases[] = {
        {L"", true, ""},
        {L"a\0\x7F\x80\xFF"s, true, "a\0\x7F\x80\xFF"s},
        {L"Gr\u20ACe", false, "Gr\0\0"s},
        {L"abc\U0001F600", false, "abc\0"s},
        // A negative character is cut to its low byte, not refused.
        {{L'x', static_cast<wchar_t>(-1), static_cast<wchar_t>(0x80000141), L'y'},
         true,
         "x\xFF"
         "Ay"},
    };
    for (const auto& c : cases) {
        std::string bytes = "what was there before";
        EXPECT_EQ(StringOperations::TryConvertToIsoLatin1(c.text, bytes), c.fits) << c.bytes;
        EXPECT_EQ(bytes, c.bytes);
    }
}

} // namespace
