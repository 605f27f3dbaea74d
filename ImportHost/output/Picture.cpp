#include "output/Picture.h"

#include <PluginKit/Text.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace {

// In pixels.
constexpr double pictureWidth = 1200.0;
constexpr double maxPlanHeight = 900.0;
constexpr double margin = 30.0;
constexpr double headHeight = 96.0;
constexpr double footHeight = 56.0;

/** The drawing's own part of the picture, and how metres become pixels. */
struct Plan {
    double left = 0.0;
    double top = 0.0;
    double scale = 1.0;
    double height = 0.0;

    explicit Plan(const std::vector<Change>& changes) {
        bool empty = true;
        double right = 0.0;
        double bottom = 0.0;
        for (const Change& change : changes) {
            for (const auto& polygon : change.record().footprint) {
                for (const Point& p : polygon) {
                    left = empty ? p.x : std::min(left, p.x);
                    right = empty ? p.x : std::max(right, p.x);
                    bottom = empty ? p.y : std::min(bottom, p.y);
                    top = empty ? p.y : std::max(top, p.y);
                    empty = false;
                }
            }
        }
        const double width = std::max(right - left, 0.001);
        const double depth = std::max(top - bottom, 0.001);
        scale = std::min((pictureWidth - 2.0 * margin) / width, maxPlanHeight / depth);
        height = depth * scale;
        left -= ((pictureWidth - 2.0 * margin) / scale - width) / 2.0;
    }

    double x(const Point& p) const { return margin + (p.x - left) * scale; }
    double y(const Point& p) const { return headHeight + (top - p.y) * scale; }
};

std::string number(double value) {
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, "%.1f", value);
    return buffer;
}

std::string xmlText(std::string_view text) {
    std::string result;
    for (const char c : printable(text)) {
        if (c == '&') {
            result += "&amp;";
        } else if (c == '<') {
            result += "&lt;";
        } else if (c == '>') {
            result += "&gt;";
        } else if (c == '"') {
            result += "&quot;";
        } else {
            result += c;
        }
    }
    // The two characters that UTF-8 has and XML forbids.
    for (const std::string_view forbidden : {"\xEF\xBF\xBE", "\xEF\xBF\xBF"}) {
        for (std::size_t at = result.find(forbidden); at != std::string::npos; at = result.find(forbidden)) {
            result.replace(at, forbidden.size(), "?");
        }
    }
    return result;
}

double boxArea(const Footprint& footprint) {
    if (footprint.empty()) {
        return 0.0;
    }
    Point low = footprint.front().front();
    Point high = low;
    for (const auto& polygon : footprint) {
        for (const Point& p : polygon) {
            low = {std::min(low.x, p.x), std::min(low.y, p.y)};
            high = {std::max(high.x, p.x), std::max(high.y, p.y)};
        }
    }
    return (high.x - low.x) * (high.y - low.y);
}

std::string objectPath(const Plan& plan, const Change& change) {
    const ObjectRecord& record = change.record();
    std::string text = "<path class=\"" + std::string(statusName(change.status())) + "\" d=\"";
    for (const auto& polygon : record.footprint) {
        char command = 'M';
        for (const Point& p : polygon) {
            text += command + number(plan.x(p)) + ' ' + number(plan.y(p));
            command = 'L';
        }
        text += 'Z';
    }
    return text + "\"><title>" + xmlText(record.className) + ' ' + xmlText(record.name) + " (" +
           statusName(change.status()) + ')' +
           xmlText((change.properties.empty() ? "" : " ") + shortText(change.properties)) + "</title></path>\n";
}

/** Unchanged objects below changed ones, and large ones below small ones. */
std::string objectPaths(const Plan& plan, const std::vector<Change>& changes) {
    struct Drawn {
        const Change* change;
        bool changed;
        double area;
    };
    std::vector<Drawn> drawn;
    for (const Change& change : changes) {
        if (!change.record().footprint.empty()) {
            drawn.push_back({&change, change.status() != Status::Unchanged, boxArea(change.record().footprint)});
        }
    }
    std::stable_sort(drawn.begin(), drawn.end(), [](const Drawn& a, const Drawn& b) {
        return a.changed != b.changed ? b.changed : a.area > b.area;
    });
    std::string text;
    for (const Drawn& object : drawn) {
        text += objectPath(plan, *object.change);
    }
    return text;
}

std::string legend(const Comparison& comparison) {
    std::string text;
    double x = margin;
    for (const Status status : allStatuses) {
        text += "<rect class=\"" + std::string(statusName(status)) + "\" x=\"" + number(x) +
                "\" y=\"56\" width=\"18\" height=\"18\"/><text x=\"" + number(x + 23.0) + "\" y=\"70\">" +
                statusName(status) + ' ' + std::to_string(comparison.count(status)) + "</text>\n";
        x += (pictureWidth - 2.0 * margin) / static_cast<double>(std::size(allStatuses));
    }
    return text;
}

/** A bar of a round number of metres, about a sixth of the picture long. */
std::string scaleBar(const Plan& plan) {
    const double wanted = pictureWidth / 6.0 / plan.scale;
    const double power = std::pow(10.0, std::floor(std::log10(wanted)));
    const double metres = wanted >= 5.0 * power ? 5.0 * power : wanted >= 2.0 * power ? 2.0 * power : power;
    const double y = headHeight + plan.height + footHeight - 20.0;
    char label[64];
    std::snprintf(label, sizeof label, "%g m", metres);
    return "<path class=\"scale\" d=\"M" + number(margin) + ' ' + number(y - 6.0) + 'V' + number(y) + 'H' +
           number(margin + metres * plan.scale) + 'V' + number(y - 6.0) + "\"/><text x=\"" +
           number(margin + metres * plan.scale + 10.0) + "\" y=\"" + number(y) + "\">" + label + "</text>\n";
}

// Strokes are painted below fills: of polygons that overlap, only the outline of what they cover together shows.
constexpr const char* style = R"(<style>
text { font: 13px sans-serif; fill: #222; }
.title { font-size: 22px; font-weight: bold; }
.scale { fill: none; stroke: #222; stroke-width: 1.5; }
path { stroke-linejoin: round; stroke-width: 2; paint-order: stroke; opacity: 0.85; }
.unchanged { fill: #e9e9e9; stroke: #8f8f8f; stroke-width: 1.2; }
.properties { fill: #f4a3c8; stroke: #a3286b; }
.moved { fill: #5b9bea; stroke: #1d4f9e; }
.reshaped { fill: #ffb547; stroke: #a86400; }
.reclassed { fill: #c08be6; stroke: #6a2c9c; }
.reidentified { fill: #4fd0c8; stroke: #0c6f69; }
.added { fill: #7ccf6a; stroke: #22701a; }
.removed { fill: #fbe3e1; stroke: #d0211c; stroke-dasharray: 5 3; }
</style>
)";

} // namespace

std::string pictureText(const std::string& title, const Comparison& comparison) {
    const Plan plan(comparison.changes);
    const std::string width = number(pictureWidth);
    const std::string height = number(headHeight + plan.height + footHeight);

    std::string text =
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 " + width +
        ' ' + height + "\" width=\"" + width + "\" height=\"" + height + "\">\n" + style +
        "<rect width=\"100%\" height=\"100%\" fill=\"#fff\"/>\n<text class=\"title\" x=\"" + number(margin) +
        "\" y=\"36\">" + xmlText(title) + "</text>\n" + legend(comparison);
    text += objectPaths(plan, comparison.changes);
    return text + scaleBar(plan) + "</svg>\n";
}
