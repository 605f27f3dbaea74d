#include "output/Picture.h"

#include "Failure.h"
#include "output/ChangeText.h"
#include "output/StatusStyle.h"
#include "output/plan/PlanDrawing.h"
#include "output/plan/SvgText.h"

#include <PluginKit/Text.h>

#include <algorithm>
#include <filesystem>
#include <limits>

namespace {

// The sheet, in quarters of a millimetre: what A4 and letter both have room for within margins of a centimetre.
constexpr double longSide = 1004.0;
constexpr double shortSide = 728.0;
constexpr double border = 16.0; ///< around that, for the screen
constexpr double millimetres = 0.25;

constexpr double titleSize = 20.0;
constexpr double textSize = 11.5;
constexpr double lineHeight = 16.0;
constexpr double swatch = 11.0;
constexpr double gap = 18.0; ///< between two plans
constexpr double headingHeight = 18.0;

/** Storeys are drawn to one scale unless that makes one of them smaller than it could be by this factor. */
constexpr double maxScaleRatio = 3.0;

struct Sheet {
    double width;
    double height;
};

/** How plans are spread over a sheet. */
struct Grid {
    std::size_t columns;
    std::size_t rows;
    double scale; ///< of the plan that is drawn smallest
};

Grid bestGrid(const std::vector<Storey>& storeys, double width, double height) {
    Grid best{1, storeys.size(), 0.0};
    for (std::size_t columns = 1; columns <= storeys.size(); ++columns) {
        const std::size_t rows = (storeys.size() + columns - 1) / columns;
        const double cellWidth = (width + gap) / static_cast<double>(columns) - gap;
        const double cellHeight = height / static_cast<double>(rows) - gap - headingHeight;
        double scale = std::numeric_limits<double>::infinity();
        for (const Storey& storey : storeys) {
            scale = std::min(scale, largestScale(storey, {0.0, 0.0, cellWidth, cellHeight}));
        }
        if (cellWidth > 0.0 && cellHeight > 0.0 && scale > best.scale) {
            best = {columns, rows, scale};
        }
    }
    return best;
}

std::string shortTime(const std::string& time) {
    const bool isComplete = time.size() >= 16 && time[10] == 'T';
    return isComplete ? time.substr(0, 10) + ' ' + time.substr(11, 5) : time;
}

std::string nameAndTime(const ImportedModel& model) {
    const std::string name = std::filesystem::path(model.name).filename().string();
    return (name.empty() ? "an earlier import" : name) +
           (model.time.empty() ? "" : " (imported " + shortTime(model.time) + " UTC)");
}

/** How many of the objects have a status, without spaces. */
std::size_t countOf(const Comparison& comparison, Status status) {
    return static_cast<std::size_t>(
        std::count_if(comparison.changes.begin(), comparison.changes.end(),
                      [&](const Change& change) { return change.status() == status && !isSpace(change.record()); }));
}

/** Texts side by side, with something drawn before each, on as many lines as they need. */
class Row {
public:
    Row(double width, double y) : width_(width), y_(y) {}

    /** @p drawn  gets the place for what is drawn, of the size of a swatch */
    template <typename Function>
    void add(const std::string& label, const Function& drawn) {
        const double needed = swatch + 5.0 + textWidth(label, textSize) + 17.0;
        if (x_ > 0.0 && x_ + needed > width_) {
            x_ = 0.0;
            y_ += lineHeight + 2.0;
        }
        text_ += drawn(x_, y_ - swatch + 2.0) + svgLine(x_ + swatch + 5.0, y_, label, "");
        x_ += needed;
    }

