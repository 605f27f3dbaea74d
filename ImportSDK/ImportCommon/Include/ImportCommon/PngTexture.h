/**
 * @file PngTexture.h
 * An image on its way from the plug-in to the host.
 */
#pragma once

#include <ImportCommon/Export.h>

#include <vector>

namespace ImportCommon {

/** The bytes of one PNG file; they are not interpreted. A value class; copying throws `std::bad_alloc` without memory.
 */
class IMPORT_COMMON_API PngTexture {
public:
    /** No bytes. */
    PngTexture();

    /** A copy of the bytes. */
    PngTexture(const std::vector<char>& data);
    PngTexture(const PngTexture& other);
    PngTexture& operator=(const PngTexture& other);
    ~PngTexture();

    /** The bytes, owned by this object. */
    const std::vector<char>& getData() const;

private:
    std::vector<char> data_;
};

} // namespace ImportCommon
