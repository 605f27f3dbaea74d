/**
 * @file HtmlPage.h
 * The result of a comparison as a page that needs nothing but a browser.
 */
#pragma once

#include "output/Picture.h"

#include <string>
#include <vector>

/** Whether this program was built with the library that draws in the page. */
bool htmlPageAvailable();

/** What a page is made of. */
struct PageContent {
    std::string report;            ///< JSON of format 2
    std::string time;              ///< of the import, as 2026-05-31T12:00:00Z
    std::string shapes;            ///< the bytes of a ShapeBlock
    std::vector<StoreyPlan> plans; ///< in the order in which they are shown and printed
};

/**
 * HTML with everything inside; it loads nothing when it is opened, and no name in the model becomes markup. Empty
 * without htmlPageAvailable().
 */
std::string htmlPageText(const PageContent& content);
