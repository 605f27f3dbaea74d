/**
 * @file CommonSets.h
 * Common property sets of IFC 2x3 by way of the library's records: two of them, to show how it is done.
 */
#pragma once

#include <ImportCommon/IFC2X3_PSet_Custom.h>

#include <IfcReader/PropertySet.h>

#include <algorithm>
#include <optional>
#include <string_view>
#include <vector>

using IfcReader::IfcProperty;
using IfcReader::IfcPropertySet;
using IfcReader::IfcValue;

/** A set that a record was converted to. */
struct CommonSet {
    std::string_view record; ///< name of the record
    ImportCommon::IFC2X3_PSet_Custom_s set;

    /** What the set says and the file says too: names in the set with the file's properties. */
    struct Held {
        std::string_view name;
        const IfcProperty* property;
    };
    std::vector<Held> held;

    bool holds(const IfcProperty& property) const {
        return std::any_of(held.begin(), held.end(), [&](const Held& entry) { return entry.property == &property; });
    }
};

/**
 * Fills the record for a property set of a product and converts it; nothing when the product's class has no record of
 * that set. A property goes into the record only when its type is the one that the record gives it again.
 */
std::optional<CommonSet> commonSetOf(std::string_view className, const IfcPropertySet& set);
