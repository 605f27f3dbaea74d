/**
 * @file PropertyList.h
 * The properties and attributes of an object, kept to tell on the next import which of them changed.
 */
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/**
 * All properties of an object as one text, in an order that depends on nothing but themselves: for each of them the
 * set's name, the name and the value in a field, as in the streams. A value is a quote and a text, or else a number,
 * "true", "false" or "unknown". A whole number has no point, a real one has a point or an exponent. Behind a number that
 * is measured in another unit than SI's stand a blank and the factor that turns it into the latter.
 */
struct PropertyList {
    bool isKnown = false;      ///< false when they come from a state that keeps none
    bool areUnitsKnown = true; ///< false when they come from a state that does not tell factors
    std::string digest;        ///< of the text
    std::string text;
};

/** What an object itself says, beside its property sets: "Tag", "Storey" and so on, with their values. */
using Attributes = std::map<std::string, std::string, std::less<>>;

/** What the attributes stream says of an object. */
struct ObjectData {
    std::optional<Attributes> attributes; ///< nothing when the plug-in hands over none
    PropertyList properties;
};

/**
 * Reads what an attributes stream says of @p objectCount objects. Throws std::runtime_error with the line's number and
 * what is wrong with it.
 */
std::vector<ObjectData> readObjectData(std::string_view attributesStream, std::size_t objectCount);

/** Appends the fields of a line of the state, and back. fromFields throws std::runtime_error. */
void appendPropertyList(std::string& text, const PropertyList& list);
PropertyList propertyListFromFields(std::string_view fields);
