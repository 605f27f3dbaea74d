#include "output/plan/SvgText.h"

#include <PluginKit/Text.h>

#include <algorithm>
#include <cstdio>

namespace {

/** Of a sans-serif font, a little more than letters are wide on average. */
constexpr double letterWidth = 0.56;

bool continuesCharacter(char c) {
    return (static_cast<unsigned char>(c) & 0xC0) == 0x80;
}

} // namespace

std::string svgNumber(double value) {
    char buffer[400];
    std::snprintf(buffer, sizeof buffer, "%.1f", value);
    return buffer;
}

std::string xmlCharacters(std::string_view text) {
    std::string result = printable(text);
    // The two characters that UTF-8 has and XML forbids.
    for (const std::string_view forbidden : {"\xEF\xBF\xBE", "\xEF\xBF\xBF"}) {
        for (std::size_t at = result.find(forbidden); at != std::string::npos; at = result.find(forbidden, at)) {
            result.replace(at, forbidden.size(), "?");
        }
    }
    return result;
}

std::string xmlText(std::string_view text) {
    std::string result;
    for (const char c : xmlCharacters(text)) {
        switch (c) {
        case '&':
            result += "&amp;";
            break;
        case '<':
            result += "&lt;";
            break;
        case '>':
            result += "&gt;";
            break;
        case '"':
            result += "&quot;";
            break;
        default:
            result += c;
        }
    }
    return result;
}

std::string svgLine(double x, double y, std::string_view text, const char* className, const char* anchor) {
    std::string attributes = className[0] == '\0' ? "" : std::string(" class=\"") + className + '"';
    if (anchor != std::string_view("start")) {
        attributes += std::string(" text-anchor=\"") + anchor + '"';
    }
    return "<text" + attributes + " x=\"" + svgNumber(x) + "\" y=\"" + svgNumber(y) + "\">" + xmlText(text) +
           "</text>\n";
}

double textWidth(std::string_view text, double fontSize) {
    const auto letters = std::count_if(text.begin(), text.end(), [](char c) { return !continuesCharacter(c); });
    return static_cast<double>(letters) * letterWidth * fontSize;
}

std::string fittingText(const std::string& text, double width, double fontSize) {
    if (textWidth(text, fontSize) <= width) {
        return text;
    }
    std::string kept = text;
    while (!kept.empty() && textWidth(kept, fontSize) + fontSize > width) {
        while (kept.size() > 1 && continuesCharacter(kept.back())) {
            kept.pop_back();
        }
        kept.pop_back();
    }
    return kept + "\u2026";
}
