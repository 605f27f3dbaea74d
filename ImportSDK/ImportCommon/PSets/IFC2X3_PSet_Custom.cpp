#include <ImportCommon/IFC2X3_PSet_Custom.h>

namespace ImportCommon {

IFC2X3_PSet_Custom_s::IFC2X3_PSet_Custom_s() : globalId{}, name{}, description{} {
}

IFC2X3_PSet_Custom_s::IFC2X3_PSet_Custom_s(const IFC2X3_PSet_Custom_s& other) = default;

IFC2X3_PSet_Custom_s::IFC2X3_PSet_Custom_s(IFC2X3_PSet_Custom_s&& other) noexcept = default;

IFC2X3_PSet_Custom_s& IFC2X3_PSet_Custom_s::operator=(const IFC2X3_PSet_Custom_s& other) {
    return *this = IFC2X3_PSet_Custom_s(other); // the copy may fail, and then nothing has changed
}

IFC2X3_PSet_Custom_s& IFC2X3_PSet_Custom_s::operator=(IFC2X3_PSet_Custom_s&& other) noexcept = default;

IFC2X3_PSet_Custom_s::~IFC2X3_PSet_Custom_s() = default;

} // namespace ImportCommon
