/**
 * @file IFC2X3PropertySet.h
 * An ordered set of IFC 2x3 properties.
 */
#pragma once

#include <ImportCommon/Export.h>
#include <ImportCommon/IFC2X3PropertySingleValue.h>

#include <vector>

namespace ImportCommon {

class IFC2X3Property;

/**
 * An ordered list of properties, each owned by the set; copies are deep. Sets may nest to any depth: nothing recurses.
 *
 * The list grows in steps of 50. What fails for lack of memory is named at each function; a set stays valid in any
 * case.
 */
class IMPORT_COMMON_API IFC2X3PropertySet {
public:
    /** An empty set. */
    IFC2X3PropertySet() noexcept;

    /**
     * A deep copy with exactly as much room as it needs. Without memory for the list it is empty; without memory for a
     * property it throws `std::bad_alloc`.
     * @param other  what is copied
     */
    IFC2X3PropertySet(const IFC2X3PropertySet& other);

    /**
     * Takes the properties over; @p other is empty afterwards.
     * @param other  what is taken over
     */
    IFC2X3PropertySet(IFC2X3PropertySet&& other) noexcept;

    /**
     * A deep copy, as the copy constructor makes it; when that throws, this set is unchanged.
     * @param other  what is copied
     * @return this set
     */
    IFC2X3PropertySet& operator=(const IFC2X3PropertySet& other);

    /**
     * Takes the properties over; @p other is empty afterwards.
     * @param other  what is taken over
     * @return this set
     */
    IFC2X3PropertySet& operator=(IFC2X3PropertySet&& other) noexcept;
    /** Destroys all properties, sets that nest in them to any depth included; needs no memory. */
    ~IFC2X3PropertySet();

    /**
     * Number of properties.
     * @return the number
     */
    unsigned int getCount() const;

    /**
     * The property at an index, owned by the set; a shared property of Type_Null for an index beyond the last.
     * @param index  from 0
     * @return the property
     */
    const IFC2X3Property& getProperty(unsigned int index) const;

    /**
     * Appends a deep copy. Without memory for a longer list nothing is added, silently; without memory for the
     * property `std::bad_alloc` is thrown and the set is unchanged.
     * @param property  what is copied
     */
    void addProperty(const IFC2X3Property& property);

    /**
     * Appends the property, whose value is taken over; otherwise as the copying form.
     * @param property  what is taken over
     */
    void addProperty(IFC2X3Property&& property);

    /** Removes all properties; the room of the list is kept. */
    void clear();

private:
    friend class PSetBuilder;
    struct Chunk;
    struct Copying;

    IMPORT_COMMON_LOCAL void swap(IFC2X3PropertySet& other) noexcept;
    IMPORT_COMMON_LOCAL void copyFrom(const IFC2X3PropertySet& other, std::vector<Copying>& nested);
    IMPORT_COMMON_LOCAL void takeChunks(IFC2X3PropertySet& nested);
    IMPORT_COMMON_LOCAL bool makeRoom();
    IMPORT_COMMON_LOCAL void* placeForProperty(unsigned int capacity);
    template <typename... Arguments>
    void emplace(Arguments&&... arguments);
    IMPORT_COMMON_LOCAL void appendSingleValue(const wchar_t* name, IFC2X3PropertySingleValue::ValueType_t type,
                                               bool boolValue, int intValue, double realValue, const wchar_t* text);

    unsigned int count_ = 0;
    unsigned int capacity_ = 0;
    IFC2X3Property** properties_ = nullptr;
    Chunk* chunks_ = nullptr;
};

} // namespace ImportCommon

#include <ImportCommon/IFC2X3Property.h> // what the set holds
