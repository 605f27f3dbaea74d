/**
 * @file HtmlPage.h
 * The result of a comparison as a page that needs nothing but a browser.
 */
#pragma once

#include <string>
#include <vector>

/** The plan of one storey. */
struct PagePlan {
    std::string storey; ///< its name, as in the report
    std::string svg;    ///< a whole document; elements of an object have its index in the report as data-object
};

/** Whether this program was built with the library that draws in the page. */
bool htmlPageAvailable();

/**
 * HTML with everything inside; it loads nothing when it is opened, and no name in the model becomes markup.
 * @param report  the report, JSON of format 2
 * @param shapes  the bytes of a ShapeBlock; objects without a shape in it are drawn as their boxes
 * @param plans   in the order in which they are shown and printed
 * @return the page; empty without htmlPageAvailable()
 */
std::string htmlPageText(const std::string& report, const std::string& shapes, const std::vector<PagePlan>& plans);
