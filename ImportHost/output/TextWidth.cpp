#include "output/TextWidth.h"

namespace {

struct Range {
    char32_t first;
    char32_t last;
};

constexpr Range combining[] = {{0x0300, 0x036F}, {0x0483, 0x0489}, {0x0591, 0x05BD}, {0x064B, 0x065F},
                               {0x1AB0, 0x1AFF}, {0x1DC0, 0x1DFF}, {0x200B, 0x200F}, {0x20D0, 0x20FF},
                               {0xFE00, 0xFE0F}, {0xFE20, 0xFE2F}};

constexpr Range wide[] = {{0x1100, 0x115F},  {0x2E80, 0x303E},   {0x3041, 0xA4CF},   {0xA960, 0xA97C},
                          {0xAC00, 0xD7A3},  {0xF900, 0xFAFF},   {0xFE30, 0xFE6F},   {0xFF00, 0xFF60},
                          {0xFFE0, 0xFFE6},  {0x1F300, 0x1F64F}, {0x1F680, 0x1F6FF}, {0x1F900, 0x1FAFF},
                          {0x20000, 0x3FFFD}};

template <std::size_t Size>
bool isAmong(const Range (&ranges)[Size], char32_t character) {
    for (const Range& range : ranges) {
        if (character >= range.first && character <= range.last) {
            return true;
        }
    }
    return false;
}

/** Takes the next character off well-formed UTF-8. */
char32_t nextCharacter(std::string_view& text) {
    const auto lead = static_cast<unsigned char>(text.front());
    const std::size_t size = lead < 0xC0 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    char32_t character = size == 1 ? lead : lead & (0x7Fu >> size);
    for (std::size_t i = 1; i < size && i < text.size(); ++i) {
        character = character << 6 | (static_cast<unsigned char>(text[i]) & 0x3Fu);
    }
    text.remove_prefix(size < text.size() ? size : text.size());
    return character;
}

} // namespace

std::size_t columnsOf(std::string_view text) {
    std::size_t columns = 0;
    while (!text.empty()) {
        const char32_t character = nextCharacter(text);
        columns += isAmong(combining, character) ? 0 : isAmong(wide, character) ? 2 : 1;
    }
    return columns;
}
