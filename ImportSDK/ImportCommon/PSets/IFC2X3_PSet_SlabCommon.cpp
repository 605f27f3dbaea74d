#include "PSetBuilder.h"

#include <ImportCommon/IFC2X3_PSet_SlabCommon.h>

namespace ImportCommon {

IFC2X3_PSet_SlabCommon_s::operator IFC2X3_PSet_Custom_s() const {
    IFC2X3_PSet_Custom_s set;
    PSetBuilder(set, L"Pset_SlabCommon")
        .text(L"Reference", Reference)
        .text(L"AcousticRating", AcousticRating)
        .text(L"SurfaceSpreadOfFlame", SurfaceSpreadOfFlame)
        .text(L"FireRating", FireRating)
        .flag(L"Compartmentation", Compartmentation, hasCompartmentation)
        .flag(L"Combustible", Combustible, hasCombustible)
        .real(L"ThermalTransmittance", ThermalTransmittance, hasThermalTransmittance)
        .angle(L"PitchAngle", PitchAngle, hasPitchAngle)
        .flag(L"IsExternal", IsExternal)
        .flag(L"IsLoadBearing", IsLoadBearing);
    return set;
}

} // namespace ImportCommon
