/**
 * @file IFC2X3_PSet_SlabCommon.h
 * The property set "Pset_SlabCommon".
 */
#pragma once

#include <ImportCommon/IFC2X3_PSet_Custom.h>

namespace ImportCommon {

/** Common properties of a slab. */
struct IFC2X3_PSet_SlabCommon_s {
    wchar_t Reference[256];            ///< reference of the type in the project
    wchar_t AcousticRating[256];       ///< acoustic rating, by the national code
    wchar_t FireRating[256];           ///< fire rating, by the national code
    wchar_t SurfaceSpreadOfFlame[256]; ///< how fast flames spread on the surface, by the national code
    bool Compartmentation;             ///< whether it bounds a fire compartment
    bool Combustible;                  ///< whether it is made of combustible material
    double ThermalTransmittance;       ///< heat flow per area and kelvin
    double PitchAngle;                 ///< angle to the horizontal in radians
    bool IsExternal;                   ///< whether it is part of the outer shell
    bool IsLoadBearing;                ///< whether it carries load
    bool hasCompartmentation;          ///< whether `Compartmentation` is present
    bool hasCombustible;               ///< whether `Combustible` is present
    bool hasThermalTransmittance;      ///< whether `ThermalTransmittance` is present
    bool hasPitchAngle;                ///< whether `PitchAngle` is present

    /** @return the set "Pset_SlabCommon"; see IFC2X3_PSet_Custom_s */
    IMPORT_COMMON_API operator IFC2X3_PSet_Custom_s() const;
};

} // namespace ImportCommon
