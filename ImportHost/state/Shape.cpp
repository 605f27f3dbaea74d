#include "state/Shape.h"

#include "state/Numbers.h"

#include <PluginKit/Text.h>

#include <stdexcept>

namespace {

/** Goes through the numbers of a shape in the order in which they are written. */
template <typename ShapeType, typename Action>
void forEachNumber(ShapeType& shape, const Action& action) {
    action(shape.area);
    for (auto& number : shape.centroid) {
        action(number);
    }
    for (auto& number : shape.second) {
        action(number);
    }
    for (auto& number : shape.third) {
        action(number);
    }
    for (auto& number : shape.fourth) {
        action(number);
    }
}

constexpr std::size_t numberCount = 4 + Shape::secondCount + Shape::thirdCount + Shape::fourthCount;

} // namespace

void appendShape(std::string& text, const Shape& shape) {
    if (shape.area > 0.0) {
        forEachNumber(shape, [&](double number) {
            appendNumber(text, number);
            text += ' ';
        });
        text.pop_back();
    }
}

Shape shapeFromText(std::string_view text) {
    Shape shape;
    if (text.empty()) {
        return shape;
    }
    const std::vector<std::string_view> fields = split(text, ' ');
    if (fields.size() != numberCount) {
        throw std::runtime_error("not a shape");
    }
    std::size_t next = 0;
    forEachNumber(shape, [&](double& number) { number = toMeasure(fields[next++]); });
    if (shape.area <= 0.0) {
        throw std::runtime_error("not a shape");
    }
    return shape;
}
