/**
 * @file Attributes.h
 * What an object itself says, beside its property sets.
 */
#pragma once

#include <IfcReader/Model.h>
#include <PluginKit/StreamWriter.h>

/**
 * Writes the set of the form "attributes"; only what the file gives.
 * @param owner  object and globalId count
 */
void writeAttributes(const IfcReader::Product& product, const PluginKit::SetLine& owner,
                     PluginKit::StreamWriter& writer);
