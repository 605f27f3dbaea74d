/**
 * @file ForeignObjectSolid.h
 * A solid on its way from the plug-in to the host.
 */
#pragma once

#include <ImportCommon/Export.h>

/**
 * A typed block of bytes that holds one solid in a form that host and plug-in agree on; the bytes are not interpreted.
 *
 * A value class: it owns its bytes, and copies are deep. Without memory for the bytes an object is valid and empty, and
 * the first failure of each operation in a process is reported on the log and stops in an attached debugger; nothing
 * throws.
 */
class IMPORT_COMMON_API ForeignObjectSolid {
public:
    /** The form of the bytes. Values of a host's own may start at Type_Host; the library only keeps the number. */
    enum Type_t : int {
        Type_Undefined = 0,              ///< not known
        Type_TriangleMesh = 1,           ///< a mesh of triangles
        Type_BoundaryRepresentation = 2, ///< faces, edges and vertices
        Type_Host = 0x10000              ///< the first number for forms of the host
    };

    /**
     * Copies @p size bytes; with a size of 0 @p data is not read and may be null.
     *
     * REQUIRES: @p data points to @p size bytes.
     *
     * @param type  the form of the bytes
     * @param size  their number
     * @param data  the bytes
     */
    ForeignObjectSolid(Type_t type, unsigned int size, const char* data);

    /**
     * A deep copy.
     * @param other  what is copied
     */
    ForeignObjectSolid(const ForeignObjectSolid& other);

    /**
     * Replaces type and bytes by copies. The reference is not constant, and an object that is assigned to itself loses
     * its bytes; both are meant.
     * @param other  what is copied
     * @return this object
     */
    ForeignObjectSolid& operator=(ForeignObjectSolid& other);
    /** Releases the bytes. */
    ~ForeignObjectSolid();

    /**
     * The form of the bytes.
     * @return the form
     */
    Type_t getType() const;

    /**
     * The bytes, owned by this object, and their number through @p size, which must not be null; null and 0 for an
     * empty solid.
     * @param size  receives the number of bytes
     * @return the bytes, or null
     */
    const char* getBytes(unsigned int* size) const;

private:
    IMPORT_COMMON_LOCAL bool replaceBytes(unsigned int size, const char* data);

    Type_t type_;
    unsigned int size_ = 0;
    char* bytes_ = nullptr;
};
