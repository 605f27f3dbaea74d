/**
 * @file ProductClasses.h
 * Which classes are products.
 */
#pragma once

#include <string_view>

namespace IfcReader {

enum class ProductClass {
    Product, ///< a thing, or a place of the spatial structure
    Unshown, ///< a product whose shape is no thing: an opening, a grid, a note on a drawing
    Unlisted ///< not a class of IFC 2x3 that is listed here: its arguments tell what it is
};

ProductClass productClassOf(std::string_view keyword);

/** Whether a class is a place of the spatial structure. */
bool isSpatial(std::string_view keyword);

} // namespace IfcReader
