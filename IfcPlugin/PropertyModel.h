/**
 * @file PropertyModel.h
 * Property sets of a file as the library's sets.
 */
#pragma once

#include "IfcModel.h"

class Streams;

/**
 * Writes the property sets of a product: what the record of its class holds as the set that the record is converted to,
 * everything else as custom sets.
 * @param isObject  whether the product is the object that was written last
 */
void writeProperties(const Product& product, const std::vector<IfcPropertySet>& sets, bool isObject, Streams& streams);
