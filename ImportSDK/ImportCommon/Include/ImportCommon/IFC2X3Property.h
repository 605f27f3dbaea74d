/**
 * @file IFC2X3Property.h
 * An IFC 2x3 property.
 */
#pragma once

#include <ImportCommon/IFC2X3PropertyComplex.h>
#include <ImportCommon/IFC2X3PropertySingleValue.h>

#include <memory>

namespace ImportCommon {

class IFC2X3PropertyComplex; // whose header may be in the middle of including this one

/**
 * A property: name, description, and one typed value or a nested set. A value class; copies are deep.
 *
 * Texts hold 256 characters, stored inline, and end with a zero; longer ones are cut, as
 * IFC2X3PropertySingleValue::getStringValue says. Constructing or copying a property with a nested set throws
 * `std::bad_alloc` without memory; nothing else throws.
 */
class IMPORT_COMMON_API IFC2X3Property {
public:
    /** What a property holds. */
    enum Type_t : int {
        Type_Null = 0,        ///< nothing
        Type_SingleValue = 1, ///< one typed value
        Type_Complex = 2      ///< a nested set
    };

    /** A property of Type_Null with empty texts. */
    IFC2X3Property();

    /**
     * A deep copy.
     * @param other  what is copied
     */
    IFC2X3Property(const IFC2X3Property& other);

    /**
     * Takes the value over; @p other becomes a property of Type_Null with empty texts.
     * @param other  what is taken over
     */
    IFC2X3Property(IFC2X3Property&& other) noexcept;

    /**
     * A deep copy; when it throws, this property is unchanged.
     * @param other  what is copied
     * @return this property
     */
    IFC2X3Property& operator=(const IFC2X3Property& other);

    /**
     * Takes the value over; @p other becomes a property of Type_Null with empty texts.
     * @param other  what is taken over
     * @return this property
     */
    IFC2X3Property& operator=(IFC2X3Property&& other) noexcept;
    /** Destroys the value, sets that nest to any depth included; needs no memory. */
    ~IFC2X3Property();

    /**
     * What this property holds.
     * @return the type
     */
    Type_t getType() const;

    /**
     * The zero-terminated name, owned by this object.
     * @return the text
     */
    const wchar_t* getName() const;

    /** @copydoc getName */
    const wchar_t* getName2() const;

    /**
     * The zero-terminated description, owned by this object.
     * @return the text
     */
    const wchar_t* getDescription() const;

    /** @copydoc getDescription */
    const wchar_t* getDescription2() const;

    /**
     * The value of a Type_SingleValue, owned by this object; a shared value of ValueType_Default otherwise.
     * @return the value
     */
    const IFC2X3PropertySingleValue& getPropertySingleValue() const;

    /**
     * The value of a Type_Complex, owned by this object; a shared empty one otherwise.
     * @return the value
     */
    const IFC2X3PropertyComplex& getPropertyComplex() const;

protected:
    /**
     * A single value; at most 256 characters of each text are read and stored.
     * @param name          name of the property
     * @param description   its description
     * @param type          says which of the values counts
     * @param boolValue     the flag
     * @param logicalValue  the three-state value
     * @param intValue      the 32-bit integer
     * @param int64Value    the 64-bit integer
     * @param realValue     the real number
     * @param text          the text
     */
    IFC2X3Property(const wchar_t* name, const wchar_t* description, IFC2X3PropertySingleValue::ValueType_t type,
                   bool boolValue, IFC2X3PropertySingleValue::Logical_s logicalValue, int intValue,
                   long long int64Value, double realValue, const wchar_t* text);

    /**
     * A nested set, which is copied.
     * @param name         name of the property
     * @param description  its description
     * @param usageName    what the nested set is used for
     * @param set          the nested set
     */
    IFC2X3Property(const wchar_t* name, const wchar_t* description, const wchar_t* usageName,
                   const IFC2X3PropertySet& set);

private:
    friend class IFC2X3PropertySet;
    friend struct PropertyFactory;

    static constexpr unsigned int textSize = IFC2X3PropertySingleValue::TextSize;

    IMPORT_COMMON_LOCAL IFC2X3Property(const IFC2X3Property& other,
                                       std::unique_ptr<IFC2X3PropertyComplex> complex) noexcept;

    IMPORT_COMMON_LOCAL void copyTexts(const IFC2X3Property& other);
    IMPORT_COMMON_LOCAL void becomeNull();

    Type_t type_;
    wchar_t name_[textSize + 1];
    wchar_t description_[textSize + 1];
    IFC2X3PropertySingleValue singleValue_; // inline: a property with a value is one block of memory
    std::unique_ptr<IFC2X3PropertyComplex> complex_;
};

} // namespace ImportCommon
