/**
 * @file IfcProperties.h
 * Names and property sets as they stand in the file.
 */
#pragma once

#include "IfcValue.h"
#include "step/StepText.h"

#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace IfcReader {

/** A property with a value, or with properties inside it. */
struct IfcProperty {
    std::string name; ///< UTF-8, as all texts here
    std::string description;
    IfcValue value; ///< lengths in the unit of the model, angles in degrees
    bool isComplex = false;
    std::string usageName;           ///< of a complex property
    std::vector<IfcProperty> nested; ///< of a complex property
};

struct IfcPropertySet {
    std::string globalId;
    std::string name;
    std::string description;
    std::vector<IfcProperty> properties; ///< those that have a value
};

/**
 * What a file says about its products besides their geometry. The reader hands on names and properties too, but it
 * takes blanks out of texts, loses letters beyond ASCII, and puts all properties of a product together in one list
 * without their sets and types.
 */
class IfcProperties {
public:
    /**
     * Reads the text of a file in one pass; the text has to live as long as this object.
     *
     * Relations to property sets get a keyword that the reader does not know. It would follow each of them to make
     * lists that nobody needs, for a third of the time that it takes in all.
     */
    explicit IfcProperties(std::string& text);

    /** A product's name; nothing when it has none, or when its GlobalId is not that of a single product. */
    std::optional<std::string> nameOf(const std::string& globalId) const;

    /**
     * A product's property sets and those of its type, over which the product's own properties go where set and
     * property have the same names. None when the GlobalId is not that of a single product.
     */
    std::vector<IfcPropertySet> setsOf(const std::string& globalId);

    /** Whether so much is shared between products, or inside of properties, that not every set was given in full. */
    bool isCutShort() const { return isCutShort_; }

private:
    enum class Kind {
        Product,
        Type,
        PropertySet,
        Quantities,
        SingleValue,
        ListValue,
        BoundedValue,
        TableValue,
        ReferenceValue,
        Complex,
        Quantity,
        LengthQuantity,
        ComplexQuantity,
        Unit,
        ConversionUnit,
        MeasureWithUnit,
        Relation,
        UnitAssignment,
        Other
    };

    struct Instance {
        std::uint64_t id;
        Kind kind;
        std::string_view arguments;
    };

    struct Link {
        std::uint64_t object;
        std::uint64_t target; ///< a property set, or a type that has some
        bool operator<(const Link& other) const {
            return object != other.object ? object < other.object : target < other.target;
        }
        bool operator==(const Link& other) const { return object == other.object && target == other.target; }
    };

    static Kind kindOf(const StepInstance& instance);

    void addLinks(const Instance& relation);
    void findUnits(const Instance& assignment);
    double scaleOf(const Instance* unit, int depth) const;
    const Instance* find(std::optional<std::uint64_t> id) const;
    const Instance* findProduct(const std::string& globalId) const;

    bool spend(std::size_t bytes);
    void addSet(const Instance& instance, std::vector<IfcPropertySet>& sets);
    std::vector<IfcProperty> propertiesOf(std::string_view list, int depth);
    std::optional<IfcProperty> propertyOf(const Instance& instance, int depth);
    void toModelUnit(IfcValue& value, std::string_view unit) const;

    std::vector<Instance> instances_;                                             ///< sorted by id
    std::vector<Link> links_;                                                     ///< sorted
    std::unordered_map<std::string_view, std::optional<std::uint64_t>> products_; ///< no id: there are several
    double lengthUnit_ = 1.0;                                                     ///< in metres
    double angleUnit_ = 1.0;                                                      ///< in radians

    /** Text that may still be read for sets: what products share is read again for each of them. */
    std::size_t budget_;
    std::size_t nested_ = 0; ///< properties so far inside of the one that is read
    bool isCutShort_ = false;
};

} // namespace IfcReader
