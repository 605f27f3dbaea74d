/**
 * @file IFC2X3_PSet_DoorWindowGlazingType.h
 * The property set "Pset_DoorWindowGlazingType".
 */
#pragma once

#include <ImportCommon/IFC2X3_PSet_Custom.h>

namespace ImportCommon {

/** Glazing of a door or window. */
struct IFC2X3_PSet_DoorWindowGlazingType_s {
    wchar_t FillGas[256];               ///< gas between the panes
    wchar_t GlassColor[256];            ///< colour of the glass
    double GlassThickness1;             ///< thickness of the first pane; a length
    double GlassThickness2;             ///< thickness of the second pane; a length
    double GlassThickness3;             ///< thickness of the third pane; a length
    bool IsTempered;                    ///< whether the glass is tempered
    bool IsLaminated;                   ///< whether the glass is laminated
    bool IsCoated;                      ///< whether the glass is coated
    bool IsWired;                       ///< whether the glass is wired
    double Translucency;                ///< part of visible light that passes, 0 to 1
    double Reflectivity;                ///< part of visible light that is reflected, 0 to 1
    double BeamRadiationTransmittance;  ///< part of direct radiation that passes, 0 to 1
    double SolarHeatGainTransmittance;  ///< part of solar heat that passes, 0 to 1
    double ThermalTransmittanceSummer;  ///< heat flow per area and kelvin in summer
    double ThermalTransmittanceWinter;  ///< heat flow per area and kelvin in winter
    int GlassLayers;                    ///< number of panes
    bool hasGlassThickness1;            ///< whether `GlassThickness1` is present
    bool hasGlassThickness2;            ///< whether `GlassThickness2` is present
    bool hasGlassThickness3;            ///< whether `GlassThickness3` is present
    bool hasIsTempered;                 ///< whether `IsTempered` is present
    bool hasIsLaminated;                ///< whether `IsLaminated` is present
    bool hasIsCoated;                   ///< whether `IsCoated` is present
    bool hasIsWired;                    ///< whether `IsWired` is present
    bool hasTranslucency;               ///< whether `Translucency` is present
    bool hasReflectivity;               ///< whether `Reflectivity` is present
    bool hasBeamRadiationTransmittance; ///< whether `BeamRadiationTransmittance` is present
    bool hasSolarHeatGainTransmittance; ///< whether `SolarHeatGainTransmittance` is present
    bool hasThermalTransmittanceSummer; ///< whether `ThermalTransmittanceSummer` is present
    bool hasThermalTransmittanceWinter; ///< whether `ThermalTransmittanceWinter` is present

    /** @return the set "Pset_DoorWindowGlazingType"; see IFC2X3_PSet_Custom_s */
    IMPORT_COMMON_API operator IFC2X3_PSet_Custom_s() const;
};

} // namespace ImportCommon
