/**
 * @file IFC2X3_PSet_CurtainWallCommon.h
 * The property set "Pset_IFC2X3_PSet_CurtainWallCommon".
 */
#pragma once

#include <ImportCommon/IFC2X3_PSet_Custom.h>

namespace ImportCommon {

/** Common properties of a curtain wall. The name of the set differs from the pattern of the others, and
 * `AcousticRating` is not part of it; both are meant. */
struct IFC2X3_PSet_CurtainWallCommon_s {
    wchar_t Reference[256];            ///< reference of the type in the project
    wchar_t AcousticRating[256];       ///< not part of the set
    wchar_t FireRating[256];           ///< fire rating, by the national code
    wchar_t SurfaceSpreadOfFlame[256]; ///< how fast flames spread on the surface, by the national code
    double ThermalTransmittance;       ///< heat flow per area and kelvin
    bool Combustible;                  ///< whether it is made of combustible material
    bool IsExternal;                   ///< whether it is part of the outer shell
    bool hasThermalTransmittance;      ///< whether `ThermalTransmittance` is present
    bool hasCombustible;               ///< whether `Combustible` is present

    /** The set "Pset_IFC2X3_PSet_CurtainWallCommon"; see IFC2X3_PSet_Custom_s. */
    IMPORT_COMMON_API operator IFC2X3_PSet_Custom_s() const;
};

} // namespace ImportCommon
