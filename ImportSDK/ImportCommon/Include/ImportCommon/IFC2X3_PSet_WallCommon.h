/**
 * @file IFC2X3_PSet_WallCommon.h
 * The property set "Pset_WallCommon".
 */
#pragma once

#include <ImportCommon/IFC2X3_PSet_Custom.h>

namespace ImportCommon {

/** Common properties of a wall. `IsExternal` and `IsLoadBearing` are not part of the set; stored data depends on it. */
struct IFC2X3_PSet_WallCommon_s {
    wchar_t Reference[256];            ///< reference of the type in the project
    wchar_t AcousticRating[256];       ///< acoustic rating, by the national code
    wchar_t FireRating[256];           ///< fire rating, by the national code
    wchar_t SurfaceSpreadOfFlame[256]; ///< how fast flames spread on the surface, by the national code
    double ThermalTransmittance;       ///< heat flow per area and kelvin
    bool Combustible;                  ///< whether it is made of combustible material
    bool ExtendToStructure;            ///< whether it reaches the structure above
    bool Compartmentation;             ///< whether it bounds a fire compartment
    bool IsExternal;                   ///< not part of the set
    bool IsLoadBearing;                ///< not part of the set
    bool hasThermalTransmittance;      ///< whether `ThermalTransmittance` is present
    bool hasCombustible;               ///< whether `Combustible` is present
    bool hasExtendToStructure;         ///< whether `ExtendToStructure` is present
    bool hasCompartmentation;          ///< whether `Compartmentation` is present

    /** @return the set "Pset_WallCommon"; see IFC2X3_PSet_Custom_s */
    IMPORT_COMMON_API operator IFC2X3_PSet_Custom_s() const;
};

} // namespace ImportCommon
