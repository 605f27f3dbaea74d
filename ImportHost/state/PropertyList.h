/**
 * @file PropertyList.h
 * The properties of an object, kept to tell on the next import which of them changed.
 */
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

/**
 * All properties of an object as one text, in an order that depends on nothing but themselves: for each of them the
 * set's name, the name and the value in a field, as in the streams. A value is a quote and a text, or else a number,
 * "true", "false" or "unknown".
 */
struct PropertyList {
    bool isKnown = false; ///< false when they come from a state that keeps none
    std::string digest;   ///< of the text
    std::string text;
};

/** A property that is not what it was. */
struct PropertyDifference {
    std::string set;
    std::string name;                  ///< inside of complex properties, their names and dots before it
    std::optional<std::string> before; ///< a value as in a PropertyList; nothing when it was not there
    std::optional<std::string> now;    ///< nothing when it is not there any more
};

/**
 * Reads the properties of @p objectCount objects from an attributes stream. Throws std::runtime_error with the line's
 * number and what is wrong with it.
 */
std::vector<PropertyList> readPropertyLists(std::string_view attributesStream, std::size_t objectCount);

/** What differs; nothing where one of both is not known. */
std::vector<PropertyDifference> differencesOf(const PropertyList& before, const PropertyList& now);

/** One line for people: the first difference, and how many more there are. Empty without differences. */
std::string shortText(const std::vector<PropertyDifference>& differences);

/** The fields of a line of the state, and back. fromFields throws std::runtime_error. */
std::string propertyListToFields(const PropertyList& list);
PropertyList propertyListFromFields(std::string_view fields);
