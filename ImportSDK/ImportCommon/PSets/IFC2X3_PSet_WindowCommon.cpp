#include "PSetBuilder.h"

#include <ImportCommon/IFC2X3_PSet_WindowCommon.h>

namespace ImportCommon {

IFC2X3_PSet_WindowCommon_s::operator IFC2X3_PSet_Custom_s() const {
    IFC2X3_PSet_Custom_s set;
    PSetBuilder(set, L"Pset_WindowCommon")
        .text(L"Reference", Reference)
        .text(L"FireRating", FireRating)
        .text(L"AcousticRating", AcousticRating)
        .text(L"SecurityRating", SecurityRating)
        .real(L"Infiltration", Infiltration, hasInfiltration)
        .real(L"ThermalTransmittance", ThermalTransmittance, hasThermalTransmittance)
        .real(L"GlazingAreaFraction", GlazingAreaFraction, hasGlazingAreaFraction)
        .flag(L"SmokeStop", SmokeStop, hasSmokeStop)
        .flag(L"IsExternal", IsExternal);
    return set;
}

} // namespace ImportCommon
