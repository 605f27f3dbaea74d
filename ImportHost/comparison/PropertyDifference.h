/**
 * @file PropertyDifference.h
 * What differs between the properties and attributes of an object before and now.
 */
#pragma once

#include "state/ObjectRecord.h"

#include <optional>
#include <string>
#include <vector>

/** The set under which an object's own attributes are listed. */
constexpr const char* attributesSetName = "Attributes";

/** A property that is not what it was. */
struct PropertyDifference {
    std::string set;
    std::string name;                  ///< inside of complex properties, their names and dots before it
    std::optional<std::string> before; ///< a quote and a text, or else a number, "true", "false" or "unknown";
                                       ///< nothing when it was not there
    std::optional<std::string> now;    ///< nothing when it is not there any more
};

/**
 * The attributes that differ, then the properties; nothing of what is not known on both sides. Numbers are compared as
 * the measures they stand for. They are given in the units of their models, or in SI units where those differ.
 */
std::vector<PropertyDifference> differencesOf(const ObjectRecord& before, const ObjectRecord& now);

/** One line for people: the first difference, and how many more there are. Empty without differences. */
std::string shortText(const std::vector<PropertyDifference>& differences);
