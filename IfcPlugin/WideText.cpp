#include "WideText.h"

namespace {

constexpr wchar_t replacement = 0xFFFD;

/** Bytes of the character that begins with @p lead; 0 for a byte that can't begin one. */
std::size_t lengthOf(unsigned lead) {
    return lead < 0x80 ? 1 : lead < 0xC2 ? 0 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : lead < 0xF5 ? 4 : 0;
}

} // namespace

std::wstring wideText(std::string_view utf8) {
    std::wstring wide;
    wide.reserve(utf8.size());
    for (std::size_t i = 0; i < utf8.size();) {
        const unsigned lead = static_cast<unsigned char>(utf8[i]);
        const std::size_t length = lengthOf(lead);
        unsigned code = length < 2 ? lead : lead & (0x7Fu >> length);
        std::size_t known = 1;
        for (; known < length && i + known < utf8.size(); ++known) {
            const unsigned byte = static_cast<unsigned char>(utf8[i + known]);
            if ((byte & 0xC0) != 0x80) {
                break;
            }
            code = code << 6 | (byte & 0x3F);
        }
        wide += known == length ? static_cast<wchar_t>(code) : replacement;
        i += known;
    }
    return wide;
}
