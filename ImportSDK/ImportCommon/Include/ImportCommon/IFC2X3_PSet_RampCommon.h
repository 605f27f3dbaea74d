/**
 * @file IFC2X3_PSet_RampCommon.h
 * The property set "Pset_RampCommon".
 */
#pragma once

#include <ImportCommon/IFC2X3_PSet_Custom.h>

namespace ImportCommon {

/** Common properties of a ramp. */
struct IFC2X3_PSet_RampCommon_s {
    wchar_t Reference[256];    ///< reference of the type in the project
    wchar_t FireRating[256];   ///< fire rating, by the national code
    double Slope;              ///< slope, see `SlopeKind`
    double RequiredHeadroom;   ///< required clear height; a length
    bool HasNonSkidSurface;    ///< whether the surface is slip-resistant
    bool IsHandicapAccessible; ///< whether a wheelchair user can use it
    bool IsExternal;           ///< whether it is part of the outer shell
    bool FireExit;             ///< whether it is an exit in case of fire
    bool hasHasNonSkidSurface; ///< whether `HasNonSkidSurface` is present
    bool hasRequiredHeadroom;  ///< whether `RequiredHeadroom` is present
    bool hasSlope;             ///< whether `Slope` is present
    int SlopeKind;             ///< what `Slope` is: 1 a length, 2 an angle in degrees; any other: it is left out

    /** @return the set "Pset_RampCommon"; see IFC2X3_PSet_Custom_s */
    IMPORT_COMMON_API operator IFC2X3_PSet_Custom_s() const;
};

} // namespace ImportCommon
