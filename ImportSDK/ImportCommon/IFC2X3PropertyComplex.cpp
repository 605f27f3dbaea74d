#include "PropertyText.h"

#include <ImportCommon/IFC2X3PropertyComplex.h>

namespace ImportCommon {

IFC2X3PropertyComplex::IFC2X3PropertyComplex() : usageName_{} {
}

IFC2X3PropertyComplex::IFC2X3PropertyComplex(const IFC2X3PropertyComplex& other) = default;

IFC2X3PropertyComplex::IFC2X3PropertyComplex(const wchar_t* usageName, const IFC2X3PropertySet& set)
    : propertySet_(set) {
    copyPropertyText<IFC2X3PropertySingleValue::TextSize>(usageName_, usageName);
}

IFC2X3PropertyComplex::~IFC2X3PropertyComplex() = default;

const wchar_t* IFC2X3PropertyComplex::getUsageName() const {
    return usageName_;
}

const wchar_t* IFC2X3PropertyComplex::getUsageName2() const {
    return getUsageName();
}

const IFC2X3PropertySet& IFC2X3PropertyComplex::getPropertySet() const {
    return propertySet_;
}

} // namespace ImportCommon
