#include "Units.h"

#include <cmath>
#include <utility>

namespace IfcReader {

namespace {

/** Units that are made of units have few steps; a file in which they lead in circles has no end of them. */
constexpr int maxDepth = 8;

/** A derived unit is a product of a few units, none of them derived. */
constexpr int depthInDerived = 4;
constexpr int maxElements = 16;

/** A prefix of a unit as a factor. */
double prefixFactor(std::string_view prefix) {
    constexpr std::pair<std::string_view, double> factors[] = {
        {"EXA", 1e18},  {"PETA", 1e15},  {"TERA", 1e12},   {"GIGA", 1e9},   {"MEGA", 1e6},   {"KILO", 1e3},
        {"HECTO", 1e2}, {"DECA", 1e1},   {"DECI", 1e-1},   {"CENTI", 1e-2}, {"MILLI", 1e-3}, {"MICRO", 1e-6},
        {"NANO", 1e-9}, {"PICO", 1e-12}, {"FEMTO", 1e-15}, {"ATTO", 1e-18}};
    for (const auto& [name, factor] : factors) {
        if (name == prefix) {
            return factor;
        }
    }
    return 1.0;
}

/** A prefixed unit of area or volume is the power of the prefixed length; the SI unit of mass is the kilogram. */
double siFactor(std::string_view prefix, std::string_view name) {
    const double factor = prefixFactor(prefix);
    if (name == "SQUARE_METRE") {
        return factor * factor;
    }
    if (name == "CUBIC_METRE") {
        return factor * factor * factor;
    }
    return name == "GRAM" ? factor * 1e-3 : factor;
}

double numberOf(std::string_view argument) {
    if (const auto typed = stepTyped(argument)) {
        argument = typed->value;
    }
    return stepReal(argument).value_or(0.0);
}

/** Within bounds in which products of a few lengths stay finite. */
double usable(double factor) {
    return factor > 1e-40 && factor < 1e40 ? factor : 1.0;
}

} // namespace

Units::Units(const StepFile& file) : file_(file) {
    std::optional<StepInstance> assignment;
    for (std::size_t i = 0; i < file.size(); ++i) {
        const std::string_view keyword = file.keywords()[file.keywordAt(i)];
        if (keyword == "IFCPROJECT") {
            assignment = file.find(StepArguments(file[i].arguments).nextAfter(8));
            break;
        }
        if (keyword == "IFCUNITASSIGNMENT" && !assignment) {
            assignment = file[i];
        }
    }
    if (assignment && assignment->keyword == "IFCUNITASSIGNMENT") {
        read(*assignment);
    }
    metre = factorOf("LENGTHUNIT");
    radian = factorOf("PLANEANGLEUNIT");
}

void Units::read(const StepInstance& assignment) {
    StepArguments units = listMembers(StepArguments(assignment.arguments).nextAfter(0));
    for (auto member = units.next(); member; member = units.next()) {
        if (const auto unit = file_.find(*member)) {
            const std::string_view type = stepEnumeration(StepArguments(unit->arguments).nextAfter(1));
            factors_.insert_or_assign(std::string(type), factorOf(*unit));
        }
    }
}

double Units::factorOf(std::string_view unitType) const {
    const auto found = factors_.find(unitType);
    return found == factors_.end() ? 1.0 : found->second;
}

double Units::factorOf(const StepInstance& unit, int depth) const {
    if (depth > maxDepth) {
        return 1.0;
    }
    StepArguments arguments(unit.arguments);
    if (unit.keyword == "IFCSIUNIT") {
        const std::string_view prefix = stepEnumeration(arguments.nextAfter(2));
        return siFactor(prefix, stepEnumeration(arguments.nextAfter(0)));
    }
    if (unit.keyword == "IFCCONVERSIONBASEDUNIT") {
        const auto measure = file_.find(arguments.nextAfter(3));
        return measure ? factorOf(*measure, depth + 1) : 1.0;
    }
    if (unit.keyword == "IFCMEASUREWITHUNIT") {
        const double number = std::abs(numberOf(arguments.nextAfter(0)));
        const auto of = file_.find(arguments.nextAfter(0));
        return usable(number * (of ? factorOf(*of, depth + 1) : 1.0));
    }
    const bool isDerived = unit.keyword == "IFCDERIVEDUNIT" && depth < depthInDerived;
    return isDerived ? derivedFactor(arguments.nextAfter(0)) : 1.0;
}

double Units::derivedFactor(std::string_view elements) const {
    double factor = 1.0;
    int count = 0;
    StepArguments members = listMembers(elements);
    for (auto member = members.next(); member && count < maxElements; member = members.next(), ++count) {
        const auto element = file_.find(*member);
        StepArguments arguments(element ? element->arguments : std::string_view());
        const auto unit = file_.find(arguments.nextAfter(0));
        const double exponent = numberOf(arguments.nextAfter(0));
        factor *= unit ? std::pow(factorOf(*unit, depthInDerived), exponent) : 1.0;
    }
    return usable(factor);
}

std::string unitTypeOf(std::string_view measure) {
    constexpr std::string_view begin = "IFC";
    constexpr std::string_view positive = "POSITIVE";
    constexpr std::string_view end = "MEASURE";
    if (measure.substr(0, begin.size()) != begin || measure.size() < begin.size() + end.size() ||
        measure.substr(measure.size() - end.size()) != end) {
        return "";
    }
    measure = measure.substr(begin.size(), measure.size() - begin.size() - end.size());
    if (measure.substr(0, positive.size()) == positive) {
        measure.remove_prefix(positive.size());
    }
    return std::string(measure) + "UNIT";
}

} // namespace IfcReader
