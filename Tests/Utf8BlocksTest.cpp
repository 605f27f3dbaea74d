/**
 * @file Utf8BlocksTest.cpp
 * Long text of one kind goes the way that is meant for it. No result shows that, so this program is built with a codec
 * of its own, which tells the way.
 */
#include "Utf8Blocks.h"

#include <ImportCommon/StringOperations.h>

#include <gtest/gtest.h>

#include <map>
#include <string>

using ImportCommon::StringOperations;
using ImportCommon::Utf8Blocks::Way;

namespace {

std::map<Way, std::size_t> charactersBy;

} // namespace

void ImportCommon::Utf8Blocks::taken(Way way, std::size_t characters) {
    charactersBy[way] += characters;
}

namespace {

TEST(Utf8BlocksTest, longTextGoesTheWayOfItsKind) {
    constexpr std::size_t count = 800;
    constexpr std::size_t most = count * 9 / 10;
    const struct {
        std::wstring front;
        wchar_t character;
        Way decode;
        Way encode;
    } cases[] = {
        {L"", L'a', Way::DecodePlain, Way::EncodePlain},
        {L"", L'\u00E9', Way::DecodePairs, Way::EncodePairs},
        {L"", L'\u4E2D', Way::DecodeTriples, Way::EncodeTriples},
        // Other characters in front hold it up for a while only.
        {L"\u00E9\u4E2D\u00E9", L'a', Way::DecodePlain, Way::EncodePlain},
        {L"\u4E2Da\u4E2D", L'\u00E9', Way::DecodePairs, Way::EncodePairs},
        {L"a\u00E9a", L'\u4E2D', Way::DecodeTriples, Way::EncodeTriples},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.front + c.character));
        const std::wstring text = c.front + std::wstring(count, c.character);
        unsigned char bytes[4096];
        wchar_t decoded[4096];
        charactersBy.clear();
        StringOperations::ConvertToUTF8(text, bytes);
        StringOperations::ConvertFromUTF8(bytes, decoded);
        EXPECT_EQ(std::wstring(decoded), text);
        EXPECT_GE(charactersBy[c.encode], most);
        EXPECT_GE(charactersBy[c.decode], most);
        EXPECT_EQ(StringOperations::StringLengthUTF8(bytes, SIZE_MAX), text.size());
        EXPECT_EQ(charactersBy[Way::CountPlain] >= most, c.character == L'a');
    }
}

} // namespace
