/**
 * @file IFC2X3_PSet_StairCommon.h
 * The property set "Pset_StairCommon".
 */
#pragma once

#include <ImportCommon/IFC2X3_PSet_Custom.h>

namespace ImportCommon {

/** Common properties of a stair. */
struct IFC2X3_PSet_StairCommon_s {
    wchar_t Reference[256];    ///< reference of the type in the project
    wchar_t FireRating[256];   ///< fire rating, by the national code
    int NumberOfRiser;         ///< number of risers
    int NumberOfTreads;        ///< number of treads
    double RiserHeight;        ///< height of a riser; a length
    double TreadLength;        ///< length of a tread; a length
    double RequiredHeadroom;   ///< required clear height; a length
    bool IsHandicapAccessible; ///< whether a wheelchair user can use it
    bool IsExternal;           ///< whether it is part of the outer shell
    bool FireExit;             ///< whether it is an exit in case of fire
    bool HasNonSkidSurface;    ///< whether the surface is slip-resistant
    bool hasNumberOfRiser;     ///< whether `NumberOfRiser` is present
    bool hasNumberOfTreads;    ///< whether `NumberOfTreads` is present
    bool hasRiserHeight;       ///< whether `RiserHeight` is present
    bool hasTreadLength;       ///< whether `TreadLength` is present
    bool hasRequiredHeadroom;  ///< whether `RequiredHeadroom` is present

    /** @return the set "Pset_StairCommon"; see IFC2X3_PSet_Custom_s */
    IMPORT_COMMON_API operator IFC2X3_PSet_Custom_s() const;
};

} // namespace ImportCommon
