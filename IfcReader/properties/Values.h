/**
 * @file Values.h
 * Values of properties from arguments of a file.
 */
#pragma once

#include "IfcReader/PropertySet.h"
#include "Units.h"

#include <string>
#include <string_view>

namespace IfcReader {

/**
 * The value that an argument stands for; lists, enumerations and what is not understood become text. A number has the
 * factor that the units of the model give to its measure.
 */
IfcValue valueOf(std::string_view argument, const Units& units);

/** The values of a list, as text with commas between them. */
IfcValue listValueOf(std::string_view list);

/** How a value reads among others; empty for an absent one. */
std::string valueText(std::string_view argument);

} // namespace IfcReader
