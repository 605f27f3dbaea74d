/**
 * @file IFC2X3_PSet_ColumnCommon.h
 * The property set "Pset_ColumnCommon".
 */
#pragma once

#include <ImportCommon/IFC2X3_PSet_Custom.h>

namespace ImportCommon {

/** Common properties of a column. */
struct IFC2X3_PSet_ColumnCommon_s {
    wchar_t Reference[256];  ///< reference of the type in the project
    wchar_t FireRating[256]; ///< fire rating, by the national code
    double Slope;            ///< slope, see `SlopeKind`
    bool IsExternal;         ///< whether it is part of the outer shell
    bool IsLoadBearing;      ///< whether it carries load
    int SlopeKind;           ///< what `Slope` is: 1 a length, 2 an angle in degrees; any other: it is left out
    bool hasSlope;           ///< whether `Slope` is present

    /** @return the set "Pset_ColumnCommon"; see IFC2X3_PSet_Custom_s */
    IMPORT_COMMON_API operator IFC2X3_PSet_Custom_s() const;
};

} // namespace ImportCommon
