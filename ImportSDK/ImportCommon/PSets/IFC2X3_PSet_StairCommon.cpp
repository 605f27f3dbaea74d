#include "PSetBuilder.h"

#include <ImportCommon/IFC2X3_PSet_StairCommon.h>

namespace ImportCommon {

IFC2X3_PSet_StairCommon_s::operator IFC2X3_PSet_Custom_s() const {
    IFC2X3_PSet_Custom_s set;
    PSetBuilder(set, L"Pset_StairCommon")
        .text(L"Reference", Reference)
        .text(L"FireRating", FireRating)
        .integer(L"NumberOfRiser", NumberOfRiser, hasNumberOfRiser)
        .integer(L"NumberOfTreads", NumberOfTreads, hasNumberOfTreads)
        .length(L"RiserHeight", RiserHeight, hasRiserHeight)
        .length(L"TreadLength", TreadLength, hasTreadLength)
        .length(L"RequiredHeadroom", RequiredHeadroom, hasRequiredHeadroom)
        .flag(L"IsHandicapAccessible", IsHandicapAccessible)
        .flag(L"IsExternal", IsExternal)
        .flag(L"FireExit", FireExit)
        .flag(L"HasNonSkidSurface", HasNonSkidSurface);
    return set;
}

} // namespace ImportCommon
