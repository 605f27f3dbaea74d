#include "PropertyText.h"

#include <ImportCommon/IFC2X3Property.h>

#include <algorithm>
#include <iterator>
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

IFC2X3Property::IFC2X3Property() : type_(Type_Null), name_{}, description_{} {
}

IFC2X3Property::IFC2X3Property(const IFC2X3Property& other) : IFC2X3Property(other, copyOf(other.complex_)) {
}

IFC2X3Property::IFC2X3Property(IFC2X3Property&& other) noexcept : IFC2X3Property(other, std::move(other.complex_)) {
    other.becomeNull();
}

/** A copy with a complex value of its own. */
IFC2X3Property::IFC2X3Property(const IFC2X3Property& other, std::unique_ptr<IFC2X3PropertyComplex> complex) noexcept
    : type_(other.type_), singleValue_(other.singleValue_), complex_(std::move(complex)) {
    copyTexts(other);
}

IFC2X3Property::IFC2X3Property(const wchar_t* name, const wchar_t* description,
                               IFC2X3PropertySingleValue::ValueType_t type, bool boolValue,
                               IFC2X3PropertySingleValue::Logical_s logicalValue, int intValue, long long int64Value,
                               double realValue, const wchar_t* text)
    : type_(Type_SingleValue), singleValue_(type, boolValue, logicalValue, intValue, int64Value, realValue, text) {
    copyPropertyText<textSize>(name_, name);
    copyPropertyText<textSize>(description_, description);
}

IFC2X3Property::IFC2X3Property(const wchar_t* name, const wchar_t* description, const wchar_t* usageName,
                               const IFC2X3PropertySet& set)
    : type_(Type_Complex), complex_(new IFC2X3PropertyComplex(usageName, set)) {
    copyPropertyText<textSize>(name_, name);
    copyPropertyText<textSize>(description_, description);
}

IFC2X3Property::~IFC2X3Property() = default;

IFC2X3Property& IFC2X3Property::operator=(const IFC2X3Property& other) {
    return *this = IFC2X3Property(other); // the copy may fail, and then nothing has changed
}

IFC2X3Property& IFC2X3Property::operator=(IFC2X3Property&& other) noexcept {
    if (this != &other) {
        // The other property may stand in this property's set, which must outlive the move.
        const std::unique_ptr<IFC2X3PropertyComplex> replaced = std::move(complex_);
        type_ = other.type_;
        singleValue_ = other.singleValue_;
        complex_ = std::move(other.complex_);
        copyTexts(other);
        other.becomeNull();
    }
    return *this;
}

void IFC2X3Property::copyTexts(const IFC2X3Property& other) {
    std::copy(std::begin(other.name_), std::end(other.name_), name_);
    std::copy(std::begin(other.description_), std::end(other.description_), description_);
}

/** What a move leaves behind. */
void IFC2X3Property::becomeNull() {
    type_ = Type_Null;
    name_[0] = 0;
    description_[0] = 0;
}

IFC2X3Property::Type_t IFC2X3Property::getType() const {
    return type_;
}

const wchar_t* IFC2X3Property::getName() const {
    return name_;
}

const wchar_t* IFC2X3Property::getName2() const {
    return getName();
}

const wchar_t* IFC2X3Property::getDescription() const {
    return description_;
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
