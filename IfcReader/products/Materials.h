/**
 * @file Materials.h
 * What products are made of.
 */
#pragma once

#include "IfcReader/Model.h"
#include "products/Relations.h"
#include "step/StepFile.h"

#include <string_view>

namespace IfcReader {

/** Materials with the instances that they come from, which tell how they look. */
struct MaterialUse {
    std::vector<Material> materials;
    std::vector<std::uint64_t> instances;
};

/**
 * Appends a material, or each of a list or of layers, in the order of the file.
 * @param material  number of the instance that an object is associated with
 * @param metre     metres in the model's unit of length
 */
void appendMaterials(const StepFile& file, std::uint64_t material, double metre, MaterialUse& use);

} // namespace IfcReader
