#include "PSetBuilder.h"

#include <ImportCommon/IFC2X3_PSet_DoorWindowGlazingType.h>

namespace ImportCommon {

IFC2X3_PSet_DoorWindowGlazingType_s::operator IFC2X3_PSet_Custom_s() const {
    IFC2X3_PSet_Custom_s set;
    PSetBuilder(set, L"Pset_DoorWindowGlazingType")
        .text(L"FillGas", FillGas)
        .text(L"GlassColor", GlassColor)
        .length(L"GlassThickness1", GlassThickness1, hasGlassThickness1)
        .length(L"GlassThickness2", GlassThickness2, hasGlassThickness2)
        .length(L"GlassThickness3", GlassThickness3, hasGlassThickness3)
        .flag(L"IsTempered", IsTempered, hasIsTempered)
        .flag(L"IsLaminated", IsLaminated, hasIsLaminated)
        .flag(L"IsCoated", IsCoated, hasIsCoated)
        .flag(L"IsWired", IsWired, hasIsWired)
        .real(L"Translucency", Translucency, hasTranslucency)
        .real(L"Reflectivity", Reflectivity, hasReflectivity)
        .real(L"BeamRadiationTransmittance", BeamRadiationTransmittance, hasBeamRadiationTransmittance)
        .real(L"SolarHeatGainTransmittance", SolarHeatGainTransmittance, hasSolarHeatGainTransmittance)
        .real(L"ThermalTransmittanceSummer", ThermalTransmittanceSummer, hasThermalTransmittanceSummer)
        .real(L"ThermalTransmittanceWinter", ThermalTransmittanceWinter, hasThermalTransmittanceWinter)
        .integer(L"GlassLayers", GlassLayers);
    return set;
}

} // namespace ImportCommon
