#include "PSetBuilder.h"

#include <ImportCommon/IFC2X3_PSet_MemberCommon.h>

namespace ImportCommon {

IFC2X3_PSet_MemberCommon_s::operator IFC2X3_PSet_Custom_s() const {
    IFC2X3_PSet_Custom_s set;
    PSetBuilder(set, L"Pset_MemberCommon")
        .text(L"Reference", Reference)
        .text(L"FireRating", FireRating)
        .lengthOrAngle(L"Span", Span, SpanKind, hasSpan)
        .lengthOrAngle(L"Slope", Slope, SlopeKind, hasSlope)
        .flag(L"IsExternal", IsExternal)
        .flag(L"IsLoadBearing", IsLoadBearing);
    return set;
}

} // namespace ImportCommon
