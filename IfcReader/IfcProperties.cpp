#include "IfcProperties.h"

#include <algorithm>
#include <cmath>
#include <unordered_set>

namespace IfcReader {

namespace {

constexpr std::size_t globalIdLength = 22;
constexpr double pi = 3.141592653589793;

/** A model has no deeper ones; a file in which properties contain each other has no end of them. */
constexpr int maxDepth = 8;

/** Properties inside of one, at any depth. */
constexpr std::size_t maxNested = 10000;

/** How often a file's text may be read for its sets; real models stay far below. */
constexpr std::size_t maxSharing = 16;
constexpr std::size_t smallestBudget = std::size_t{1} << 24;

bool endsWith(std::string_view text, std::string_view end) {
    return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

bool startsWith(std::string_view text, std::string_view begin) {
    return text.substr(0, begin.size()) == begin;
}

/** The GlobalId that an instance begins with; empty when it has none. */
std::string_view globalIdOf(std::string_view arguments) {
    const std::string_view id = stepQuoted(arguments.substr(0, globalIdLength + 16)).value_or(std::string_view());
    return id.size() == globalIdLength ? id : std::string_view();
}

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

std::string rangeText(std::string_view low, std::string_view high) {
    return low.empty() && high.empty() ? std::string() : std::string(low) + " .. " + std::string(high);
}

IfcValue textOrAbsent(std::string text) {
    IfcValue value;
    value.kind = text.empty() ? IfcValue::Kind::Absent : IfcValue::Kind::Text;
    value.text = std::move(text);
    return value;
}

/** Puts the product's own sets over those of its type that have the same name. */
std::vector<IfcPropertySet> overlaid(std::vector<IfcPropertySet> own, std::vector<IfcPropertySet> ofType) {
    std::unordered_map<std::string, std::vector<IfcProperty>*> below;
    for (IfcPropertySet& set : ofType) {
        below.emplace(set.name, &set.properties);
    }
    for (IfcPropertySet& set : own) {
        const auto found = below.find(set.name);
        if (found == below.end()) {
            continue;
        }
        std::unordered_set<std::string> names;
        for (const IfcProperty& property : set.properties) {
            names.insert(property.name);
        }
        for (IfcProperty& property : *found->second) {
            if (names.count(property.name) == 0) {
                set.properties.push_back(std::move(property));
            }
        }
        found->second->clear();
        below.erase(found);
    }
    for (IfcPropertySet& set : ofType) {
        if (!set.properties.empty()) {
            own.push_back(std::move(set));
        }
    }
    return own;
}

} // namespace

IfcProperties::Kind IfcProperties::kindOf(const StepInstance& instance) {
    static const std::unordered_map<std::string_view, Kind> kinds = {
        {"IFCPROPERTYSET", Kind::PropertySet},
        {"IFCELEMENTQUANTITY", Kind::Quantities},
        {"IFCPROPERTYSINGLEVALUE", Kind::SingleValue},
        {"IFCPROPERTYENUMERATEDVALUE", Kind::ListValue},
        {"IFCPROPERTYLISTVALUE", Kind::ListValue},
        {"IFCPROPERTYBOUNDEDVALUE", Kind::BoundedValue},
        {"IFCPROPERTYTABLEVALUE", Kind::TableValue},
        {"IFCPROPERTYREFERENCEVALUE", Kind::ReferenceValue},
        {"IFCCOMPLEXPROPERTY", Kind::Complex},
        {"IFCQUANTITYLENGTH", Kind::LengthQuantity},
        {"IFCQUANTITYAREA", Kind::Quantity},
        {"IFCQUANTITYVOLUME", Kind::Quantity},
        {"IFCQUANTITYCOUNT", Kind::Quantity},
        {"IFCQUANTITYWEIGHT", Kind::Quantity},
        {"IFCQUANTITYTIME", Kind::Quantity},
        {"IFCPHYSICALCOMPLEXQUANTITY", Kind::ComplexQuantity},
        {"IFCSIUNIT", Kind::Unit},
        {"IFCCONVERSIONBASEDUNIT", Kind::ConversionUnit},
        {"IFCMEASUREWITHUNIT", Kind::MeasureWithUnit},
        {"IFCUNITASSIGNMENT", Kind::UnitAssignment},
        {"IFCRELDEFINESBYPROPERTIES", Kind::Relation},
        {"IFCRELOVERRIDESPROPERTIES", Kind::Relation},
        {"IFCRELDEFINESBYTYPE", Kind::Relation}};
    const auto found = kinds.find(instance.keyword);
    if (found != kinds.end()) {
        return found->second;
    }
    const std::string_view word = instance.keyword;
    if (startsWith(word, "IFCREL") || globalIdOf(instance.arguments).empty()) {
        return Kind::Other;
    }
    const bool isType =
        endsWith(word, "TYPE") || endsWith(word, "STYLE") || word == "IFCTYPEPRODUCT" || word == "IFCTYPEOBJECT";
    return isType ? Kind::Type : Kind::Product;
}

IfcProperties::IfcProperties(std::string& text) : budget_(std::max(maxSharing * text.size(), smallestBudget)) {
    StepInstances all(text);
    std::optional<Instance> units;
    while (const auto read = all.next()) {
        const Instance instance = {read->id, kindOf(*read), read->arguments};
        if (instance.kind == Kind::Relation) {
            addLinks(instance);
            text[static_cast<std::size_t>(read->keyword.data() - text.data())] = 'X';
        }
        if (instance.kind == Kind::UnitAssignment) {
            units = units.value_or(instance);
        } else if (instance.kind != Kind::Relation && instance.kind != Kind::Other) {
            instances_.push_back(instance);
        }
        if (instance.kind != Kind::Product) {
            continue;
        }
        const auto inserted = products_.emplace(globalIdOf(instance.arguments), instance.id);
        if (!inserted.second) {
            inserted.first->second.reset();
        }
    }
    const auto byId = [](const Instance& a, const Instance& b) { return a.id < b.id; };
    if (!std::is_sorted(instances_.begin(), instances_.end(), byId)) {
        std::stable_sort(instances_.begin(), instances_.end(), byId);
    }
    std::sort(links_.begin(), links_.end());
    links_.erase(std::unique(links_.begin(), links_.end()), links_.end());
    if (units) {
        findUnits(*units);
    }
}

/** Relations begin alike: GlobalId, owner, name, description, objects, what they are given. */
void IfcProperties::addLinks(const Instance& relation) {
    StepArguments arguments(relation.arguments);
    StepArguments objects = listMembers(arguments.nextAfter(4));
    const auto target = stepReference(arguments.nextAfter(0));
    for (auto object = objects.next(); object && target; object = objects.next()) {
        if (const auto id = stepReference(*object)) {
            links_.push_back({*id, *target});
        }
    }
}

void IfcProperties::findUnits(const Instance& assignment) {
    StepArguments units = listMembers(StepArguments(assignment.arguments).nextAfter(0));
    for (auto member = units.next(); member; member = units.next()) {
        const Instance* unit = find(stepReference(*member));
        const std::string_view type =
            unit == nullptr ? std::string_view() : stepEnumeration(StepArguments(unit->arguments).nextAfter(1));
        if (type == "LENGTHUNIT") {
            lengthUnit_ = scaleOf(unit, 0);
        } else if (type == "PLANEANGLEUNIT") {
            angleUnit_ = scaleOf(unit, 0);
        }
    }
}

/** A unit in metres or radians. */
double IfcProperties::scaleOf(const Instance* unit, int depth) const {
    if (unit == nullptr || depth > maxDepth) {
        return 1.0;
    }
    StepArguments arguments(unit->arguments);
    double scale = 1.0;
    if (unit->kind == Kind::Unit) {
        scale = prefixFactor(stepEnumeration(arguments.nextAfter(2)));
    } else if (unit->kind == Kind::ConversionUnit) {
        scale = scaleOf(find(stepReference(arguments.nextAfter(3))), depth + 1);
    } else if (unit->kind == Kind::MeasureWithUnit) {
        scale = std::abs(valueOf(arguments.nextAfter(0)).number);
        scale *= scaleOf(find(stepReference(arguments.nextAfter(0))), depth + 1);
    }
    return scale > 0.0 && std::isfinite(scale) ? scale : 1.0;
}

const IfcProperties::Instance* IfcProperties::find(std::optional<std::uint64_t> id) const {
    if (!id) {
        return nullptr;
    }
    const auto found = std::lower_bound(instances_.begin(), instances_.end(), *id,
                                        [](const Instance& a, std::uint64_t b) { return a.id < b; });
    return found != instances_.end() && found->id == *id ? &*found : nullptr;
}

const IfcProperties::Instance* IfcProperties::findProduct(const std::string& globalId) const {
    const auto found = products_.find(globalId);
    return found == products_.end() ? nullptr : find(found->second);
}

std::optional<std::string> IfcProperties::nameOf(const std::string& globalId) const {
    const Instance* product = findProduct(globalId);
    const auto name = product == nullptr ? std::nullopt : stepQuoted(StepArguments(product->arguments).nextAfter(2));
    return name ? std::optional<std::string>(decodeStepText(*name)) : std::nullopt;
}

std::vector<IfcPropertySet> IfcProperties::setsOf(const std::string& globalId) {
    const Instance* product = findProduct(globalId);
    if (product == nullptr) {
        return {};
    }

    std::vector<IfcPropertySet> own;
    std::vector<IfcPropertySet> ofType;
    const auto first = std::lower_bound(links_.begin(), links_.end(), Link{product->id, 0});
    for (auto link = first; link != links_.end() && link->object == product->id; ++link) {
        const Instance* target = find(link->target);
        if (target == nullptr || !spend(0)) {
            continue;
        }
        if (target->kind != Kind::Type) {
            addSet(*target, own);
            continue;
        }
        StepArguments typeSets = listMembers(StepArguments(target->arguments).nextAfter(5));
        for (auto member = typeSets.next(); member && spend(member->size()); member = typeSets.next()) {
            if (const Instance* set = find(stepReference(*member))) {
                addSet(*set, ofType);
            }
        }
    }
    return ofType.empty() ? own : overlaid(std::move(own), std::move(ofType));
}

/** Takes what an instance of a size costs; false when nothing is left. */
bool IfcProperties::spend(std::size_t bytes) {
    budget_ -= std::min(budget_, bytes + 32);
    isCutShort_ = isCutShort_ || budget_ == 0;
    return budget_ > 0;
}

void IfcProperties::addSet(const Instance& instance, std::vector<IfcPropertySet>& sets) {
    if (instance.kind != Kind::PropertySet && instance.kind != Kind::Quantities) {
        return;
    }
    IfcPropertySet set;
    StepArguments arguments(instance.arguments);
    set.globalId = stepText(arguments.nextAfter(0));
    set.name = stepText(arguments.nextAfter(1));
    set.description = stepText(arguments.nextAfter(0));
    set.properties = propertiesOf(arguments.nextAfter(instance.kind == Kind::Quantities ? 1 : 0), 0);
    sets.push_back(std::move(set));
}

std::vector<IfcProperty> IfcProperties::propertiesOf(std::string_view list, int depth) {
    std::vector<IfcProperty> properties;
    StepArguments members = listMembers(list);
    for (auto member = members.next(); member && spend(member->size()); member = members.next()) {
        const Instance* instance = find(stepReference(*member));
        if (instance == nullptr || !spend(instance->arguments.size())) {
            continue;
        }
        nested_ = depth == 0 ? 0 : nested_ + 1;
        if (nested_ > maxNested) {
            isCutShort_ = true;
            break;
        }
        if (auto property = propertyOf(*instance, depth)) {
            properties.push_back(std::move(*property));
        }
    }
    return properties;
}

/** A property; nothing when it has no value. All begin alike: name, description. */
std::optional<IfcProperty> IfcProperties::propertyOf(const Instance& instance, int depth) {
    IfcProperty property;
    StepArguments arguments(instance.arguments);
    property.name = stepText(arguments.nextAfter(0));
    property.description = stepText(arguments.nextAfter(0));
    const std::string_view third = arguments.nextAfter(0);
    const std::string_view fourth = arguments.nextAfter(0);
    switch (instance.kind) {
    case Kind::SingleValue:
        property.value = valueOf(third);
        toModelUnit(property.value, fourth);
        break;
    case Kind::Quantity:
    case Kind::LengthQuantity:
        property.value = valueOf(fourth);
        if (instance.kind == Kind::LengthQuantity && property.value.kind == IfcValue::Kind::Real) {
            property.value.kind = IfcValue::Kind::Length;
        }
        toModelUnit(property.value, third);
        break;
    case Kind::ListValue:
        property.value = listValueOf(third);
        break;
    case Kind::BoundedValue:
        property.value = textOrAbsent(rangeText(valueText(fourth), valueText(third)));
        break;
    case Kind::TableValue:
        property.value = textOrAbsent(rangeText(listValueOf(third).text, listValueOf(fourth).text));
        break;
    case Kind::ReferenceValue:
        property.value = textOrAbsent(stepText(third));
        break;
    case Kind::Complex:
    case Kind::ComplexQuantity:
        property.isComplex = true;
        property.usageName = stepText(instance.kind == Kind::Complex ? third : arguments.nextAfter(1));
        if (depth < maxDepth) {
            property.nested = propertiesOf(instance.kind == Kind::Complex ? fourth : third, depth + 1);
        }
        return property;
    default:
        return std::nullopt;
    }
    if (property.value.kind == IfcValue::Kind::Absent) {
        return std::nullopt;
    }
    return property;
}

/** Lengths in the unit of the model, angles in degrees: a property may have a unit of its own. */
void IfcProperties::toModelUnit(IfcValue& value, std::string_view unit) const {
    const Instance* own = find(stepReference(unit));
    if (value.kind == IfcValue::Kind::Length && own != nullptr) {
        value.number *= scaleOf(own, 0) / lengthUnit_;
    } else if (value.kind == IfcValue::Kind::Angle) {
        const double scale = own != nullptr ? scaleOf(own, 0) : angleUnit_;
        // Files round the number of radians in a degree. A number of degrees stands in them as it is meant.
        if (std::abs(scale * 180.0 / pi - 1.0) > 1e-6) {
            value.number *= scale * 180.0 / pi;
        }
    }
}

} // namespace IfcReader
