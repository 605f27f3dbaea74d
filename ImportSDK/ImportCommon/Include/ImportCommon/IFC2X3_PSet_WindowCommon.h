/**
 * @file IFC2X3_PSet_WindowCommon.h
 * The property set "Pset_WindowCommon".
 */
#pragma once

#include <ImportCommon/IFC2X3_PSet_Custom.h>

namespace ImportCommon {

/** Common properties of a window. */
struct IFC2X3_PSet_WindowCommon_s {
    wchar_t Reference[256];       ///< reference of the type in the project
    wchar_t FireRating[256];      ///< fire rating, by the national code
    wchar_t AcousticRating[256];  ///< acoustic rating, by the national code
    wchar_t SecurityRating[256];  ///< security rating, by the national code
    double Infiltration;          ///< air flow through the closed opening
    double ThermalTransmittance;  ///< heat flow per area and kelvin
    double GlazingAreaFraction;   ///< glazed part of the area, 0 to 1
    bool SmokeStop;               ///< whether it stops smoke
    bool IsExternal;              ///< whether it is part of the outer shell
    bool hasInfiltration;         ///< whether `Infiltration` is present
    bool hasThermalTransmittance; ///< whether `ThermalTransmittance` is present
    bool hasGlazingAreaFraction;  ///< whether `GlazingAreaFraction` is present
    bool hasSmokeStop;            ///< whether `SmokeStop` is present

    /** @return the set "Pset_WindowCommon"; see IFC2X3_PSet_Custom_s */
    IMPORT_COMMON_API operator IFC2X3_PSet_Custom_s() const;
};

} // namespace ImportCommon
