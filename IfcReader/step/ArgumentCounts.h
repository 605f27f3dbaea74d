/**
 * @file ArgumentCounts.h
 * How many arguments the instances of a class have.
 */
#pragma once

#include <cstddef>
#include <string_view>

namespace IfcReader {

/** The number of arguments of a class whose arguments matter here; anyArgumentCount for all other classes. */
std::size_t argumentCount(std::string_view keyword);

constexpr std::size_t anyArgumentCount = static_cast<std::size_t>(-1);

} // namespace IfcReader
