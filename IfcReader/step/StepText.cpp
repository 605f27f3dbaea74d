#include "step/StepText.h"

#include "step/IsoLatin.h"
#include "step/StepCharacters.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace IfcReader {

namespace {

bool isWordCharacter(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}

/** Takes what stands up to the end of @p found off the front; everything when it is not there. */
void skipBehind(std::string_view& text, std::string_view found, std::size_t from) {
    const std::size_t at = text.find(found, from);
    text.remove_prefix(at == std::string_view::npos ? text.size() : at + found.size());
}

void skipBlanksAndComments(std::string_view& text) {
    for (;;) {
        while (!text.empty() && isBlank(text[0])) {
            text.remove_prefix(1);
        }
        if (text.size() < 2 || text[0] != '/' || text[1] != '*') {
            return;
        }
        skipBehind(text, "*/", 2);
    }
}

/** Most parts have neither before them. */
inline void skipBlanks(std::string_view& text) {
    if (!text.empty() && (isBlank(text[0]) || text[0] == '/')) {
        skipBlanksAndComments(text);
    }
}

bool take(std::string_view& text, char c) {
    skipBlanks(text);
    if (text.empty() || text[0] != c) {
        return false;
    }
    text.remove_prefix(1);
    return true;
}

std::string_view takeWord(std::string_view& text) {
    skipBlanks(text);
    std::size_t size = 0;
    while (size < text.size() && isWordCharacter(text[size])) {
        ++size;
    }
    const std::string_view word = text.substr(0, size);
    text.remove_prefix(size);
    return word;
}

template <typename Number>
std::optional<Number> takeNumber(std::string_view& text) {
    Number value{};
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    if (result.ec != std::errc()) {
        return std::nullopt;
    }
    text.remove_prefix(static_cast<std::size_t>(result.ptr - text.data()));
    return value;
}

std::optional<std::uint64_t> takeReference(std::string_view& text) {
    if (!take(text, '#')) {
        return std::nullopt;
    }
    constexpr std::size_t safeDigits = 18; // a number of so many fits in any case
    std::uint64_t value = 0;
    std::size_t i = 0;
    for (; i < text.size() && i < safeDigits && isDigit(text[i]); ++i) {
        value = value * 10 + static_cast<std::uint64_t>(text[i] - '0');
    }
    if (i == 0 || i == safeDigits) {
        return takeNumber<std::uint64_t>(text);
    }
    text.remove_prefix(i);
    return value;
}

/**
 * Takes a number that is written with few digits and without an exponent, as most are. Both digits and power of ten fit
 * a double exactly then, so their quotient is rounded once: it is the very number that a thorough conversion gives.
 */
std::optional<double> takeDecimal(std::string_view& text) {
    static constexpr std::array<double, 23> powers = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                                      1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                                      1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
    constexpr std::int64_t mostExact = std::int64_t{1} << 53;
    const bool isNegative = !text.empty() && text[0] == '-';
    std::size_t i = isNegative ? 1 : 0;
    std::int64_t digits = 0;
    const auto takeDigits = [&] {
        const std::size_t first = i;
        for (; i < text.size() && isDigit(text[i]) && digits <= mostExact; ++i) {
            digits = digits * 10 + (text[i] - '0');
        }
        return i - first;
    };
    if (takeDigits() == 0) {
        return std::nullopt;
    }
    std::size_t decimals = 0;
    if (i < text.size() && text[i] == '.') {
        ++i;
        decimals = takeDigits();
    }
    if (digits > mostExact || decimals >= powers.size()) {
        return std::nullopt;
    }
    const double value = static_cast<double>(digits) / powers[decimals];
    text.remove_prefix(i);
    return isNegative ? -value : value;
}

/** The number that is all of an argument. */
template <typename Number>
std::optional<Number> wholeNumber(std::string_view argument) {
    skipBlanks(argument);
    if (argument.substr(0, 1) == "+" && argument.substr(1, 1) != "-") {
        argument.remove_prefix(1);
    }
    // What a file may write as a number begins with a digit: no "inf" and "nan".
    const std::size_t digit = argument.substr(0, 1) == "-" ? 1 : 0;
    if (digit >= argument.size() || argument[digit] < '0' || argument[digit] > '9') {
        return std::nullopt;
    }
    const std::optional<Number> value = takeNumber<Number>(argument);
    skipBlanks(argument);
    return argument.empty() ? value : std::nullopt;
}

/** Bytes that mean something on the way to the end of an argument; those in between are passed over at once. */
constexpr std::array<bool, 256> meaningTable() {
    std::array<bool, 256> table{};
    for (const char c : {'\'', '/', '(', ')', ','}) {
        table[static_cast<unsigned char>(c)] = true;
    }
    return table;
}
constexpr std::array<bool, 256> meaning = meaningTable();

/** Takes what stands before the comma or parenthesis that ends an argument. */
std::string_view takeArgument(std::string_view& text) {
    std::size_t depth = 0;
    std::size_t i = 0;
    while (i < text.size()) {
        const char c = text[i];
        if (!meaning[static_cast<unsigned char>(c)]) {
            ++i;
            continue;
        }
        if (depth == 0 && (c == ',' || c == ')')) {
            break;
        }
        if (c == '\'') {
            i = text.find('\'', i + 1); // of two quotes that stand for one, the second opens the text again
        } else if (c == '/' && i + 1 < text.size() && text[i + 1] == '*') {
            i = text.find("*/", i + 2);
            i += i == std::string_view::npos ? 0 : 1;
        } else if (c == '(') {
            ++depth;
        } else if (c == ')') {
            --depth;
        }
        i = i == std::string_view::npos ? text.size() : i + 1;
    }
    const std::string_view taken = text.substr(0, i);
    text.remove_prefix(taken.size());
    return taken;
}

} // namespace