    const std::string& text() const { return text_; }
    double bottom() const { return y_; }

private:
    double width_;
    double x_ = 0.0;
    double y_;
    std::string text_;
};

std::string swatchText(Status status, double x, double y) {
    const std::string rect = "<rect class=\"" + std::string(statusName(status)) + "\" x=\"" + svgNumber(x) + "\" y=\"" +
                             svgNumber(y) + "\" width=\"" + svgNumber(swatch) + "\" height=\"" + svgNumber(swatch) +
                             "\"/>";
    const double middle = x + swatch / 2.0;
    return rect + svgLine(middle, y + swatch - 2.5, statusStyle(status).mark, "key", "middle");
}

/** The legend from some height on; @p y becomes the height of its last line. */
std::string legendText(const Comparison& comparison, double width, double& y) {
    Row row(width, y);
    for (const Status status : allStatuses) {
        row.add(std::string(statusName(status)) + ' ' + std::to_string(countOf(comparison, status)),
                [&](double x, double top) { return swatchText(status, x, top); });
    }
    row.add("before", [](double x, double top) {
        return "<rect class=\"old\" x=\"" + svgNumber(x) + "\" y=\"" + svgNumber(top) + "\" width=\"" +
               svgNumber(swatch) + "\" height=\"" + svgNumber(swatch) + "\"/>";
    });
    y = row.bottom();
    return row.text();
}

/** Title and legend; @p height becomes what they take up. */
std::string headText(const Outcome& outcome, double width, double& height) {
    const auto line = [&](const std::string& text, const char* className, double size) {
        height += size + 4.0;
        return svgLine(0.0, height, fittingText(printable(text), width, size), className);
    };
    const std::string name = std::filesystem::path(outcome.model.name).filename().string();
    std::string text = line(name, "title", titleSize);
    if (!outcome.previous) {
        text += line("imported " + shortTime(outcome.model.time) +
                         " UTC for the first time: there is nothing to compare with",
                     "", textSize);
        return text;
    }
    text += line("compared with " + nameAndTime(*outcome.previous), "", textSize);
    if (outcome.comparison.displacement) {
        text += line(displacementText(outcome.comparison), "", textSize);
    }
    height += lineHeight + 6.0;
    return text + legendText(outcome.comparison, width, height);
}

std::string headingText(const Storey& storey, bool isOnly, bool marked) {
    std::string text = storey.name.empty() ? (isOnly ? "All objects" : "Without a storey") : storey.name;
    std::size_t changed = 0;
    for (const PlanObject& object : storey.objects) {
        changed += object.change->status() != Status::Unchanged ? 1 : 0;
    }
    if (marked) {
        text += changed == 0 ? ": nothing changed" : ": " + std::to_string(changed) + " changed";
    }
    return printable(text);
}

// Strokes are painted below fills: of polygons that overlap, only the outline of what they cover together shows.
std::string styleText(const Sheet& sheet) {
    std::string text = "<style>\n@page { size: " + std::string(sheet.width > sheet.height ? "landscape" : "portrait") +
                       "; margin: 10mm; }\n"
                       "text { font: 11.5px sans-serif; fill: #222; }\n"
                       "text.title { font-size: 20px; font-weight: bold; }\n"
                       "text.heading { font-size: 13px; font-weight: bold; }\n"
                       "text.small { font-size: 10px; }\n"
                       "text.sign { font-size: 9px; font-weight: bold; fill: #fff; pointer-events: none; }\n"
                       "text.key { font-size: 9px; font-weight: bold; }\n"
                       "path { stroke-linejoin: round; stroke-width: 1.6; paint-order: stroke; fill-opacity: 0.85; }\n"
                       ".unchanged { stroke-width: 1; }\n"
                       ".large { fill-opacity: 0.3; }\n";
    for (const StatusStyle& style : statusStyles) {
        const std::string name = statusName(style.status);
        text += '.' + name + " { fill: " + style.fill + "; stroke: " + style.stroke + "; }\n";
        text += "circle." + name + " { fill: " + style.stroke + "; stroke: #fff; }\n";
    }
    return text + ".removed { stroke-dasharray: 4 2; }\n"
                  "circle.mark { stroke-width: 1; stroke-dasharray: none; pointer-events: none; }\n"
                  ".old { fill: none; stroke: #555; stroke-dasharray: 3 2; stroke-width: 1.2; }\n"
                  ".arrow { fill: none; stroke: #1d1d1d; stroke-width: 1.5; }\n"
                  ".scale { fill: none; stroke: #222; stroke-width: 1.2; }\n</style>\n";
}

/** Everything on one sheet, upright or across, whichever shows more. */
std::string sheetText(const Outcome& outcome, const std::vector<Storey>& storeys, bool areAll) {
    Sheet sheet{longSide, shortSide};
    double headHeight = 0.0;
    std::string head = headText(outcome, sheet.width, headHeight);
    double uprightHeight = 0.0;
    const std::string uprightHead = headText(outcome, shortSide, uprightHeight);
    Grid grid = bestGrid(storeys, longSide, shortSide - headHeight);
    const Grid upright = bestGrid(storeys, shortSide, longSide - uprightHeight);
    if (upright.scale > grid.scale) {
        sheet = {shortSide, longSide};
        grid = upright;
        head = uprightHead;
        headHeight = uprightHeight;
    }

    const std::string width = svgNumber(sheet.width + 2.0 * border);
    const std::string height = svgNumber(sheet.height + 2.0 * border);
    const std::string corner = svgNumber(-border);
    std::string text =
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"" + corner +
        ' ' + corner + ' ' + width + ' ' + height + "\" width=\"" +
        svgNumber((sheet.width + 2.0 * border) * millimetres) + "mm\" height=\"" +
        svgNumber((sheet.height + 2.0 * border) * millimetres) + "mm\">\n" + styleText(sheet) + "<rect x=\"" + corner +
        "\" y=\"" + corner + "\" width=\"" + width + "\" height=\"" + height + "\" fill=\"#fff\"/>\n" + head;
    const double cellWidth = (sheet.width + gap) / static_cast<double>(grid.columns);
    const double cellHeight = (sheet.height - headHeight) / static_cast<double>(std::max<std::size_t>(grid.rows, 1));
    std::vector<SheetBox> boxes;
    double commonScale = std::numeric_limits<double>::infinity();
    for (std::size_t i = 0; i < storeys.size(); ++i) {
        boxes.push_back({static_cast<double>(i % grid.columns) * cellWidth,
                         headHeight + gap + headingHeight + static_cast<double>(i / grid.columns) * cellHeight,
                         cellWidth - gap, cellHeight - gap - headingHeight});
        commonScale = std::min(commonScale, largestScale(storeys[i], boxes[i]));
    }
    for (std::size_t i = 0; i < storeys.size(); ++i) {
        const SheetBox& box = boxes[i];
        const std::string heading =
            headingText(storeys[i], areAll && storeys.size() == 1, outcome.previous.has_value());
        text += svgLine(box.x, box.y - 6.0, fittingText(heading, box.width, 13.0), "heading");
        const double scale = largestScale(storeys[i], box);
        text += planText(storeys[i], box, scale < commonScale * maxScaleRatio ? commonScale : scale,
                         outcome.previous.has_value());
    }
    return text + "</svg>\n";
}

std::string namesOf(const std::vector<Storey>& storeys) {
    std::string names;
    for (const Storey& storey : storeys) {
        if (!storey.name.empty()) {
            names += (names.empty() ? "" : ", ") + storey.name;
        }
    }
    return names.empty() ? "the model has none" : "there are " + names;
}

} // namespace

std::string pictureText(const Outcome& outcome, const std::string& storey) {
    std::vector<Storey> storeys = storeysOf(outcome.comparison);
    if (storey.empty()) {
        return sheetText(outcome, storeys, true);
    }
    const auto found =
        std::find_if(storeys.begin(), storeys.end(), [&](const Storey& candidate) { return candidate.name == storey; });
    if (found == storeys.end()) {
        throw Failure(outcome.model.name, "no storey " + storey + " with objects; " + namesOf(storeys));
    }
    return sheetText(outcome, {*found}, false);
}

std::vector<StoreyPlan> storeyPlans(const Outcome& outcome) {
    std::vector<StoreyPlan> plans;
    const std::vector<Storey> storeys = storeysOf(outcome.comparison);
    for (const Storey& storey : storeys) {
        plans.push_back({storey.name, sheetText(outcome, {storey}, storeys.size() == 1)});
    }
    return plans;
}
