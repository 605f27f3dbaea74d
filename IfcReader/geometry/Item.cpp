#include "geometry/Item.h"

#include <cmath>

namespace IfcReader {

namespace {

constexpr double largestNumber = 1e15;

} // namespace

Item Items::at(std::uint64_t id) const {
    work_.add(1);
    const std::optional<StepInstance> instance = file_.find(id);
    if (!instance) {
        throw ItemError("#" + std::to_string(id) + " is not there");
    }
    return Item(*this, *instance);
}

Item::Item(const Items& items, const StepInstance& instance) : items_(&items), instance_(instance) {
    StepArguments arguments(instance.arguments);
    while (size_ < arguments_.size()) {
        const auto argument = arguments.next();
        if (!argument) {
            break;
        }
        arguments_[size_++] = *argument;
    }
}

void Item::fail(const std::string& reason) const {
    throw ItemError(std::string(keyword()) + ": " + reason);
}

std::string_view Item::argument(std::size_t i) const {
    if (i >= size_) {
        fail("too few arguments");
    }
    return arguments_[i];
}

bool Item::given(std::size_t i) const {
    return i < size_ && !arguments_[i].empty() && arguments_[i][0] != '$' && arguments_[i][0] != '*';
}

double Item::checked(std::string_view argument) const {
    if (const auto typed = stepTyped(argument)) {
        argument = typed->value;
    }
    const std::optional<double> value = stepReal(argument);
    if (!value) {
        fail("a number is missing");
    }
    if (!std::isfinite(*value) || std::abs(*value) > largestNumber) {
        fail("a number is too large");
    }
    return *value;
}

double Item::number(std::size_t i) const {
    return checked(argument(i));
}

double Item::length(std::size_t i) const {
    return number(i) * items_->units().metre;
}

double Item::positiveLength(std::size_t i) const {
    const double value = length(i);
    if (!(value > 0.0)) {
        fail("a size is not positive");
    }
    return value;
}

double Item::lengthOr(std::size_t i, double otherwise) const {
    return given(i) ? length(i) : otherwise;
}

double Item::angle(std::size_t i) const {
    return number(i) * items_->units().radian;
}

double Item::angleOr(std::size_t i, double otherwise) const {
    return given(i) ? angle(i) : otherwise;
}

std::string_view Item::word(std::size_t i) const {
    return i < size_ ? stepEnumeration(arguments_[i]) : std::string_view();
}

std::string Item::text(std::size_t i) const {
    return i < size_ ? stepText(arguments_[i]) : std::string();
}

std::array<double, 3> Item::coordinates(std::size_t i, std::size_t least) const {
    std::array<double, 3> values{};
    StepArguments members = listMembers(argument(i));
    std::size_t count = 0;
    while (const auto member = members.next()) {
        if (count == values.size()) {
            fail("too many coordinates");
        }
        values[count++] = checked(*member);
    }
    if (count < least) {
        fail("too few coordinates");
    }
    return values;
}

std::uint64_t Item::reference(std::size_t i) const {
    const auto id = stepReference(argument(i));
    if (!id) {
        fail("a reference is missing");
    }
    return *id;
}

std::optional<std::uint64_t> Item::referenceIf(std::size_t i) const {
    return i < size_ ? stepReference(arguments_[i]) : std::nullopt;
}

std::vector<std::uint64_t> Item::references(std::size_t i) const {
    std::vector<std::uint64_t> ids;
    StepArguments members = listMembers(argument(i));
    while (const auto member = members.next()) {
        if (const auto id = stepReference(*member)) {
            ids.push_back(*id);
        }
    }
    items_->work().add(ids.size());
    return ids;
}

std::vector<double> Item::numbers(std::size_t i) const {
    std::vector<double> values;
    StepArguments members = listMembers(argument(i));
    while (const auto member = members.next()) {
        values.push_back(checked(*member));
    }
    items_->work().add(values.size());
    return values;
}

} // namespace IfcReader
