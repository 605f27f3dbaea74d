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

void Item::fail(const std::string& reason) const {
    throw ItemError(std::string(keyword()) + ": " + reason);
}

std::optional<std::string_view> Item::argumentIf(std::size_t i) const {
    StepArguments arguments(instance_.arguments);
    return arguments.skip(i) ? arguments.next() : std::nullopt;
}

std::string_view Item::argument(std::size_t i) const {
    const auto found = argumentIf(i);
    if (!found) {
        fail("too few arguments");
    }
    return *found;
}

bool Item::given(std::size_t i) const {
    const std::string_view found = argumentIf(i).value_or(std::string_view());
    return !found.empty() && found[0] != '$' && found[0] != '*';
}

double Item::inRange(double value) const {
    if (!std::isfinite(value) || std::abs(value) > largestNumber) {
        fail("a number is too large");
    }
    return value;
}

double Item::checked(std::string_view argument) const {
    if (const auto typed = stepTyped(argument)) {
        argument = typed->value;
    }
    const std::optional<double> value = stepReal(argument);
    if (!value) {
        fail("a number is missing");
    }
    return inRange(*value);
}

/** The members of an argument that is a list; none of any other. */
StepArguments Item::list(std::size_t i) const {
    StepArguments arguments(instance_.arguments);
    const auto members = arguments.skip(i) ? arguments.nextList() : std::nullopt;
    return members ? *members : listMembers(argument(i));
}

std::optional<double> Item::nextNumber(StepArguments& members) const {
    if (const auto decimal = members.nextDecimal()) {
        return inRange(*decimal);
    }
    const auto member = members.next();
    return member ? std::optional<double>(checked(*member)) : std::nullopt;
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
    return stepEnumeration(argumentIf(i).value_or(std::string_view()));
}

std::string Item::text(std::size_t i) const {
    return stepText(argumentIf(i).value_or(std::string_view()));
}

std::array<double, 3> Item::coordinates(std::size_t i, std::size_t least) const {
    std::array<double, 3> values{};
    StepArguments members = list(i);
    std::size_t count = 0;
    for (auto value = nextNumber(members); value; value = nextNumber(members)) {
        if (count == values.size()) {
            fail("too many coordinates");
        }
        values[count++] = *value;
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
    return stepReference(argumentIf(i).value_or(std::string_view()));
}

std::vector<std::uint64_t> Item::references(std::size_t i) const {
    std::vector<std::uint64_t> ids;
    forEachReference(i, [&](std::uint64_t id) { ids.push_back(id); });
    return ids;
}

std::vector<double> Item::numbers(std::size_t i) const {
    std::vector<double> values;
    StepArguments members = list(i);
    for (auto value = nextNumber(members); value; value = nextNumber(members)) {
        values.push_back(*value);
    }
    items_->work().add(values.size());
    return values;
}

} // namespace IfcReader
