/**
 * @file PropertySets.h
 * The property sets of products.
 */
#pragma once

#include "IfcReader/PropertySet.h"
#include "OutputBudget.h"
#include "Units.h"
#include "products/Relations.h"
#include "properties/Values.h"
#include "step/StepFile.h"

#include <string>
#include <vector>

namespace IfcReader {

/** Reads the sets of one product at a time. What is inside a file lives longer than this object. */
class PropertySets {
public:
    PropertySets(const StepFile& file, const Relations& relations, const Units& units, OutputBudget& budget)
        : file_(file), relations_(relations), units_(units), budget_(budget) {}

    /**
     * A product's property sets and those of its types, over which the product's own properties go where set and
     * property have the same names. Throws IfcError for properties nested without end or in numbers that can't be
     * meant, and when the budget is spent.
     */
    std::vector<IfcPropertySet> of(std::uint64_t product);

private:
    void addSet(const StepInstance& instance, std::vector<IfcPropertySet>& sets);
    void applyOverrides(std::uint64_t product, std::uint64_t set, std::vector<IfcProperty>& properties);
    std::vector<IfcProperty> propertiesOf(std::string_view list);
    std::optional<IfcProperty> propertyOf(const StepInstance& instance);
    void addNested(IfcProperty& property, const StepInstance& instance, std::string_view usageName,
                   std::string_view list);
    IfcValue quantityOf(std::string_view keyword, std::string_view argument, std::string_view unit) const;
    void toModelUnit(IfcValue& value, std::string_view unit) const;

    const StepFile& file_;
    const Relations& relations_;
    const Units& units_;
    OutputBudget& budget_;
    std::vector<std::uint64_t> path_; ///< the complex properties around the one that is read
    std::size_t nested_ = 0;          ///< properties so far inside of the outermost one
};

} // namespace IfcReader
