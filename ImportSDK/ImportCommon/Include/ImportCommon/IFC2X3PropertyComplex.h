/**
 * @file IFC2X3PropertyComplex.h
 * The value of an IFC 2x3 property that is a set of properties.
 */
#pragma once

#include <ImportCommon/IFC2X3PropertySet.h>
#include <ImportCommon/IFC2X3PropertySingleValue.h>

namespace ImportCommon {

/**
 * A usage name and a nested set of properties. Copies are deep, and throw `std::bad_alloc` without memory; values are
 * only ever constructed, never assigned.
 */
class IMPORT_COMMON_API IFC2X3PropertyComplex {
public:
    /** An empty usage name and an empty set. */
    IFC2X3PropertyComplex();

    /**
     * A deep copy.
     * @param other  what is copied
     */
    IFC2X3PropertyComplex(const IFC2X3PropertyComplex& other);
    /** Not assigned. */
    IFC2X3PropertyComplex& operator=(const IFC2X3PropertyComplex&) = delete;
    /** Destroys the nested set. */
    ~IFC2X3PropertyComplex();

    /**
     * The zero-terminated usage name, owned by this object.
     * @return the text
     */
    const wchar_t* getUsageName() const;

    /** @copydoc getUsageName */
    const wchar_t* getUsageName2() const;

    /**
     * The nested set, owned by this object.
     * @return the set
     */
    const IFC2X3PropertySet& getPropertySet() const;

protected:
    /**
     * Copies the first 256 characters of @p usageName, and the set.
     *
     * REQUIRES: @p usageName is not null, and has 256 characters or a zero before.
     *
     * @param usageName  what the set is used for
     * @param set        the nested set
     */
    IFC2X3PropertyComplex(const wchar_t* usageName, const IFC2X3PropertySet& set);

private:
    friend class IFC2X3Property;
    friend class IFC2X3PropertySet;

    wchar_t usageName_[IFC2X3PropertySingleValue::TextSize + 1];
    IFC2X3PropertySet propertySet_;
};

} // namespace ImportCommon
