/**
 * @file PropertyLines.h
 * Property sets of a file as lines of the stream "attributes".
 */
#pragma once

#include <IfcReader/Model.h>
#include <PluginKit/StreamWriter.h>

/**
 * Writes the property sets of a product: what a record of the library holds as the set that the record is converted to,
 * everything else as it stands in the file.
 * @param owner  object and globalId count
 */
void writeProperties(const IfcReader::Product& product, const PluginKit::SetLine& owner,
                     PluginKit::StreamWriter& writer);