/** Moves on to where the next argument begins; false when there is none. */
bool StepArguments::begin() {
    if (!first_ && !take(rest_, ',')) {
        return false;
    }
    skipBlanks(rest_);
    if (rest_.empty() || (first_ && rest_[0] == ')')) {
        return false;
    }
    first_ = false;
    return true;
}

std::optional<std::string_view> StepArguments::next() {
    if (!begin()) {
        return std::nullopt;
    }
    std::string_view argument = takeArgument(rest_);
    while (!argument.empty() && isBlank(argument.back())) {
        argument.remove_suffix(1);
    }
    return argument;
}

bool StepArguments::skip(std::size_t count) {
    for (; count > 0; --count) {
        if (!next()) {
            return false;
        }
    }
    return true;
}

std::string_view StepArguments::nextAfter(std::size_t count) {
    return skip(count) ? next().value_or(std::string_view()) : std::string_view();
}

std::optional<StepArguments> StepArguments::nextList() {
    return begin() && take(rest_, '(') ? std::optional<StepArguments>(rest_) : std::nullopt;
}

std::optional<std::uint64_t> StepArguments::nextReference() {
    while (begin()) {
        const auto reference = takeReference(rest_);
        takeArgument(rest_);
        if (reference) {
            return reference;
        }
    }
    return std::nullopt;
}

std::optional<double> StepArguments::nextDecimal() {
    const StepArguments before = *this;
    const auto number = begin() ? takeDecimal(rest_) : std::nullopt;
    if (number && !rest_.empty() && (rest_[0] == ',' || rest_[0] == ')')) {
        return number;
    }
    *this = before;
    return std::nullopt;
}

StepArguments listMembers(std::string_view argument) {
    return StepArguments(take(argument, '(') ? argument : std::string_view());
}

std::optional<std::uint64_t> stepReference(std::string_view argument) {
    return takeReference(argument);
}

