#include "PSetBuilder.h"

#include <ImportCommon/IFC2X3_PSet_WallCommon.h>

namespace ImportCommon {

IFC2X3_PSet_WallCommon_s::operator IFC2X3_PSet_Custom_s() const {
    IFC2X3_PSet_Custom_s set;
    PSetBuilder(set, L"Pset_WallCommon")
        .text(L"Reference", Reference)
        .text(L"AcousticRating", AcousticRating)
        .text(L"FireRating", FireRating)
        .text(L"SurfaceSpreadOfFlame", SurfaceSpreadOfFlame)
        .real(L"ThermalTransmittance", ThermalTransmittance, hasThermalTransmittance)
        .flag(L"Combustible", Combustible, hasCombustible)
        .flag(L"ExtendToStructure", ExtendToStructure, hasExtendToStructure)
        .flag(L"Compartmentation", Compartmentation, hasCompartmentation);
    return set;
}

} // namespace ImportCommon
