/**
 * @file StringOperations.h
 * Conversions between wide text, UTF-8 and the locale's narrow text.
 */
#pragma once

#include <ImportCommon/Export.h>

#include <cstddef>
#include <cstdint>
#include <string>

namespace ImportCommon {

/**
 * Text conversions.
 *
 * Wide text holds one Unicode code point per `wchar_t` (32 bits). The UTF-8 codec handles the Basic Multilingual Plane:
 * sequences of one to three bytes. Lead bytes of longer sequences and stray continuation bytes are invalid; the second
 * and third byte of a sequence are taken as they come, and overlong forms are accepted. Stored data depends on these
 * rules, so they are kept as they are.
 *
 * Each function that meets invalid UTF-8 says so once per process on the log, stops in an attached debugger then, and
 * gives the result named at it. Functions that return or fill a string throw `std::bad_alloc` without memory, and so
 * does the buffer form of ConvertToCurrentLocale; nothing else is ever thrown.
 *
 * A pointer to text or to a buffer may be null only where its size is 0 or the function says so.
 */
class IMPORT_COMMON_API StringOperations {
public:
    /** Character sets of single-byte text, by the number of their code page; other values mean none of these. */
    enum CharSet_e : int {
        CharSet_ISO8859_1 = 28591, ///< Latin-1, western European
        CharSet_ISO8859_2 = 28592, ///< Latin-2, central European
        CharSet_ISO8859_3 = 28593, ///< Latin-3, southern European
        CharSet_ISO8859_4 = 28594, ///< Latin-4, northern European
        CharSet_ISO8859_5 = 28595, ///< Cyrillic
        CharSet_ISO8859_6 = 28596, ///< Arabic
        CharSet_ISO8859_7 = 28597, ///< Greek, first edition (1987)
        CharSet_ISO8859_8 = 28598, ///< Hebrew, first edition (1988)
        CharSet_ISO8859_9 = 28599  ///< Latin-5, Turkish
    };

    /**
     * Counts the characters of UTF-8 text up to its zero byte or @p n bytes, whichever comes first.
     *
     * A sequence that is cut off by the end of the text counts as one character.
     *
     * REQUIRES: @p n bytes, or a zero byte before.
     *
     * @param s  the text
     * @param n  number of bytes, or `SIZE_MAX` for text that ends with a zero byte
     * @return the number of characters; 0 when a lead byte is invalid
     */
    static std::size_t StringLengthUTF8(const unsigned char* s, std::size_t n);

    /**
     * Decodes UTF-8 text into a buffer.
     *
     * A terminating zero byte is stored and counted when there is room; when @p n bytes end first, no terminator is
     * added. A sequence that @p n cuts off is dropped or, when part of its continuation is there, invalid; in
     * terminated text the zero byte ends it, and it is stored with zero bits for what is missing. Once the buffer is
     * full, further one-byte characters are dropped while a longer sequence ends the conversion as invalid; that is
     * meant.
     *
     * REQUIRES: @p n bytes, or a zero byte before; room for @p capacity characters.
     *
     * @param s         the text
     * @param n         number of bytes, or `SIZE_MAX` for text that ends with a zero byte
     * @param out       receives the characters
     * @param capacity  room in @p out, in characters
     * @return the number of characters stored; 0 when a lead byte is invalid (what was stored before stays in @p out)
     */
    static std::size_t ConvertFromUTF8(const unsigned char* s, std::size_t n, wchar_t* out, std::size_t capacity);

    /**
     * Decodes UTF-8 text into a string of `StringLengthUTF8(s, n)` characters.
     *
     * REQUIRES: the text ends with a zero byte, at or behind @p n; @p n limits the count of characters, but decoding
     * reads on up to the terminator.
     *
     * @param s  the text; may be null
     * @param n  number of bytes that are counted
     * @return the text; empty for a null pointer, empty or invalid text
     */
    static std::wstring ConvertFromUTF8(const unsigned char* s, std::size_t n);

    /**
     * Decodes zero-terminated UTF-8 text; empty for a null pointer, empty or invalid text.
     * @param s  the text; may be null
     * @return the wide text
     */
    static std::wstring ConvertFromUTF8(const unsigned char* s);

    /**
     * Decodes zero-terminated UTF-8 text, which must not be null, into an array; result as for the buffer form.
     * @param s    the text
     * @param out  receives the characters
     * @return the number of characters stored
     */
    template <std::size_t N>
    static std::size_t ConvertFromUTF8(const unsigned char* s, wchar_t (&out)[N]) {
        return ConvertFromUTF8(s, SIZE_MAX, out, N);
    }

