/**
 * @file PngTexture.h
 * An image on its way from the plug-in to the host.
 */
#pragma once

#include <ImportCommon/Export.h>

#include <vector>

namespace ImportCommon {

/**
 * The bytes of one PNG file; they are not interpreted. A value class; constructing it from bytes, copying and assigning
 * throw `std::bad_alloc` without memory, and assignment changes nothing then.
 */
class IMPORT_COMMON_API PngTexture {
public:
    /** No bytes. */
    PngTexture();

    /**
     * A copy of the bytes.
     * @param data  the bytes of a PNG file
     */
    PngTexture(const std::vector<char>& data);

    /**
     * A copy of the bytes.
     * @param other  what is copied
     */
    PngTexture(const PngTexture& other);

    /**
     * A copy of the bytes.
     * @param other  what is copied
     * @return this object
     */
    PngTexture& operator=(const PngTexture& other);
    /** Releases the bytes. */
    ~PngTexture();

    /**
     * The bytes, owned by this object.
     * @return the bytes
     */
    const std::vector<char>& getData() const;

private:
    std::vector<char> data_;
};

} // namespace ImportCommon
