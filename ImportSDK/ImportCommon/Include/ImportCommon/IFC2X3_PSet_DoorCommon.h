/**
 * @file IFC2X3_PSet_DoorCommon.h
 * The property set "Pset_DoorCommon".
 */
#pragma once

#include <ImportCommon/IFC2X3_PSet_Custom.h>

namespace ImportCommon {

/** Common properties of a door. The set's "FireExit" carries the value of `IsExternal`; stored data depends on it. */
struct IFC2X3_PSet_DoorCommon_s {
    wchar_t Reference[256];       ///< reference of the type in the project
    wchar_t FireRating[256];      ///< fire rating, by the national code
    wchar_t AcousticRating[256];  ///< acoustic rating, by the national code
    wchar_t SecurityRating[256];  ///< security rating, by the national code
    double Infiltration;          ///< air flow through the closed opening
    double ThermalTransmittance;  ///< heat flow per area and kelvin
    double GlazingAreaFraction;   ///< glazed part of the area, 0 to 1
    bool HandicapAccessible;      ///< whether a wheelchair user can use it
    bool FireExit;                ///< never read: the set's "FireExit" carries `IsExternal`
    bool SelfClosing;             ///< whether it closes by itself
    bool SmokeStop;               ///< whether it stops smoke
    bool IsExternal;              ///< whether it is part of the outer shell
    bool hasInfiltration;         ///< whether `Infiltration` is present
    bool hasThermalTransmittance; ///< whether `ThermalTransmittance` is present
    bool hasGlazingAreaFraction;  ///< whether `GlazingAreaFraction` is present
    bool hasHandicapAccessible;   ///< whether `HandicapAccessible` is present

    /** @return the set "Pset_DoorCommon"; see IFC2X3_PSet_Custom_s */
    IMPORT_COMMON_API operator IFC2X3_PSet_Custom_s() const;
};

} // namespace ImportCommon
