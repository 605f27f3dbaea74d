/**
 * @file Units.h
 * The units of a model.
 */
#pragma once

#include "step/StepFile.h"

#include <map>
#include <string>
#include <string_view>

namespace IfcReader {

/** What the units of a model are in SI units: prefixed, conversion-based and derived ones. */
class Units {
public:
    /** The units that the project is assigned; SI units without a prefix where it is assigned none. */
    explicit Units(const StepFile& file);

    double metre = 1.0;  ///< metres in a unit of length
    double radian = 1.0; ///< radians in a unit of plane angle

    /**
     * What a number measured in the model's unit is multiplied with to be in the SI unit. 1 for what has no unit, such
     * as a ratio; a temperature isn't shifted.
     * @param unitType  such as AREAUNIT or THERMALTRANSMITTANCEUNIT
     */
    double factorOf(std::string_view unitType) const;

    /** The same for the unit that an instance gives; 1 for one that gives none that makes sense. */
    double factorOf(const StepInstance& unit) const { return factorOf(unit, 0); }

private:
    double factorOf(const StepInstance& unit, int depth) const;
    double derivedFactor(std::string_view elements) const;
    void read(const StepInstance& assignment);

    const StepFile& file_;
    std::map<std::string, double, std::less<>> factors_;
};

/** The type of the unit of a measure: AREAUNIT for IFCAREAMEASURE. */
std::string unitTypeOf(std::string_view measure);

} // namespace IfcReader
