/**
 * @file IfcNames.h
 * Names as they stand in the file.
 */
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

/**
 * The names of everything in a file that has a GlobalId. The reader gives names too, but takes blanks out of them and
 * loses most letters beyond ASCII.
 */
class IfcNames {
public:
    /** Looks for names in the text of a file, which has to live as long as this object. */
    explicit IfcNames(std::string_view text);

    /** A name in UTF-8; nothing when there is none under this GlobalId, or more than one. */
    std::optional<std::string> find(const std::string& globalId) const;

private:
    std::unordered_map<std::string_view, std::optional<std::string_view>> names_; ///< as encoded in the file
};

/** A text of the file in UTF-8: quotes and backslashes are doubled there, other letters escaped. */
std::string decodeStepText(std::string_view text);
