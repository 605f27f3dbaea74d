#include "output/plan/PlanDrawing.h"

#include "output/ChangeText.h"
#include "output/StatusStyle.h"
#include "output/plan/SvgText.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace {

// In units of the sheet.
constexpr double scaleHeight = 16.0;
constexpr double markRadius = 6.0;
constexpr double shortestArrow = 8.0;
constexpr double arrowHead = 5.0;

/** More marks would hide what they mark. */
constexpr std::size_t maxMarks = 150;

/** A changed object that covers more of the plan is seen through. */
constexpr double largePart = 0.1;

/** Around points. */
struct Frame {
    Point low{};
    Point high{};
    bool isEmpty = true;

    void add(const Footprint& footprint) {
        for (const auto& polygon : footprint) {
            for (const Point& p : polygon) {
                low = isEmpty ? p : Point{std::min(low.x, p.x), std::min(low.y, p.y)};
                high = isEmpty ? p : Point{std::max(high.x, p.x), std::max(high.y, p.y)};
                isEmpty = false;
            }
        }
    }

    double width() const { return std::max(high.x - low.x, 0.001); }
    double depth() const { return std::max(high.y - low.y, 0.001); }
    double area() const { return (high.x - low.x) * (high.y - low.y); }
    Point centre() const { return {low.x + (high.x - low.x) / 2.0, low.y + (high.y - low.y) / 2.0}; }
};

Frame frameOf(const Footprint& footprint) {
    Frame frame;
    frame.add(footprint);
    return frame;
}

Frame frameOf(const Storey& storey) {
    Frame frame;
    for (const PlanObject& object : storey.objects) {
        frame.add(object.now);
        frame.add(object.before);
    }
    return frame;
}

/** How metres become units of the sheet. */
class Projection {
public:
    Projection(const Frame& frame, const SheetBox& box, double scale)
        : scale_(scale),
          middle_(frame.centre()),
          x_(box.x + box.width / 2.0),
          y_(box.y + (box.height - scaleHeight) / 2.0) {}

    double scale() const { return scale_; }
    double x(const Point& p) const { return x_ + (p.x - middle_.x) * scale_; }
    double y(const Point& p) const { return y_ - (p.y - middle_.y) * scale_; }

    std::string path(const Footprint& footprint) const {
        std::string text;
        for (const auto& polygon : footprint) {
            char command = 'M';
            for (const Point& p : polygon) {
                text += command + svgNumber(x(p)) + ' ' + svgNumber(y(p));
                command = 'L';
            }
            text += 'Z';
        }
        return text;
    }

private:
    double scale_;
    Point middle_;
    double x_;
    double y_;
};

/** What is shown when the pointer rests on an object. */
std::string titleOf(const Change& change, bool marked) {
    const ObjectRecord& record = change.record();
    std::string text = xmlText(record.name) + (record.name.empty() ? "" : "\n") + xmlText(record.className) + ' ' +
                       xmlText(identityText(record));
    if (!marked) {
        return text;
    }
    text += '\n' + xmlText(changeText(change));
    if (change.move) {
        text += "\nmoved by " + xmlText(moveText(change));
    }
    if (!change.properties.empty()) {
        text += '\n' + xmlText(shortText(change.properties));
    }
    return text;
}

/** Where the mark of an object goes: the middle of its largest part. */
Point markPlace(const Footprint& footprint) {
    Frame largest;
    for (const auto& polygon : footprint) {
        const Frame part = frameOf(Footprint{polygon});
        if (largest.isEmpty || part.area() > largest.area()) {
            largest = part;
        }
    }
    return largest.centre();
}

std::string pathText(const std::string& className, const PlanObject& object, const std::string& path, bool marked) {
    return "<path class=\"" + className + "\" data-object=\"" + std::to_string(object.index) + "\" d=\"" + path +
           "\"><title>" + titleOf(*object.change, marked) + "</title></path>\n";
}

std::string arrowText(const Projection& projection, const Point& from, const Point& to) {
    const double x = projection.x(to);
    const double y = projection.y(to);
    const double dx = x - projection.x(from);
    const double dy = y - projection.y(from);
    const double length = std::hypot(dx, dy);
    if (!(length >= shortestArrow)) {
        return "";
    }
    const double ux = dx / length * arrowHead;
    const double uy = dy / length * arrowHead;
    return "<path class=\"arrow\" d=\"M" + svgNumber(x - dx) + ' ' + svgNumber(y - dy) + 'L' + svgNumber(x) + ' ' +
           svgNumber(y) + 'M' + svgNumber(x - ux - uy / 2.0) + ' ' + svgNumber(y - uy + ux / 2.0) + 'L' + svgNumber(x) +
           ' ' + svgNumber(y) + 'L' + svgNumber(x - ux + uy / 2.0) + ' ' + svgNumber(y - uy - ux / 2.0) + "\"/>\n";
}

