#include "PSetBuilder.h"

#include <ImportCommon/IFC2X3_PSet_CurtainWallCommon.h>

namespace ImportCommon {

IFC2X3_PSet_CurtainWallCommon_s::operator IFC2X3_PSet_Custom_s() const {
    IFC2X3_PSet_Custom_s set;
    PSetBuilder(set, L"Pset_IFC2X3_PSet_CurtainWallCommon")
        .text(L"Reference", Reference)
        .text(L"FireRating", FireRating)
        .text(L"SurfaceSpreadOfFlame", SurfaceSpreadOfFlame)
        .real(L"ThermalTransmittance", ThermalTransmittance, hasThermalTransmittance)
        .flag(L"Combustible", Combustible, hasCombustible)
        .flag(L"IsExternal", IsExternal);
    return set;
}

} // namespace ImportCommon
