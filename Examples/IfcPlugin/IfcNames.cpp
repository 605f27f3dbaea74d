#include "IfcNames.h"

#include <ImportCommon/ExternalGUID.h>

#include <charconv>
#include <cstdint>

namespace {

constexpr std::size_t globalIdLength = ImportCommon::ExternalGUID::GlobalIdSize;

void appendUtf8(std::string& out, std::uint32_t c) {
    const auto byte = [&](std::uint32_t value) { out += static_cast<char>(value); };
    if (c < 0x80) {
        byte(c);
    } else if (c < 0x800) {
        byte(0xC0 | c >> 6);
        byte(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        byte(0xE0 | c >> 12);
        byte(0x80 | (c >> 6 & 0x3F));
        byte(0x80 | (c & 0x3F));
    } else if (c < 0x110000) {
        byte(0xF0 | c >> 18);
        byte(0x80 | (c >> 12 & 0x3F));
        byte(0x80 | (c >> 6 & 0x3F));
        byte(0x80 | (c & 0x3F));
    }
}

/** Takes a number of hexadecimal digits off the front of @p text; nothing when they are not there. */
std::optional<std::uint32_t> takeHex(std::string_view& text, std::size_t digits) {
    std::uint32_t value = 0;
    const char* const end = text.data() + digits;
    if (text.size() < digits || std::from_chars(text.data(), end, value, 16).ptr != end)
        return std::nullopt;
    text.remove_prefix(digits);
    return value;
}

bool take(std::string_view& text, std::string_view prefix) {
    if (text.substr(0, prefix.size()) != prefix)
        return false;
    text.remove_prefix(prefix.size());
    return true;
}

/** Code units in hexadecimal up to "\X0\". */
void appendUnits(std::string& out, std::string_view& text, std::size_t digits) {
    std::uint32_t high = 0;
    while (const auto unit = takeHex(text, digits)) {
        if (digits == 4 && *unit >= 0xD800 && *unit < 0xDC00) {
            high = *unit;
        } else {
            const bool isPair = high != 0 && *unit >= 0xDC00 && *unit < 0xE000;
            appendUtf8(out, isPair ? 0x10000 + ((high - 0xD800) << 10) + (*unit - 0xDC00) : *unit);
            high = 0;
        }
    }
    take(text, "\\X0\\");
}

void skipBlanks(std::string_view& text) {
    while (!text.empty() && (text[0] == ' ' || text[0] == '\t' || text[0] == '\r' || text[0] == '\n'))
        text.remove_prefix(1);
}

/** Takes a text in quotes off the front, as encoded; nothing when there is none. */
std::optional<std::string_view> takeQuoted(std::string_view& text) {
    if (text.empty() || text[0] != '\'')
        return std::nullopt;
    for (std::size_t end = text.find('\'', 1); end != std::string_view::npos; end = text.find('\'', end + 2)) {
        if (end + 1 < text.size() && text[end + 1] == '\'')
            continue;
        const std::string_view quoted = text.substr(1, end - 1);
        text.remove_prefix(end + 1);
        return quoted;
    }
    return std::nullopt;
}

} // namespace

IfcNames::IfcNames(std::string_view text) {
    // An instance begins with its GlobalId, its owner and its name: #7=IFCWALL('2O2Fr$t4X7Zf8NOew3FNtn',#33,'Wall',...
    for (std::size_t open = text.find('('); open != std::string_view::npos; open = text.find('(', open + 1)) {
        std::string_view rest = text.substr(open + 1);
        skipBlanks(rest);
        if (rest.size() < globalIdLength + 2 || rest[0] != '\'' || rest[globalIdLength + 1] != '\'')
            continue;
        const std::string_view globalId = rest.substr(1, globalIdLength);
        rest.remove_prefix(globalIdLength + 2);
        skipBlanks(rest);
        if (!take(rest, ","))
            continue;
        const std::size_t ownerEnd = rest.find_first_of(",(')");
        if (ownerEnd == std::string_view::npos || rest[ownerEnd] != ',')
            continue;
        rest.remove_prefix(ownerEnd + 1);
        skipBlanks(rest);
        const std::optional<std::string_view> name = takeQuoted(rest);
        if (!name)
            continue;
        const auto inserted = names_.emplace(globalId, name);
        if (!inserted.second && inserted.first->second != name)
            inserted.first->second.reset();
    }
}

std::optional<std::string> IfcNames::find(const std::string& globalId) const {
    const auto found = names_.find(globalId);
    if (found == names_.end() || !found->second)
        return std::nullopt;
    return decodeStepText(*found->second);
}

std::string decodeStepText(std::string_view text) {
    std::string out;
    while (!text.empty()) {
        if (take(text, "''")) {
            out += '\'';
        } else if (take(text, "\\\\")) {
            out += '\\';
        } else if (take(text, "\\X2\\")) {
            appendUnits(out, text, 4);
        } else if (take(text, "\\X4\\")) {
            appendUnits(out, text, 8);
        } else if (take(text, "\\X\\")) {
            appendUtf8(out, takeHex(text, 2).value_or('?'));
        } else if (text.size() > 3 && take(text, "\\S\\")) {
            appendUtf8(out, 0x80u | static_cast<unsigned char>(text[0]));
            text.remove_prefix(1);
        } else if (!take(text, "\r") && !take(text, "\n")) { // a long text may be broken into lines anywhere
            out += text[0];
            text.remove_prefix(1);
        }
    }
    return out;
}
