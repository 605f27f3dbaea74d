#include "PSetBuilder.h"

#include <ImportCommon/IFC2X3_PSet_ColumnCommon.h>

namespace ImportCommon {

IFC2X3_PSet_ColumnCommon_s::operator IFC2X3_PSet_Custom_s() const {
    IFC2X3_PSet_Custom_s set;
    PSetBuilder(set, L"Pset_ColumnCommon")
        .text(L"Reference", Reference)
        .lengthOrAngle(L"Slope", Slope, SlopeKind, hasSlope)
        .text(L"FireRating", FireRating)
        .flag(L"IsExternal", IsExternal)
        .flag(L"IsLoadBearing", IsLoadBearing);
    return set;
}

} // namespace ImportCommon
