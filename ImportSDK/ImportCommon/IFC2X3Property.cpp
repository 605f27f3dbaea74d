#include "PropertyText.h"

#include <ImportCommon/IFC2X3Property.h>

#include <cstring>
#include <utility>

namespace ImportCommon {

namespace {

/** What a property that is no single value shows as its single value. */
class CIFC2X3PropertySingleValueNull : public IFC2X3PropertySingleValue {};

/** What a property that is not complex shows as its complex value. */
class CIFC2X3PropertyComplexNull : public IFC2X3PropertyComplex {};

std::unique_ptr<IFC2X3PropertyComplex> copyOf(const std::unique_ptr<IFC2X3PropertyComplex>& complex) {
    return complex ? std::make_unique<IFC2X3PropertyComplex>(*complex) : nullptr;
}

} // namespace

IFC2X3Property::IFC2X3Property() : type_(Type_Null) {
    fillTexts(L"", L"");
}

IFC2X3Property::IFC2X3Property(const IFC2X3Property& other) : IFC2X3Property(other, copyOf(other.complex_)) {
}

IFC2X3Property::IFC2X3Property(IFC2X3Property&& other) noexcept : IFC2X3Property(other, std::move(other.complex_)) {
    other.becomeNull();
}

/** A copy with a complex value of its own. Most of the texts is zeros, which are cheaper to write than to read. */
IFC2X3Property::IFC2X3Property(const IFC2X3Property& other, std::unique_ptr<IFC2X3PropertyComplex> complex) noexcept
    : type_(other.type_),
      singleValue_(other.singleValue_.valueType_, other.singleValue_.boolValue_, other.singleValue_.logicalValue_,
                   other.singleValue_.intValue_, other.singleValue_.int64Value_, other.singleValue_.realValue_,
                   other.singleValue_.stringValue_),
      complex_(std::move(complex)) {
    fillTexts(other.texts_.name, other.texts_.description);
}

IFC2X3Property::IFC2X3Property(const wchar_t* name, const wchar_t* description,
                               IFC2X3PropertySingleValue::ValueType_t type, bool boolValue,
                               IFC2X3PropertySingleValue::Logical_s logicalValue, int intValue, long long int64Value,
                               double realValue, const wchar_t* text)
    : type_(Type_SingleValue), singleValue_(type, boolValue, logicalValue, intValue, int64Value, realValue, text) {
    fillTexts(name, description);
}

IFC2X3Property::IFC2X3Property(const wchar_t* name, const wchar_t* description, const wchar_t* usageName,
                               const IFC2X3PropertySet& set)
    : type_(Type_Complex), complex_(new IFC2X3PropertyComplex(usageName, set)) {
    fillTexts(name, description);
}

IFC2X3Property::~IFC2X3Property() = default;

IFC2X3Property& IFC2X3Property::operator=(const IFC2X3Property& other) {
    // The copy of the set comes first and the old one goes last: the other property may stand in it.
    std::unique_ptr<IFC2X3PropertyComplex> copied = copyOf(other.complex_);
    type_ = other.type_;
    singleValue_ = other.singleValue_;
    fillTexts(other.texts_.name, other.texts_.description);
    complex_.swap(copied);
    return *this;
}

IFC2X3Property& IFC2X3Property::operator=(IFC2X3Property&& other) noexcept {
    if (this != &other) {
        // The other property may stand in this property's set, which must outlive the move.
        const std::unique_ptr<IFC2X3PropertyComplex> replaced = std::move(complex_);
        type_ = other.type_;
        singleValue_ = other.singleValue_;
        complex_ = std::move(other.complex_);
        fillTexts(other.texts_.name, other.texts_.description);
        other.becomeNull();
    }
    return *this;
}

/** Fills both texts; they may be this property's own. */
void IFC2X3Property::fillTexts(const wchar_t* name, const wchar_t* description) {
    if (name == texts_.name) {
        return; // of a property that is assigned to itself
    }
    // One fill for what follows the name in both: a second call would cost more than to write a description twice.
    const std::size_t length = propertyTextLength<textSize>(name);
    std::copy_n(name, length, texts_.name);
    const std::size_t size = length * sizeof(wchar_t);
    std::memset(reinterpret_cast<char*>(&texts_) + size, 0, sizeof texts_ - size);
    std::copy_n(description, propertyTextLength<textSize>(description), texts_.description);
}

/** What a move leaves behind. */
void IFC2X3Property::becomeNull() {
    type_ = Type_Null;
    texts_.name[0] = 0;
    texts_.description[0] = 0;
}

IFC2X3Property::Type_t IFC2X3Property::getType() const {
    return type_;
}

const wchar_t* IFC2X3Property::getName() const {
    return texts_.name;
}

const wchar_t* IFC2X3Property::getName2() const {
    return getName();
}

const wchar_t* IFC2X3Property::getDescription() const {
    return texts_.description;
}

const wchar_t* IFC2X3Property::getDescription2() const {
    return getDescription();
}

const IFC2X3PropertySingleValue& IFC2X3Property::getPropertySingleValue() const {
    static const CIFC2X3PropertySingleValueNull none;
    return type_ == Type_SingleValue ? singleValue_ : static_cast<const IFC2X3PropertySingleValue&>(none);
}

const IFC2X3PropertyComplex& IFC2X3Property::getPropertyComplex() const {
    static const CIFC2X3PropertyComplexNull none;
    if (type_ != Type_Complex || !complex_) {
        return none;
    }
    return *complex_;
}

} // namespace ImportCommon
