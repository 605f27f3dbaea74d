/**
 * @file IfcError.h
 * Why a file is not read.
 */
#pragma once

#include <stdexcept>

namespace IfcReader {

/** A file that is refused as a whole: it can't be read, is no IFC 2x3 model, or is damaged. The reason is one line. */
class IfcError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

} // namespace IfcReader
