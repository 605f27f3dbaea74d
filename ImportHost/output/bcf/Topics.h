/**
 * @file Topics.h
 * What a BCF file is about.
 */
#pragma once

#include "output/Outcome.h"

#include <string>
#include <vector>

/** One finding, about one object or several with the same status. */
struct BcfTopic {
    std::string guid; ///< UUID, the same for the same objects of models of the same names
    std::string title;
    std::string description;
    std::vector<const Change*> changes; ///< at least one
    Box box;                            ///< around the objects where they are now, or would be
};

/** A UUID that belongs to a text. */
std::string uuidOf(const std::string& text);

/** One topic for each object that is not unchanged; when there are more than @p limit, one for each group of them. */
std::vector<BcfTopic> topicsOf(const Outcome& outcome, std::size_t limit);
