#include "PSetBuilder.h"

#include <ImportCommon/IFC2X3_PSet_RailingCommon.h>

namespace ImportCommon {

IFC2X3_PSet_RailingCommon_s::operator IFC2X3_PSet_Custom_s() const {
    IFC2X3_PSet_Custom_s set;
    PSetBuilder(set, L"Pset_RailingCommon")
        .text(L"Reference", Reference)
        .length(L"Height", Height, hasHeight)
        .length(L"Diameter", Diameter, hasDiameter)
        .flag(L"IsExternal", IsExternal);
    return set;
}

} // namespace ImportCommon
