/**
 * @file IFC2X3_PSet_Custom.h
 * A named property set, which every common property set turns into.
 */
#pragma once

#include <ImportCommon/Export.h>
#include <ImportCommon/IFC2X3PropertySet.h>

namespace ImportCommon {

/**
 * A named property set with its identity.
 *
 * The records of the common property sets (IFC2X3_PSet_WallCommon_s and its like) convert to it: `globalId` is 22 times
 * "0", the description is empty, and the properties come in a fixed order, each with an empty description. A property
 * with a presence flag (`hasSpan` for `Span`) is left out while the flag is false; all others are always there. Texts
 * are read up to their zero or 256 characters. Fill a record from zero: `IFC2X3_PSet_WallCommon_s wall{};`.
 *
 * Without memory for a property the conversions throw `std::bad_alloc`; without memory for a longer list of properties
 * they leave properties out.
 */
struct IFC2X3_PSet_Custom_s {
    char globalId[22];            ///< identity of the set; no terminator
    wchar_t name[256];            ///< name of the set
    wchar_t description[256];     ///< description of the set
    IFC2X3PropertySet properties; ///< the properties in order

    /** Empty texts and no properties; whoever builds the set fills them. */
    IMPORT_COMMON_API IFC2X3_PSet_Custom_s();

    /**
     * A deep copy.
     * @param other  what is copied
     */
    IMPORT_COMMON_API IFC2X3_PSet_Custom_s(const IFC2X3_PSet_Custom_s& other);

    /**
     * Takes the properties over and copies the rest.
     * @param other  has no properties afterwards
     */
    IMPORT_COMMON_API IFC2X3_PSet_Custom_s(IFC2X3_PSet_Custom_s&& other) noexcept;

    /**
     * A deep copy; when it throws, this set is unchanged.
     * @param other  what is copied
     * @return this set
     */
    IMPORT_COMMON_API IFC2X3_PSet_Custom_s& operator=(const IFC2X3_PSet_Custom_s& other);

    /**
     * Takes the properties over and copies the rest.
     * @param other  has no properties afterwards
     * @return this set
     */
    IMPORT_COMMON_API IFC2X3_PSet_Custom_s& operator=(IFC2X3_PSet_Custom_s&& other) noexcept;

    /** Destroys the properties. */
    IMPORT_COMMON_API ~IFC2X3_PSet_Custom_s();
};

} // namespace ImportCommon
