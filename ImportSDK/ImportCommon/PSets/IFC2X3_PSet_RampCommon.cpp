#include "PSetBuilder.h"

#include <ImportCommon/IFC2X3_PSet_RampCommon.h>

namespace ImportCommon {

IFC2X3_PSet_RampCommon_s::operator IFC2X3_PSet_Custom_s() const {
    IFC2X3_PSet_Custom_s set;
    PSetBuilder(set, L"Pset_RampCommon")
        .text(L"Reference", Reference)
        .text(L"FireRating", FireRating)
        .lengthOrAngle(L"Slope", Slope, SlopeKind, hasSlope)
        .length(L"RequiredHeadroom", RequiredHeadroom, hasRequiredHeadroom)
        .flag(L"HasNonSkidSurface", HasNonSkidSurface, hasHasNonSkidSurface)
        .flag(L"IsHandicapAccessible", IsHandicapAccessible)
        .flag(L"IsExternal", IsExternal)
        .flag(L"FireExit", FireExit);
    return set;
}

} // namespace ImportCommon