std::optional<std::string_view> stepQuoted(std::string_view argument) {
    if (!take(argument, '\'')) {
        return std::nullopt;
    }
    for (std::size_t end = argument.find('\''); end != std::string_view::npos; end = argument.find('\'', end + 2)) {
        if (argument.substr(end + 1, 1) != "'") {
            return argument.substr(0, end);
        }
    }
    return std::nullopt;
}

std::string stepText(std::string_view argument) {
    return decodeStepText(stepQuoted(argument).value_or(std::string_view()));
}

std::string_view stepEnumeration(std::string_view argument) {
    if (!take(argument, '.')) {
        return {};
    }
    const std::string_view word = takeWord(argument);
    return argument.substr(0, 1) == "." ? word : std::string_view();
}

std::optional<double> stepReal(std::string_view argument) {
    std::string_view rest = argument;
    const auto decimal = takeDecimal(rest);
    return decimal && rest.empty() ? decimal : wholeNumber<double>(argument);
}

std::optional<long long> stepInteger(std::string_view argument) {
    return wholeNumber<long long>(argument);
}

std::optional<StepTyped> stepTyped(std::string_view argument) {
    const std::string_view keyword = takeWord(argument);
    if (keyword.empty() || keyword[0] < 'A' || !take(argument, '(')) {
        return std::nullopt;
    }
    return StepTyped{keyword, StepArguments(argument).next().value_or(std::string_view())};
}

namespace {

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

bool takePrefix(std::string_view& text, std::string_view prefix) {
    if (text.substr(0, prefix.size()) != prefix) {
        return false;
    }
    text.remove_prefix(prefix.size());
    return true;
}

/** Takes a number of hexadecimal digits off the front of @p text; nothing when they are not there. */
std::optional<std::uint32_t> takeHex(std::string_view& text, std::size_t digits) {
    if (text.size() < digits) {
        return std::nullopt;
    }
    std::uint32_t value = 0;
    const char* const end = text.data() + digits;
    if (std::from_chars(text.data(), end, value, 16).ptr != end) {
        return std::nullopt;
    }
    text.remove_prefix(digits);
    return value;
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
    takePrefix(text, "\\X0\\");
}

} // namespace

std::string decodeStepText(std::string_view text) {
    std::string out;
    int part = 1; // of ISO 8859
    out.reserve(text.size());
    while (!text.empty()) {
        const std::size_t plain = text.find_first_of("'\\\r\n");
        out += text.substr(0, plain);
        text.remove_prefix(plain == std::string_view::npos ? text.size() : plain);
        if (text.empty()) {
            break;
        }
        if (takePrefix(text, "''")) {
            out += '\'';
        } else if (takePrefix(text, "\\\\")) {
            out += '\\';
        } else if (takePrefix(text, "\\X2\\")) {
            appendUnits(out, text, 4);
        } else if (takePrefix(text, "\\X4\\")) {
            appendUnits(out, text, 8);
        } else if (takePrefix(text, "\\X\\")) {
            appendUtf8(out, takeHex(text, 2).value_or('?'));
        } else if (text.size() > 3 && takePrefix(text, "\\S\\")) {
            appendUtf8(out, isoLatinCharacter(part, static_cast<unsigned char>(0x80 | text[0])));
            text.remove_prefix(text.substr(0, 2) == "''" ? 2 : 1); // an apostrophe is doubled here as well
        } else if (text.size() > 3 && text[0] == '\\' && text[1] == 'P' && text[3] == '\\' && text[2] >= 'A' &&
                   text[2] <= 'I') {
            part = text[2] - 'A' + 1;
            text.remove_prefix(4);
        } else if (takePrefix(text, "\\N\\")) {
            out += '\n';
        } else if (takePrefix(text, "\\T\\")) {
            out += '\t';
        } else {
            if (text[0] != '\r' && text[0] != '\n') { // a long text may be broken into lines anywhere
                out += text[0];
            }
            text.remove_prefix(1);
        }
    }
    return out;
}

} // namespace IfcReader
