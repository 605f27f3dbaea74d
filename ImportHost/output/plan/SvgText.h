/**
 * @file SvgText.h
 * Pieces of an SVG document.
 */
#pragma once

#include <string>
#include <string_view>

/** A coordinate in the drawing. */
std::string svgNumber(double value);

/** Text or the value of an attribute: printable, and without markup or characters that XML forbids. */
std::string xmlText(std::string_view text);

/** UTF-8 text for a person: printable, and free of characters that XML forbids; markup is left as it is. */
std::string xmlCharacters(std::string_view text);

/** A line of text. @p className may be empty; @p anchor is "start", "middle" or "end". */
std::string svgLine(double x, double y, std::string_view text, const char* className, const char* anchor = "start");

/** As much of a text as a width has room for, with an ellipsis where something is left out. */
std::string fittingText(const std::string& text, double width, double fontSize);

/** How wide a text is, roughly. */
double textWidth(std::string_view text, double fontSize);
