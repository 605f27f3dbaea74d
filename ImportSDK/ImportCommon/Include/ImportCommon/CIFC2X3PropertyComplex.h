/**
 * @file CIFC2X3PropertyComplex.h
 * Constructs complex values.
 */
#pragma once

#include <ImportCommon/IFC2X3PropertyComplex.h>

namespace ImportCommon {

/** A complex value that is filled at construction; otherwise just an IFC2X3PropertyComplex. */
class IMPORT_COMMON_API CIFC2X3PropertyComplex : public IFC2X3PropertyComplex {
public:
    /**
     * Copies the first 256 characters of @p usageName, and the set. Throws `std::bad_alloc` without memory.
     *
     * REQUIRES: @p usageName is not null, and has 256 characters or a zero before.
     *
     * @param usageName  what the set is used for
     * @param set        the nested set
     */
    CIFC2X3PropertyComplex(const wchar_t* usageName, const IFC2X3PropertySet& set)
        : IFC2X3PropertyComplex(usageName, set) {}
};

} // namespace ImportCommon
