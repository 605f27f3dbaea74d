#include "PSetBuilder.h"

#include <ImportCommon/IFC2X3_PSet_RailingCommon.h>

namespace ImportCommon {

IFC2X3_PSet_RailingCommon_s::operator IFC2X3_PSet_Custom_s() const {
    return PSetBuilder(L"Pset_RailingCommon")
        .text(L"Reference", Reference)
        .length(L"Height", Height, hasHeight)
        .length(L"Diameter", Diameter, hasDiameter)
        .flag(L"IsExternal", IsExternal)
        .take();
}

} // namespace ImportCommon
