/**
 * @file ComparisonPage.h
 * The page of a comparison, from what an import wrote.
 */
#pragma once

#include "output/Picture.h"

#include <string>
#include <vector>

/** Where the page finds what a comparison does not hold. */
struct PageSources {
    const std::vector<ObjectRecord>& objects;         ///< that are there now
    const std::vector<ObjectRecord>& previousObjects; ///< that the comparison was made with
    std::string streams;                              ///< folder of the streams of this import
    std::string previousStreams; ///< of the last one; objects whose shapes are not found there are drawn as boxes
};

/**
 * The page as HTML. Shapes from before stand where the displacement of the whole took them. Throws Failure when the
 * program was built without the drawing library, or when the streams of this import can't be read.
 */
std::string comparisonPageText(const Outcome& content, const PageSources& sources);
