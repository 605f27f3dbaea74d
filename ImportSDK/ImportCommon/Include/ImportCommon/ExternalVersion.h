/**
 * @file ExternalVersion.h
 * The handle of a version fingerprint, and the functions that make one.
 */
#pragma once

#include <ImportCommon/CExternalVersion.h>

namespace ImportCommon {

/**
 * Owns one CExternalVersion and passes every call on to it; copies are deep.
 *
 * A handle that adopted a null pointer, or lost its object to a failed allocation, reads as an invalid version.
 * Constructors, assignment and the functions below throw `std::bad_alloc` without memory.
 */
class IMPORT_COMMON_API ExternalVersion {
public:
    /** An invalid version. Throws `std::bad_alloc` without memory. */
    ExternalVersion();

    /**
     * A deep copy.
     * @param other  what is copied
     */
    ExternalVersion(const ExternalVersion& other);

    /**
     * Adopts @p version, which this handle now owns and deletes.
     *
     * REQUIRES: nobody else owns it.
     *
     * @param version  an object from `new`, or null
     */
    ExternalVersion(CExternalVersion* version);
    /** Deletes the owned object. */
    ~ExternalVersion();

    /**
     * Replaces the owned object by a copy. A handle assigned to itself becomes an invalid version; that is meant.
     * @param other  what is copied
     * @return this handle
     */
    ExternalVersion& operator=(const ExternalVersion& other);

    /** @copydoc CExternalVersion::operator== */
    bool operator==(const ExternalVersion& other) const;

    /** @copydoc CExternalVersion::similarity */
    double similarity(const ExternalVersion& other) const;

    /** @copydoc CExternalVersion::getType */
    ExternalVersionType_e getType() const;

    /** @copydoc CExternalVersion::toString */
    void toString(unsigned int size, char* buffer) const;

    /** @copydoc CExternalVersion::fromByteStream */
    void fromByteStream(unsigned int size, const char* buffer);

    /** @copydoc CExternalVersion::toByteStream */
    unsigned int toByteStream(unsigned int size, char* buffer) const;

    /** @copydoc CExternalVersion::getBoundingBox */
    void getBoundingBox(double* x, double* y, double* z) const;

    /** @copydoc CExternalVersion::getDistances */
    void getDistances(double* distances) const;

    /** @copydoc CExternalVersion::getVolume */
    double getVolume() const;

    /** @copydoc CExternalVersion::getCenteroid */
    void getCenteroid(double* x, double* y, double* z) const;

private:
    IMPORT_COMMON_LOCAL const CExternalVersion& version() const;

    CExternalVersion* version_;
};

/**
 * A bounding box version from the box's dimensions.
 * @param x  length of the box along x
 * @param y  length along y
 * @param z  length along z
 * @return the version
 */
IMPORT_COMMON_API ExternalVersion createFromBoundingBox(double x, double y, double z);

/**
 * A geometry version from the box's dimensions and eight distances, which are copied.
 *
 * REQUIRES: @p distances points to eight doubles.
 *
 * @param x          length of the box along x
 * @param y          length along y
 * @param z          length along z
 * @param distances  eight distances
 * @return the version
 */
IMPORT_COMMON_API ExternalVersion createFromGeometry(double x, double y, double z, const double* distances);

/**
 * A solid version from the box's dimensions, eight distances, volume and centroid (three coordinates), all copied.
 *
 * REQUIRES: @p distances points to eight doubles and @p centroid to three.
 *
 * @param x          length of the box along x
 * @param y          length along y
 * @param z          length along z
 * @param distances  eight distances
 * @param volume     the volume
 * @param centroid   x, y and z of the centroid
 * @return the version
 */
IMPORT_COMMON_API ExternalVersion createFromSolid(double x, double y, double z, const double* distances, double volume,
                                                  const double* centroid);

} // namespace ImportCommon
