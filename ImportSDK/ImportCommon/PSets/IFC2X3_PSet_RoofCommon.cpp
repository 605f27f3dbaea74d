#include "PSetBuilder.h"

#include <ImportCommon/IFC2X3_PSet_RoofCommon.h>

namespace ImportCommon {

IFC2X3_PSet_RoofCommon_s::operator IFC2X3_PSet_Custom_s() const {
    IFC2X3_PSet_Custom_s set;
    PSetBuilder(set, L"Pset_RoofCommon")
        .text(L"Reference", Reference)
        .text(L"FireRating", FireRating)
        .flag(L"IsExternal", IsExternal);
    return set;
}

} // namespace ImportCommon
