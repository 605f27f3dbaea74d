/**
 * @file IFC2X3_PSet_MemberCommon.h
 * The property set "Pset_MemberCommon".
 */
#pragma once

#include <ImportCommon/IFC2X3_PSet_Custom.h>

namespace ImportCommon {

/** Common properties of a structural member. */
struct IFC2X3_PSet_MemberCommon_s {
    wchar_t Reference[256];  ///< reference of the type in the project
    wchar_t FireRating[256]; ///< fire rating, by the national code
    double Span;             ///< clear span, see `SpanKind`
    double Slope;            ///< slope, see `SlopeKind`
    bool IsExternal;         ///< whether it is part of the outer shell
    bool IsLoadBearing;      ///< whether it carries load
    bool hasSpan;            ///< whether `Span` is present
    bool hasSlope;           ///< whether `Slope` is present
    int SpanKind;            ///< what `Span` is: 1 a length, 2 an angle in degrees; any other: it is left out
    int SlopeKind;           ///< what `Slope` is: 1 a length, 2 an angle in degrees; any other: it is left out

    /** @return the set "Pset_MemberCommon"; see IFC2X3_PSet_Custom_s */
    IMPORT_COMMON_API operator IFC2X3_PSet_Custom_s() const;
};

} // namespace ImportCommon