/** The sign of what happened; one that rose or sank is marked so, since no arrow shows it. */
const char* signOf(const Change& change) {
    if (change.status() == Status::Moved && change.move) {
        const Vector3& shift = change.move->shift;
        if (std::hypot(shift[0], shift[1]) < std::abs(shift[2]) / 10.0) {
            return shift[2] > 0.0 ? "\u2191" : "\u2193";
        }
        if (change.move->angle != 0.0 && std::hypot(shift[0], shift[1], shift[2]) < 0.001) {
            return "\u21BB";
        }
    }
    return statusStyle(change.status()).mark;
}

std::string markText(const Projection& projection, const PlanObject& object) {
    const Point place = markPlace(object.now);
    const double x = projection.x(place);
    const double y = projection.y(place);
    return "<circle class=\"mark " + std::string(statusName(object.change->status())) + "\" cx=\"" + svgNumber(x) +
           "\" cy=\"" + svgNumber(y) + "\" r=\"" + svgNumber(markRadius) + "\"/>" +
           svgLine(x, y + 3.0, signOf(*object.change), "sign", "middle");
}

/** A bar of a round number of metres, below the plan. */
std::string scaleText(const Projection& projection, const SheetBox& box) {
    const double wanted = box.width / 4.0 / projection.scale();
    const double power = std::pow(10.0, std::floor(std::log10(wanted)));
    const double metres = wanted >= 5.0 * power ? 5.0 * power : wanted >= 2.0 * power ? 2.0 * power : power;
    const double length = metres * projection.scale();
    const double y = box.y + box.height - 2.0;
    char label[64];
    std::snprintf(label, sizeof label, "%g m", metres);
    return "<path class=\"scale\" d=\"M" + svgNumber(box.x) + ' ' + svgNumber(y - 5.0) + 'v' + svgNumber(5.0) + 'h' +
           svgNumber(length) + 'v' + svgNumber(-5.0) + "\"/>" + svgLine(box.x + length + 6.0, y, label, "small");
}

/** Unchanged objects below changed ones, and large ones below small ones. */
std::vector<const PlanObject*> drawingOrder(const Storey& storey) {
    struct Drawn {
        const PlanObject* object;
        bool isChanged;
        double area;
    };
    std::vector<Drawn> drawn;
    for (const PlanObject& object : storey.objects) {
        drawn.push_back({&object, object.change->status() != Status::Unchanged, frameOf(object.now).area()});
    }
    std::stable_sort(drawn.begin(), drawn.end(), [](const Drawn& a, const Drawn& b) {
        return a.isChanged != b.isChanged ? b.isChanged : a.area > b.area;
    });
    std::vector<const PlanObject*> order;
    for (const Drawn& object : drawn) {
        order.push_back(object.object);
    }
    return order;
}

} // namespace

double largestScale(const Storey& storey, const SheetBox& box) {
    const Frame frame = frameOf(storey);
    return std::min(box.width / frame.width(), (box.height - scaleHeight) / frame.depth());
}

std::string planText(const Storey& storey, const SheetBox& box, double scale, bool marked) {
    const Frame frame = frameOf(storey);
    const Projection projection(frame, box, scale);

    std::string objects;
    std::string overlay;
    std::vector<const PlanObject*> withoutArrow;
    for (const PlanObject* const object : drawingOrder(storey)) {
        const bool isChanged = marked && object->change->status() != Status::Unchanged;
        const std::string status = statusName(isChanged ? object->change->status() : Status::Unchanged);
        const bool isHere = !object->now.empty();
        if (isHere) {
            const bool isLarge = isChanged && frameOf(object->now).area() > largePart * frame.area();
            objects += pathText(isLarge ? status + " large" : status, *object, projection.path(object->now), marked);
        }
        if (!isChanged) {
            continue;
        }
        std::string arrow;
        if (!object->before.empty()) {
            overlay += pathText("old " + status, *object, projection.path(object->before), marked);
            if (isHere && object->change->has(Status::Moved)) {
                arrow = arrowText(projection, frameOf(object->before).centre(), frameOf(object->now).centre());
            }
        }
        overlay += arrow;
        if (isHere && (arrow.empty() || object->change->status() != Status::Moved)) {
            withoutArrow.push_back(object);
        }
    }
    if (withoutArrow.size() <= maxMarks) {
        for (const PlanObject* const object : withoutArrow) {
            overlay += markText(projection, *object);
        }
    }
    return objects + overlay + scaleText(projection, box);
}
