#include "products/Looks.h"

namespace IfcReader {

namespace {

/** Instances that are looked at before a search is given up: lists in a file may name the same ones at will. */
constexpr int maxTries = 500;

/** The first result of a function for the members of a list. */
template <typename Function>
std::optional<Look> firstOf(const StepFile& file, std::string_view list, int& tries, const Function& function) {
    StepArguments members = listMembers(list);
    for (auto member = members.next(); member && tries > 0; member = members.next()) {
        --tries;
        const auto instance = file.find(*member);
        if (const auto look = instance ? function(*instance) : std::nullopt) {
            return look;
        }
    }
    return std::nullopt;
}

std::optional<double> share(std::string_view argument) {
    if (const auto typed = stepTyped(argument)) {
        argument = typed->value;
    }
    const auto number = stepReal(argument);
    return number ? std::optional<double>(std::clamp(*number, 0.0, 1.0)) : std::nullopt;
}

/** A rendering begins with what a shading is: the colour. */
std::optional<Look> lookOfShading(const StepFile& file, const StepInstance& shading) {
    if (shading.keyword != "IFCSURFACESTYLERENDERING" && shading.keyword != "IFCSURFACESTYLESHADING") {
        return std::nullopt;
    }
    StepArguments arguments(shading.arguments);
    const auto colour = file.find(arguments.nextAfter(0));
    if (!colour || colour->keyword != "IFCCOLOURRGB") {
        return std::nullopt;
    }
    Look look;
    StepArguments parts(colour->arguments);
    parts.next();
    look.red = share(parts.nextAfter(0)).value_or(look.red);
    look.green = share(parts.nextAfter(0)).value_or(look.green);
    look.blue = share(parts.nextAfter(0)).value_or(look.blue);
    look.opacity = 1.0 - share(arguments.nextAfter(0)).value_or(0.0);
    return look;
}

} // namespace

std::optional<Look> Looks::ofItems(const std::vector<std::uint64_t>& items) const {
    int tries = maxTries;
    for (const std::uint64_t item : items) {
        for (const Links::Link& link : relations_.looks.of(item)) {
            const auto styledItem = file_.find(link.to);
            if (const auto look = styledItem ? ofStyledItem(*styledItem, tries) : std::nullopt) {
                return look;
            }
        }
    }
    return std::nullopt;
}

std::optional<Look> Looks::ofMaterials(const std::vector<std::uint64_t>& materials) const {
    int tries = maxTries;
    const auto ofRepresentation = [&](const StepInstance& representation) {
        return firstOf(file_, StepArguments(representation.arguments).nextAfter(3), tries,
                       [&](const StepInstance& item) { return ofStyledItem(item, tries); });
    };
    for (const std::uint64_t material : materials) {
        for (const Links::Link& link : relations_.samples.of(material)) {
            const auto sample = file_.find(link.to);
            const std::string_view list = StepArguments(sample->arguments).nextAfter(2);
            if (const auto look = firstOf(file_, list, tries, ofRepresentation)) {
                return look;
            }
        }
    }
    return std::nullopt;
}

std::optional<Look> Looks::ofStyledItem(const StepInstance& styledItem, int& tries) const {
    if (styledItem.keyword != "IFCSTYLEDITEM") {
        return std::nullopt;
    }
    return firstOf(file_, StepArguments(styledItem.arguments).nextAfter(1), tries, [&](const StepInstance& style) {
        if (style.keyword != "IFCPRESENTATIONSTYLEASSIGNMENT") {
            return ofStyle(style, tries);
        }
        return firstOf(file_, StepArguments(style.arguments).nextAfter(0), tries,
                       [&](const StepInstance& member) { return ofStyle(member, tries); });
    });
}

std::optional<Look> Looks::ofStyle(const StepInstance& style, int& tries) const {
    if (style.keyword != "IFCSURFACESTYLE") {
        return std::nullopt;
    }
    StepArguments arguments(style.arguments);
    const std::string_view name = arguments.nextAfter(0);
    auto look = firstOf(file_, arguments.nextAfter(1), tries,
                        [&](const StepInstance& shading) { return lookOfShading(file_, shading); });
    if (look) {
        look->name = stepText(name);
    }
    return look;
}

} // namespace IfcReader
