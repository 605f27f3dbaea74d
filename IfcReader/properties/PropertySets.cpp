#include "properties/PropertySets.h"

#include "geometry/Fineness.h"

#include <algorithm>
#include <cmath>
#include <unordered_map>
#include <unordered_set>

namespace IfcReader {

namespace {

/** A model has no deeper ones. */
constexpr std::size_t maxDepth = 8;

/** Properties inside of one, at any depth. */
constexpr std::size_t maxNested = 10000;

/** What a set or property takes besides its texts. */
constexpr std::size_t overhead = 64;

std::string rangeText(std::string_view low, std::string_view high) {
    return low.empty() && high.empty() ? std::string() : std::string(low) + " .. " + std::string(high);
}

IfcValue textOrAbsent(std::string text) {
    IfcValue value;
    value.kind = text.empty() ? IfcValue::Kind::Absent : IfcValue::Kind::Text;
    value.text = std::move(text);
    return value;
}

std::size_t sizeOf(const IfcProperty& property) {
    return overhead + property.name.size() + property.description.size() + property.value.text.size() +
           property.usageName.size();
}

/** Replaces properties by others of the same name, and appends those that are new. */
void replaceNamed(std::vector<IfcProperty>& properties, std::vector<IfcProperty> by) {
    std::unordered_map<std::string, std::size_t> places;
    for (std::size_t i = 0; i < properties.size(); ++i) {
        places.emplace(properties[i].name, i);
    }
    for (IfcProperty& property : by) {
        const auto found = places.find(property.name);
        if (found != places.end()) {
            properties[found->second] = std::move(property);
        } else {
            properties.push_back(std::move(property));
        }
    }
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

[[noreturn]] void refuse(const StepInstance& property, const std::string& what) {
    throw IfcError("the model is refused: the property #" + std::to_string(property.id) + ' ' + what);
}

} // namespace

std::vector<IfcPropertySet> PropertySets::of(std::uint64_t product) {
    std::vector<IfcPropertySet> own;
    std::vector<IfcPropertySet> ofType;
    for (const Links::Link& link : relations_.sets.of(product)) {
        const auto set = file_.find(link.to);
        const std::size_t before = own.size();
        addSet(*set, own);
        if (own.size() > before) {
            applyOverrides(product, link.to, own.back().properties);
        }
    }
    for (const Links::Link& link : relations_.types.of(product)) {
        StepArguments sets = listMembers(StepArguments(file_.find(link.to)->arguments).nextAfter(5));
        for (auto member = sets.next(); member; member = sets.next()) {
            if (const auto set = file_.find(*member)) {
                addSet(*set, ofType);
            }
        }
    }
    if (ofType.empty()) {
        return own;
    }
    return overlaid(std::move(own), std::move(ofType));
}

void PropertySets::addSet(const StepInstance& instance, std::vector<IfcPropertySet>& sets) {
    budget_.spend(overhead);
    const bool isQuantities = instance.keyword == "IFCELEMENTQUANTITY";
    if (instance.keyword != "IFCPROPERTYSET" && !isQuantities) {
        return;
    }
    IfcPropertySet set;
    StepArguments arguments(instance.arguments);
    set.globalId = stepText(arguments.nextAfter(0));
    set.name = stepText(arguments.nextAfter(1));
    set.description = stepText(arguments.nextAfter(0));
    budget_.spend(set.globalId.size() + set.name.size() + set.description.size());
    set.properties = propertiesOf(arguments.nextAfter(isQuantities ? 1 : 0));
    sets.push_back(std::move(set));
}

/** Of a product's relations that replace properties, those that do so in one set. */
void PropertySets::applyOverrides(std::uint64_t product, std::uint64_t set, std::vector<IfcProperty>& properties) {
    for (const Links::Link& link : relations_.overrides.of(product)) {
        budget_.spend(overhead);
        StepArguments arguments(file_.find(link.to)->arguments);
        if (stepReference(arguments.nextAfter(5)) == set) {
            replaceNamed(properties, propertiesOf(arguments.nextAfter(0)));
        }
    }
}

std::vector<IfcProperty> PropertySets::propertiesOf(std::string_view list) {
    std::vector<IfcProperty> properties;
    StepArguments members = listMembers(list);
    for (auto member = members.next(); member; member = members.next()) {
        const auto instance = file_.find(*member);
        if (!instance || std::find(path_.begin(), path_.end(), instance->id) != path_.end()) {
            continue; // a property can't hold itself
        }
        nested_ = path_.empty() ? 0 : nested_ + 1;
        if (nested_ > maxNested) {
            refuse(*instance, "is one of more than " + std::to_string(maxNested) + " inside of one property");
        }
        auto property = propertyOf(*instance);
        budget_.spend(property ? sizeOf(*property) : overhead);
        if (property) {
            properties.push_back(std::move(*property));
        }
    }
    return properties;
}

/** A property; nothing when it has no value. All begin alike: name, description. */
std::optional<IfcProperty> PropertySets::propertyOf(const StepInstance& instance) {
    IfcProperty property;
    StepArguments arguments(instance.arguments);
    const std::string_view name = arguments.nextAfter(0);
    const std::string_view description = arguments.nextAfter(0);
    const std::string_view third = arguments.nextAfter(0);
    const std::string_view fourth = arguments.nextAfter(0);
    const std::string_view keyword = instance.keyword;
    if (keyword == "IFCPROPERTYSINGLEVALUE") {
        property.value = valueOf(third, units_);
        toModelUnit(property.value, fourth);
    } else if (keyword.substr(0, 11) == "IFCQUANTITY") {
        property.value = quantityOf(keyword.substr(11), fourth, third);
    } else if (keyword == "IFCPROPERTYENUMERATEDVALUE" || keyword == "IFCPROPERTYLISTVALUE") {
        property.value = listValueOf(third);
    } else if (keyword == "IFCPROPERTYBOUNDEDVALUE") {
        property.value = textOrAbsent(rangeText(valueText(fourth), valueText(third)));
    } else if (keyword == "IFCPROPERTYTABLEVALUE") {
        property.value = textOrAbsent(rangeText(listValueOf(third).text, listValueOf(fourth).text));
    } else if (keyword == "IFCPROPERTYREFERENCEVALUE") {
        property.value = textOrAbsent(stepText(third));
    } else if (keyword == "IFCCOMPLEXPROPERTY") {
        addNested(property, instance, third, fourth);
    } else if (keyword == "IFCPHYSICALCOMPLEXQUANTITY") {
        addNested(property, instance, arguments.nextAfter(1), third);
    }
    if (property.value.kind == IfcValue::Kind::Absent && !property.isComplex) {
        return std::nullopt;
    }
    property.name = stepText(name);
    property.description = stepText(description);
    return property;
}

void PropertySets::addNested(IfcProperty& property, const StepInstance& instance, std::string_view usageName,
                             std::string_view list) {
    if (path_.size() >= maxDepth) {
        refuse(instance, "lies more than " + std::to_string(maxDepth) + " deep in others");
    }
    property.isComplex = true;
    property.usageName = stepText(usageName);
    path_.push_back(instance.id);
    property.nested = propertiesOf(list);
    path_.pop_back();
}

/** @param kind  what the name of the quantity's class ends with */
IfcValue PropertySets::quantityOf(std::string_view kind, std::string_view argument, std::string_view unit) const {
    IfcValue value = valueOf(argument, units_);
    if (value.kind != IfcValue::Kind::Real) {
        return value;
    }
    if (kind == "LENGTH") {
        value.kind = IfcValue::Kind::Length;
    }
    if (kind != "COUNT") {
        value.factor = units_.factorOf(kind == "WEIGHT" ? "MASSUNIT" : std::string(kind) + "UNIT");
    }
    toModelUnit(value, unit);
    return value;
}

/** Lengths in the unit of the model, angles in degrees: a property may have a unit of its own. */
void PropertySets::toModelUnit(IfcValue& value, std::string_view unit) const {
    const auto own = file_.find(unit);
    if (value.kind == IfcValue::Kind::Length) {
        value.number *= own ? units_.factorOf(*own) / units_.metre : 1.0;
        value.factor = units_.metre;
    } else if (value.kind == IfcValue::Kind::Angle) {
        const double scale = own ? units_.factorOf(*own) : units_.radian;
        // Files round the number of radians in a degree. A number of degrees stands in them as it is meant.
        if (std::abs(scale * 180.0 / pi - 1.0) > 1e-6) {
            value.number *= scale * 180.0 / pi;
        }
    } else if (value.kind == IfcValue::Kind::Real && own) {
        value.factor = units_.factorOf(*own);
    }
}

} // namespace IfcReader
