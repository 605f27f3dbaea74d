/**
 * @file IFC2X3_PSet_RoofCommon.h
 * The property set "Pset_RoofCommon".
 */
#pragma once

#include <ImportCommon/IFC2X3_PSet_Custom.h>

namespace ImportCommon {

/** Common properties of a roof. */
struct IFC2X3_PSet_RoofCommon_s {
    wchar_t Reference[256];  ///< reference of the type in the project
    wchar_t FireRating[256]; ///< fire rating, by the national code
    bool IsExternal;         ///< whether it is part of the outer shell

    /** @return the set "Pset_RoofCommon"; see IFC2X3_PSet_Custom_s */
    IMPORT_COMMON_API operator IFC2X3_PSet_Custom_s() const;
};

} // namespace ImportCommon
