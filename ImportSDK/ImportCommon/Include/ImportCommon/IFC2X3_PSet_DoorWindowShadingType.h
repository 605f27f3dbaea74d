/**
 * @file IFC2X3_PSet_DoorWindowShadingType.h
 * The property set "Pset_DoorWindowShadingType".
 */
#pragma once

#include <ImportCommon/IFC2X3_PSet_Custom.h>

namespace ImportCommon {

/** Shading of a door or window. */
struct IFC2X3_PSet_DoorWindowShadingType_s {
    double ExternalShadingCoefficient;  ///< shading coefficient outside
    double InternalShadingCoefficient;  ///< shading coefficient inside
    double InsetShadingCoefficient;     ///< shading coefficient between the panes
    bool hasExternalShadingCoefficient; ///< whether `ExternalShadingCoefficient` is present
    bool hasInternalShadingCoefficient; ///< whether `InternalShadingCoefficient` is present
    bool hasInsetShadingCoefficient;    ///< whether `InsetShadingCoefficient` is present

    /** @return the set "Pset_DoorWindowShadingType"; see IFC2X3_PSet_Custom_s */
    IMPORT_COMMON_API operator IFC2X3_PSet_Custom_s() const;
};

} // namespace ImportCommon
