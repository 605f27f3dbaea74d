/**
 * @file StepText.h
 * Reads the text of a STEP file: its instances, their arguments and what those stand for.
 *
 * Everything here works on views of the text and never looks beyond them, however the text ends. Blanks, line breaks
 * and comments may stand between any two parts.
 */
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace IfcReader {

/** One instance: #7=IFCWALL('2O2Fr$t4X7Zf8NOew3FNtn',#33,'Wall'); */
struct StepInstance {
    std::uint64_t id = 0;
    std::string_view keyword;
    std::string_view arguments; ///< from behind the opening parenthesis up to the semicolon
};

/** Goes through arguments, or the members of a list, up to the parenthesis that closes them. */
class StepArguments {
public:
    /** @param text begins behind the opening parenthesis */
    explicit StepArguments(std::string_view text) : rest_(text) {}

    /** The next argument without blanks around it; nothing when there are no more. */
    std::optional<std::string_view> next();

    /** The argument that comes after @p count others; empty when there is none. */
    std::string_view nextAfter(std::size_t count);

    /** Passes over arguments. @return whether there were so many */
    bool skip(std::size_t count);

    /** Goes into the next argument, a list, without looking for its end; nothing when it is none or there is none. */
    std::optional<StepArguments> nextList();

    /** The next argument that names an instance; those that don't are passed over. Nothing at the end. */
    std::optional<std::uint64_t> nextReference();

    /** The next argument if it is written as a plain decimal number; else nothing, and it is still the next one. */
    std::optional<double> nextDecimal();

private:
    bool begin();

    std::string_view rest_;
    bool first_ = true;
};

/** The members of an argument that is a list; none of any other. */
StepArguments listMembers(std::string_view argument);

/** The number behind the '#' of an argument that names an instance. */
std::optional<std::uint64_t> stepReference(std::string_view argument);

/** The text between the quotes of an argument, as encoded; nothing for an argument of another kind. */
std::optional<std::string_view> stepQuoted(std::string_view argument);

/** The text of an argument in UTF-8; empty for an argument of another kind. */
std::string stepText(std::string_view argument);

/** The word between the dots of an argument that is an enumeration value; empty for any other. */
std::string_view stepEnumeration(std::string_view argument);

/** A number, with or without a decimal point, that is all of an argument. */
std::optional<double> stepReal(std::string_view argument);
std::optional<long long> stepInteger(std::string_view argument);

/** A value with its type, IFCLABEL('x'): the keyword, and what stands between the parentheses. */
struct StepTyped {
    std::string_view keyword;
    std::string_view value;
};
std::optional<StepTyped> stepTyped(std::string_view argument);

/** A text of the file in UTF-8: quotes and backslashes are doubled there, other letters escaped. */
std::string decodeStepText(std::string_view text);

} // namespace IfcReader
