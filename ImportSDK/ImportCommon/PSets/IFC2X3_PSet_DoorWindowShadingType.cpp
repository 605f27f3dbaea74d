#include "PSetBuilder.h"

#include <ImportCommon/IFC2X3_PSet_DoorWindowShadingType.h>

namespace ImportCommon {

IFC2X3_PSet_DoorWindowShadingType_s::operator IFC2X3_PSet_Custom_s() const {
    IFC2X3_PSet_Custom_s set;
    PSetBuilder(set, L"Pset_DoorWindowShadingType")
        .real(L"ExternalShadingCoefficient", ExternalShadingCoefficient, hasExternalShadingCoefficient)
        .real(L"InternalShadingCoefficient", InternalShadingCoefficient, hasInternalShadingCoefficient)
        .real(L"InsetShadingCoefficient", InsetShadingCoefficient, hasInsetShadingCoefficient);
    return set;
}

} // namespace ImportCommon
