/**
 * @file ExternalGUID.h
 * The identity of an imported object in the system that it comes from.
 */
#pragma once

#include <ImportCommon/Export.h>

namespace ImportCommon {

/** A PX GUID: 16 bytes that the library only copies and compares. */
struct PXGUID_t {
    /** The bytes, in the order in which they are stored. */
    unsigned char bytes[16];
};

/**
 * An external identity: an IFC GlobalId, a PX GUID, a Halvorne object id, or, when the source gives no identity, a
 * spatial hash of the object's vertices.
 *
 * The whole state is one record of 96 bytes, which is also the form to store (little-endian):
 *
 * | Offset | Size | Content                                                                  |
 * |-------:|-----:|--------------------------------------------------------------------------|
 * |      0 |    4 | kind, see Type_t                                                         |
 * |      4 |    4 | zero                                                                     |
 * |      8 |   88 | spatial hash: 11 doubles; GlobalId: 22 characters; PX: 16 bytes;         |
 * |        |      | Halvorne: signed 32-bit integer; the rest is zero                        |
 *
 * A value class: it owns one heap block, and copies are deep. A getter that is called for another kind stops in an
 * attached debugger, the first time in a process. Without memory for the block a value is empty; an empty value reads
 * as an all-zero record of kind GUIDTypeNone and ignores what is assigned to it. Nothing throws.
 */
class IMPORT_COMMON_API ExternalGUID {
public:
    /** Bytes of the record. */
    static constexpr unsigned int RecordSize = 96;

    /** Where the identity itself begins in the record. */
    static constexpr unsigned int PayloadOffset = 8;

    /** Characters of a GlobalId. */
    static constexpr unsigned int GlobalIdSize = 22;

    /** Doubles of a spatial hash. */
    static constexpr unsigned int SpatialHashSize = 11;

    /** Kinds of identity; the numbers are part of the stored form. */
    enum Type_t : unsigned int {
        GUIDTypeNone = 0,        ///< no identity
        GUIDTypeSpatialHash = 1, ///< a hash of the vertices: 11 doubles
        GUIDTypeIFCGlobalID = 2, ///< an IFC GlobalId: 22 characters
        GUIDTypePX = 3,          ///< a PX GUID: 16 bytes
        GUIDTypeHalvorneObi = 4  ///< a Halvorne object id: an integer
    };

    /** An identity of kind GUIDTypeNone. */
    ExternalGUID();

    /**
     * A deep copy.
     * @param other  what is copied
     */
    ExternalGUID(const ExternalGUID& other);

    /**
     * A deep copy; an empty value stays empty.
     * @param other  what is copied
     * @return this identity
     */
    ExternalGUID& operator=(const ExternalGUID& other);
    /** Releases the record. */
    ~ExternalGUID();

    /**
     * Identity from the first 22 characters of a GlobalId; of a shorter text the rest is zero. A null pointer gives no
     * identity.
     *
     * What follows the 22nd character is dropped: two ids that differ only there become one identity. Give longer ids
     * of a source another form, such as a PX GUID made of a 128-bit hash of the id.
     *
     * REQUIRES: at least 22 characters, or a zero byte before.
     *
     * @param globalId  the text; read during the call only
     * @return the identity
     */
    static ExternalGUID fromIFCGlobalID(const char* globalId);

    /**
     * Identity from a PX GUID.
     * @param guid  the PX GUID
     * @return the identity
     */
    static ExternalGUID fromPX(const PXGUID_t& guid);

    /**
     * Identity from a Halvorne object id.
     * @param obi  the id
     * @return the identity
     */
    static ExternalGUID fromHalvorneObi(int obi);

    /**
     * Identity from a stored record: takes the first 96 of @p size bytes; what a shorter stream lacks is zero.
     *
     * REQUIRES: @p bytes points to @p size bytes; it may be null with a size of 0.
     *
     * @param size   number of bytes
     * @param bytes  the bytes; read during the call only
     * @return the identity
     */
    static ExternalGUID fromByteStream(unsigned int size, const char* bytes);

    /**
     * Spatial hash of an object: centre x, y, z of the vertices' bounds, then the largest distance from the centre in
     * each octant (octant = 1 if x is above the centre, + 2 if y is, + 4 if z is).
     *
     * REQUIRES: @p xyz points to at least one vertex, or is null.
     *
     * The last vertex is not looked at, and a vertex with a new largest z makes its y the largest z. Stored hashes
     * depend on both, so they are meant to stay.
     *
     * @param count  number of vertices
     * @param xyz    their coordinates, three doubles each. With a count of 0 or 1 the first vertex is the centre, so
     *               there must be one even with 0; a null pointer gives a zero hash.
     * @return the identity
     */
    static ExternalGUID spatialHashFromVertexes(unsigned int count, const double* xyz);

    /**
     * Makes this identity a spatial hash of the given 11 doubles.
     *
     * REQUIRES: @p values points to SpatialHashSize doubles.
     *
     * @param values  SpatialHashSize doubles; copied
     */
    void fromSpatialHash(const double* values);

    /**
     * The record of 96 bytes, owned by this object; @p size, which must not be null, receives 96.
     * @param size  receives the number of bytes
     * @return the record
     */
    const char* getBytes(unsigned int* size) const;

    /**
     * The kind. After fromByteStream it is whatever number the stream began with.
     * @return the kind
     */
    Type_t getType() const;

    /**
     * The 11 doubles of a spatial hash, owned by this object; 11 zeros for any other kind.
     * @return the doubles
     */
    const double* getSpatialHash() const;

    /**
     * The GlobalId as zero-terminated text, owned by this object; "" for any other kind.
     * @return the text
     */
    const char* getIFCGlobalID() const;

    /**
     * The PX GUID; all zero for any other kind.
     * @return the PX GUID
     */
    const PXGUID_t& getPXGUID() const;

    /**
     * The Halvorne object id; 0 for any other kind.
     * @return the id
     */
    int getHalvorneObi() const;

private:
    struct Record;
    Record* record_;
};

} // namespace ImportCommon
