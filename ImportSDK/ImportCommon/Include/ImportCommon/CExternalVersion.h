/**
 * @file CExternalVersion.h
 * A geometric fingerprint of one imported object.
 */
#pragma once

#include <ImportCommon/Export.h>

#include <cstdint>

namespace ImportCommon {

/** Kinds of fingerprint; the numbers are part of the stored form. */
enum ExternalVersionType_e : unsigned int {
    ExternalVersionType_Invalid = 0,     ///< carries nothing
    ExternalVersionType_BoundingBox = 1, ///< carries the bounding box
    ExternalVersionType_Solid = 2,       ///< carries everything
    ExternalVersionType_Geometry = 3     ///< carries the bounding box and the distances
};

/**
 * A fingerprint of an object's shape: dimensions of its bounding box, eight characteristic distances in a fixed order,
 * volume and centroid, all in one length unit of the caller's choice. What a kind does not carry is 0.
 *
 * | Kind         | bounding box | distances | volume, centroid |
 * |--------------|:------------:|:---------:|:----------------:|
 * | bounding box |      x       |           |                  |
 * | geometry     |      x       |     x     |                  |
 * | solid        |      x       |     x     |        x         |
 *
 * A plain value. It is tested for equality within fixed tolerances, scored for similarity, and written to a byte stream
 * that is stored with the object until the next import.
 *
 * Numbers are taken as they come. A value that is not a number agrees with every value, since no difference from it is
 * larger than a tolerance; keep such values out. Pointers must not be null. A getter that says something on the log
 * also stops in a debugger that is attached, and so does fromByteStream at the first fault of each kind; see
 * KitDebugBreak.
 */
class IMPORT_COMMON_API CExternalVersion {
public:
    /** Bytes of the longest stored form. */
    static constexpr unsigned int MaximumStreamSize = 124;

    /** An invalid version. */
    CExternalVersion();

    /**
     * A bounding box version from the box's dimensions.
     * @param x  length of the box along x
     * @param y  length along y
     * @param z  length along z
     */
    CExternalVersion(double x, double y, double z);

    /**
     * A geometry version; eight distances are copied.
     *
     * REQUIRES: @p distances points to eight doubles.
     *
     * @param x          length of the box along x
     * @param y          length along y
     * @param z          length along z
     * @param distances  eight distances
     */
    CExternalVersion(double x, double y, double z, const double* distances);

    /**
     * A solid version; eight distances and three coordinates of the centroid are copied.
     *
     * REQUIRES: @p distances points to eight doubles and @p centroid to three.
     *
     * @param x          length of the box along x
     * @param y          length along y
     * @param z          length along z
     * @param distances  eight distances
     * @param volume     the volume
     * @param centroid   x, y and z of the centroid
     */
    CExternalVersion(double x, double y, double z, const double* distances, double volume, const double* centroid);

    /**
     * The kind; after fromByteStream it may be a number outside the list.
     * @return the kind
     */
    ExternalVersionType_e getType() const;

    /**
     * Whether both are of the same kind and every value that the kind carries agrees: volume within 1e-6, each centroid
     * coordinate, each distance, and the Euclidean distance of the box dimensions within 0.001. Two invalid versions
     * are equal; a version of unknown kind equals nothing, not even itself. NaN agrees with everything.
     * @param other  the version to compare with
     * @return whether they are equal
     */
    bool operator==(const CExternalVersion& other) const;

    /**
     * How alike two versions are, from 0 (different) to 1 (the same), scored by the kind of this object:
     * a.similarity(b) and b.similarity(a) differ between kinds. What the other does not carry counts as its zeros.
     * Invalid and unknown kinds score 0. Differences are measured by the mean distance, so that two solids or
     * geometries whose distances are all zero score NaN, and a NaN among the values can make the score NaN.
     *
     * The score is not bounded by 1: negative volumes can take it above 1, and so can distances whose mean is below
     * zero. It stays between 0 and 1 only if no volume and no distance is negative.
     * @param other  the version to compare with
     * @return the score
     */
    double similarity(const CExternalVersion& other) const;

    /**
     * Dimensions of the bounding box. An invalid version gives zeros and says so once on the log.
     * @param x  receives the length along x
     * @param y  receives the length along y
     * @param z  receives the length along z
     */
    void getBoundingBox(double* x, double* y, double* z) const;

    /**
     * Fills eight distances. A kind without them gives zeros and says so once on the log.
     *
     * REQUIRES: @p distances has room for eight doubles.
     *
     * @param distances  receives eight doubles
     */
    void getDistances(double* distances) const;

    /**
     * The volume. A kind without one gives 0.0 and says so once on the log.
     * @return the volume
     */
    double getVolume() const;

    /**
     * The centroid; the spelling of the name is part of the interface. A kind without one gives zeros and says so once
     * on the log.
     * @param x  receives its coordinate x
     * @param y  receives its coordinate y
     * @param z  receives its coordinate z
     */
    void getCenteroid(double* x, double* y, double* z) const;

    /**
     * Writes the stored form: little-endian, doubles as IEEE 754 binary64.
     *
     * | Kind         | Bytes | Content                                                                              |
     * |--------------|------:|--------------------------------------------------------------------------------------|
     * | invalid      |     4 | kind                                                                                 |
     * | bounding box |    28 | kind, box (3 doubles)                                                                |
     * | solid        |   124 | kind, volume, centroid (3 doubles), distances (8 doubles), box (3 doubles)           |
     * | geometry     |    92 | kind, distances (8 doubles), box (3 doubles)                                         |
     *
     * @param size  room in @p buffer in bytes; at least MaximumStreamSize, whatever the kind
     * @param buffer  receives the bytes
     * @return the number of bytes written; 0 when there is less room, and then nothing is written
     */
    unsigned int toByteStream(unsigned int size, char* buffer) const;

    /**
     * Reads the stored form. Values are taken in the order of the stream: one that is too short or too long leaves the
     * values up to the fault set and the others as they were; the box is taken only when exactly its bytes remain. Less
     * than 4 bytes make the version invalid.
     * @param size    number of bytes at @p buffer
     * @param buffer  the bytes; read during the call only
     */
    void fromByteStream(unsigned int size, const char* buffer);

    /**
     * Writes one line of text: "invalid", or the diagonal of the box, the distances and the centroid, as far as the
     * kind has them, like "bb=5.000000e+00 d1=…". The text is cut at @p size bytes. "invalid" fills the rest of the
     * buffer with zeros and gets no terminator in 7 bytes or less; an unknown kind writes nothing.
     * @param size    room in @p buffer in bytes
     * @param buffer  receives the text
     */
    void toString(unsigned int size, char* buffer) const;

private:
    IMPORT_COMMON_LOCAL bool hasBoundingBox() const;
    IMPORT_COMMON_LOCAL bool hasDistances() const;
    IMPORT_COMMON_LOCAL bool hasVolume() const;

    std::uint32_t type_;
    double boundingBox_[3];
    double distances_[8];
    double volume_;
    double centroid_[3];
};

} // namespace ImportCommon
