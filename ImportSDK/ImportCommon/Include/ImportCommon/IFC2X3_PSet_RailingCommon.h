/**
 * @file IFC2X3_PSet_RailingCommon.h
 * The property set "Pset_RailingCommon".
 */
#pragma once

#include <ImportCommon/IFC2X3_PSet_Custom.h>

namespace ImportCommon {

/** Common properties of a railing. */
struct IFC2X3_PSet_RailingCommon_s {
    wchar_t Reference[256]; ///< reference of the type in the project
    double Height;          ///< height; a length
    double Diameter;        ///< diameter of the handrail; a length
    bool IsExternal;        ///< whether it is part of the outer shell
    bool hasHeight;         ///< whether `Height` is present
    bool hasDiameter;       ///< whether `Diameter` is present

    /** @return the set "Pset_RailingCommon"; see IFC2X3_PSet_Custom_s */
    IMPORT_COMMON_API operator IFC2X3_PSet_Custom_s() const;
};

} // namespace ImportCommon