    /**
     * Decodes @p n bytes of UTF-8 text into an array; result as for the buffer form.
     * @param s    the text
     * @param n    number of bytes, or `SIZE_MAX` for text that ends with a zero byte
     * @param out  receives the characters
     * @return the number of characters stored
     */
    template <std::size_t N>
    static std::size_t ConvertFromUTF8(const unsigned char* s, std::size_t n, wchar_t (&out)[N]) {
        return ConvertFromUTF8(s, n, out, N);
    }

    /**
     * Encodes wide text as UTF-8 and ends it with a zero byte.
     *
     * Stops behind a zero character. Characters outside the Basic Multilingual Plane are dropped. A character that does
     * not fit is skipped, and a later, shorter one that still fits is written; that is meant.
     *
     * REQUIRES: @p n characters; room for @p capacity bytes.
     *
     * @param w         the wide text
     * @param n         number of wide characters
     * @param out       receives the bytes
     * @param capacity  room in @p out in bytes, the terminator included; with 0 nothing is written
     * @return the number of bytes written, without the added terminator
     */
    static std::size_t ConvertToUTF8(const wchar_t* w, std::size_t n, unsigned char* out, std::size_t capacity);

    /**
     * Encodes a string as UTF-8 into an array; as the buffer form.
     * @param w    the wide text
     * @param out  receives the bytes
     * @return the number of bytes written, without the added terminator
     */
    template <std::size_t N>
    static std::size_t ConvertToUTF8(const std::wstring& w, unsigned char (&out)[N]) {
        return ConvertToUTF8(w.data(), w.size(), out, N);
    }

    /**
     * The value as decimal text, printed as a signed number: 4294967295 gives "-1". That is meant.
     * @param value  the number
     * @return the text
     */
    static std::wstring AsWString(unsigned int value);

    /**
     * The number at the start of the text, as `atoi` reads it: 0 without one. Only the first 69 bytes count.
     * @param w  the text
     * @return the number
     */
    static int IntFromWString(const std::wstring& w);

    /**
     * Converts @p n wide characters to the locale's narrow text, which is UTF-8 here, and fills the rest of @p out with
     * zeros. Text that fills the buffer gets no terminator and may be cut within a character. A null pointer, and more
     * characters than a string can have, count as no text.
     *
     * REQUIRES: @p n characters otherwise; room for @p capacity bytes.
     *
     * @param w         the wide text
     * @param n         number of wide characters
     * @param out       receives the bytes
     * @param capacity  room in @p out in bytes
     */
    static void ConvertToCurrentLocale(const wchar_t* w, std::size_t n, char* out, std::size_t capacity);

    /**
     * Converts to the locale's narrow text, which is UTF-8 here: at most 65535 bytes, as ConvertToUTF8 makes them.
     * @param w  the wide text
     * @return the narrow text
     */
    static std::string ConvertToCurrentLocale(const std::wstring& w);

    /**
     * Decodes the locale's narrow text, which is UTF-8 here; arguments and result as for ConvertFromUTF8.
     * @param s         the text
     * @param n         number of bytes, or `SIZE_MAX` for text that ends with a zero byte
     * @param out       receives the characters
     * @param capacity  room in @p out, in characters
     * @return the number of characters stored
     */
    static std::size_t ConvertFromCurrentLocale(const char* s, std::size_t n, wchar_t* out, std::size_t capacity);

    /**
     * Decodes the locale's narrow text, which is UTF-8 here, up to its first zero byte.
     * @param s  the text
     * @return the wide text
     */
    static std::wstring ConvertFromCurrentLocale(const std::string& s);

    /**
     * The character of a byte in a character set. Positions that a set leaves unassigned give private-use characters
     * from U+F79C to U+F7FB. In a set that is none of CharSet_e the byte is taken as a signed number, so that 0x80 to
     * 0xFF give negative values; that is meant.
     * @param set  the character set
     * @param c    the byte
     * @return the character
     */
    static wchar_t ConvertIsoLatinToWideChar(CharSet_e set, char c);

    /**
     * Converts text to ISO 8859-1 if all of it fits.
     * @param w    the wide text
     * @param out  receives the text; when a character above 255 is met, the bytes before it, and zeros up to the length
     *             of @p w. Negative characters are stored by their low byte.
     * @return whether every character fits
     */
    static bool TryConvertToIsoLatin1(const std::wstring& w, std::string& out);
};

} // namespace ImportCommon
