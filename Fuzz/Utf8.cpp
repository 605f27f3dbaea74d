/**
 * @file Utf8.cpp
 * Decoder, counter and encoder on any bytes, with buffers of any size, against the plain reference.
 */
#include "FuzzInput.h"
#include "Models/Utf8Reference.h"

#include <ImportCommon/StringOperations.h>

#include <vector>

using ImportCommon::StringOperations;

namespace {

constexpr wchar_t untouched = 0x7A7A7A7A;

void decode(const unsigned char* s, std::size_t n, std::size_t capacity) {
    require(StringOperations::StringLengthUTF8(s, n) == Utf8Reference::count(s, n), "count");
    const ExactArray<wchar_t> out(capacity, untouched);
    std::wstring expected;
    const std::size_t result = Utf8Reference::decode(s, n, capacity, expected);
    require(StringOperations::ConvertFromUTF8(s, n, out.get(), capacity) == result, "decoded length");
    expected.resize(capacity, untouched);
    require(std::wstring(out.get(), capacity) == expected, "decoded text");
}

/** The text that a string overload gives for @p n bytes of terminated text. */
std::wstring decodedString(const unsigned char* s, std::size_t n) {
    std::wstring expected;
    const std::size_t length = n > 0 && s[0] != 0 ? Utf8Reference::count(s, n) : 0;
    Utf8Reference::decode(s, SIZE_MAX, length, expected);
    expected.resize(length);
    return expected;
}

void decodeAll(const std::string& text, std::size_t n, std::size_t capacity) {
    const auto* const bytes = reinterpret_cast<const unsigned char*>(text.data());
    const ExactArray<unsigned char> counted(bytes, text.size());
    decode(counted.get(), counted.size(), capacity);

    const ExactArray<unsigned char> terminated(reinterpret_cast<const unsigned char*>(text.c_str()), text.size() + 1);
    decode(terminated.get(), SIZE_MAX, capacity);
    n %= terminated.size() + 1;
    require(StringOperations::ConvertFromUTF8(terminated.get(), n) == decodedString(terminated.get(), n),
            "string of n bytes");
    const std::size_t length = std::strlen(text.c_str());
    const std::wstring all = decodedString(terminated.get(), length);
    require(StringOperations::ConvertFromUTF8(terminated.get()) == all, "string");
    require(StringOperations::ConvertFromCurrentLocale(text) == all, "string from the locale");
}

void encodeAll(const std::wstring& wide, std::size_t capacity) {
    const ExactArray<wchar_t> characters(wide.data(), wide.size());
    const std::string expected = Utf8Reference::encode(wide, capacity);
    const ExactArray<unsigned char> out(capacity, 0x7A);
    const std::size_t stored =
        StringOperations::ConvertToUTF8(characters.get(), characters.size(), out.get(), capacity);
    require(stored == expected.size(), "encoded length");
    require(std::memcmp(out.get(), expected.data(), stored) == 0, "encoded text");
    require(capacity == 0 || out[stored] == 0, "terminator");
    for (std::size_t i = stored + 1; i < capacity; ++i) {
        require(out[i] == 0x7A, "bytes behind the terminator");
    }

    const std::string narrow = StringOperations::ConvertToCurrentLocale(wide);
    require(narrow == Utf8Reference::encode(wide, 65536), "string to the locale");
    const ExactArray<char> padded(capacity, 'z');
    StringOperations::ConvertToCurrentLocale(characters.get(), characters.size(), padded.get(), capacity);
    std::string filled = narrow;
    filled.resize(capacity);
    require(std::string(padded.get(), capacity) == filled, "buffer for the locale");

    const std::string number = Utf8Reference::encode(wide, 70);
    require(StringOperations::IntFromWString(wide) == std::atoi(number.c_str()), "number");
    std::string latin;
    const bool fits = StringOperations::TryConvertToIsoLatin1(wide, latin);
    require(latin.size() == wide.size(), "length of ISO 8859-1 text");
    for (std::size_t i = 0; fits && i < wide.size(); ++i) {
        require(latin[i] == static_cast<char>(wide[i]), "ISO 8859-1 text");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzInput input(data, size);
    const auto takeSize = [&input]() -> std::size_t {
        const std::size_t size = input.take<std::uint8_t>();
        return size < 192 ? size : (size - 191) * 32; // the last ones stand for long texts
    };
    const std::size_t capacity = takeSize();
    const std::size_t n = takeSize();
    const std::string text = input.bytes();
    decodeAll(text, n, capacity);

    // Characters of one to four bytes, so that short inputs reach every length of sequence.
    FuzzInput characters(reinterpret_cast<const std::uint8_t*>(text.data()), text.size());
    std::wstring wide;
    while (!characters.empty()) {
        const unsigned int kind = characters.below(4);
        wide += static_cast<wchar_t>(kind == 0   ? characters.take<std::uint8_t>()
                                     : kind == 1 ? characters.take<std::uint16_t>() & 0xFFFU
                                     : kind == 2 ? characters.take<std::uint16_t>()
                                                 : characters.take<std::uint32_t>());
    }
    encodeAll(wide, capacity);
    return 0;
}
