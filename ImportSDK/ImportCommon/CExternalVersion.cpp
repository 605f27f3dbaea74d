#include "OneTimeWarning.h"

#include <ImportCommon/CExternalVersion.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>

using ImportCommon::CExternalVersion;

namespace {

constexpr unsigned int tagSize = 4;
constexpr int distanceCount = 8;
constexpr double volumeTolerance = 1e-6;
constexpr double lengthTolerance = 0.001;

/** A partial score counts from its threshold on, raised to its exponent. */
struct Weight {
    double threshold;
    double exponent;
};

constexpr Weight volumeWeight = {0.5, 3.0};
constexpr Weight offsetWeight = {0.7, 3.0};
constexpr Weight orientationWeight = {0.8, 4.0};
constexpr Weight boundsWeight = {0.7, 3.0};

double transform(double similarity, const Weight& weight) {
    double u = (similarity - weight.threshold) / (1.0 - weight.threshold);
    if (u < 0) {
        u = 0;
    }
    return std::pow(u, weight.exponent);
}

double distanceOf(const double* a, const double* b) {
    const double dx = a[0] - b[0];
    const double dy = a[1] - b[1];
    const double dz = a[2] - b[2];
    return std::sqrt(dx * dx + dy * dy + dz * dz);
}

double tripleSimilarity(const double* a, const double* b, double scale) {
    const double similarity = 1 - distanceOf(a, b) / scale;
    return similarity < 0 ? 0.0 : similarity; // zero over zero passes as NaN
}

double boundsSimilarity(const double* a, const double* b, double scale) {
    return tripleSimilarity(a, b, scale);
}

double offsetSimilarity(const double* a, const double* b, double scale) {
    return tripleSimilarity(a, b, scale);
}

double orientationSimilarity(const double* a, const double* b, double scale) {
    double sum = 0;
    for (int i = 0; i < distanceCount; ++i) {
        sum += 1 - std::fabs(b[i] - a[i]) / scale;
    }
    return sum / distanceCount;
}

double volumeSimilarity(double a, double b) {
    const double big = a > b ? a : b;
    const double small = a > b ? b : a;
    return std::fabs(big) > 1e-20 ? small / big : 1.0;
}

double boundingSimilarity(const double* a, const double* b) {
    return transform(boundsSimilarity(a, b, 1.0), boundsWeight);
}

double meanDistance(const double* distances) {
    double sum = distances[0];
    for (int i = 1; i < distanceCount; ++i) {
        sum += distances[i];
    }
    return sum / distanceCount;
}

/** The length that differences are measured by: the larger mean distance. */
double scaleOf(const double* distA, const double* distB) {
    const double meanA = meanDistance(distA);
    const double meanB = meanDistance(distB);
    return meanA > meanB ? meanA : meanB;
}

double solidSimilarity(double volA, double volB, const double* centroidA, const double* centroidB, const double* distA,
                       const double* distB, const double* bbA, const double* bbB) {
    const double scale = scaleOf(distA, distB);
    return transform(volumeSimilarity(volA, volB), volumeWeight) *
           transform(offsetSimilarity(centroidA, centroidB, scale), offsetWeight) *
           transform(orientationSimilarity(distA, distB, scale), orientationWeight) *
           transform(boundsSimilarity(bbA, bbB, scale), boundsWeight);
}

double geometrySimilarity(const double* centroidA, const double* centroidB, const double* distA, const double* distB,
                          const double* bbA, const double* bbB) {
    const double scale = scaleOf(distA, distB);
    return transform(offsetSimilarity(centroidA, centroidB, scale), offsetWeight) *
           transform(orientationSimilarity(distA, distB, scale), orientationWeight) *
           transform(boundsSimilarity(bbA, bbB, scale), boundsWeight);
}

bool differ(const double* a, const double* b, int count) {
    return !std::equal(a, a + count, b, [](double x, double y) { return !(std::fabs(x - y) > lengthTolerance); });
}

/** Puts values into a stream, one behind the other. */
class StreamWriter {
public:
    explicit StreamWriter(char* buffer) : begin_(buffer), next_(buffer) {}

    template <typename T>
    void put(const T* values, std::size_t count) {
        std::memcpy(next_, values, count * sizeof(T));
        next_ += count * sizeof(T);
    }
    unsigned int size() const { return static_cast<unsigned int>(next_ - begin_); }

private:
    char* begin_;
    char* next_;
};

/** Takes values out of a stream; the caller sees to it that they are there. */
class StreamReader {
public:
    StreamReader(const char* buffer, unsigned int size) : next_(buffer), remaining_(size) {}

    void get(double* values, unsigned int count) {
        std::memcpy(values, next_, count * sizeof(double));
        next_ += count * sizeof(double);
        remaining_ -= static_cast<unsigned int>(count * sizeof(double));
    }
    unsigned int remaining() const { return remaining_; }

private:
    const char* next_;
    unsigned int remaining_;
};

/** The kind as streams hold it. The lower three bytes count as signed, which shows in kinds that nobody writes. */
std::uint32_t readTag(const char* buffer) {
    const auto byte = [buffer](int i) { return static_cast<std::uint32_t>(static_cast<signed char>(buffer[i])); };
    return byte(0) + (byte(1) << 8) + (byte(2) << 16) + (byte(3) << 24);
}

} // namespace

namespace ImportCommon {

CExternalVersion::CExternalVersion()
    : type_(ExternalVersionType_Invalid), boundingBox_{}, distances_{}, volume_(0), centroid_{} {
}

CExternalVersion::CExternalVersion(double x, double y, double z)
    : type_(ExternalVersionType_BoundingBox), boundingBox_{x, y, z}, distances_{}, volume_(0), centroid_{} {
}

CExternalVersion::CExternalVersion(double x, double y, double z, const double* distances) : CExternalVersion(x, y, z) {
    type_ = ExternalVersionType_Geometry;
    std::memcpy(distances_, distances, sizeof distances_);
}

CExternalVersion::CExternalVersion(double x, double y, double z, const double* distances, double volume,
                                   const double* centroid)
    : CExternalVersion(x, y, z, distances) {
    type_ = ExternalVersionType_Solid;
    volume_ = volume;
    std::memcpy(centroid_, centroid, sizeof centroid_);
}

ExternalVersionType_e CExternalVersion::getType() const {
    return static_cast<ExternalVersionType_e>(type_);
}

// Each of the three is an exclusion, so that a version of unknown kind shows the values that it holds.
bool CExternalVersion::hasBoundingBox() const {
    return type_ != ExternalVersionType_Invalid;
}

bool CExternalVersion::hasDistances() const {
    return hasBoundingBox() && type_ != ExternalVersionType_BoundingBox;
}

bool CExternalVersion::hasVolume() const {
    return hasDistances() && type_ != ExternalVersionType_Geometry;
}

bool CExternalVersion::operator==(const CExternalVersion& other) const {
    if (type_ != other.type_ || type_ > ExternalVersionType_Geometry) {
        return false;
    }
    if (hasVolume() &&
        (std::fabs(volume_ - other.volume_) > volumeTolerance || differ(centroid_, other.centroid_, 3))) {
        return false;
    }
    if (hasDistances() && differ(distances_, other.distances_, distanceCount)) {
        return false;
    }
    return !hasBoundingBox() || !(distanceOf(boundingBox_, other.boundingBox_) > lengthTolerance);
}

double CExternalVersion::similarity(const CExternalVersion& other) const {
    switch (type_) {
    case ExternalVersionType_BoundingBox:
        return boundingSimilarity(boundingBox_, other.boundingBox_);
    case ExternalVersionType_Solid:
        return solidSimilarity(volume_, other.volume_, centroid_, other.centroid_, distances_, other.distances_,
                               boundingBox_, other.boundingBox_);
    case ExternalVersionType_Geometry:
        return geometrySimilarity(centroid_, other.centroid_, distances_, other.distances_, boundingBox_,
                                  other.boundingBox_);
    default:
        return 0.0;
    }
}

void CExternalVersion::getBoundingBox(double* x, double* y, double* z) const {
    static OneTimeWarning once;
    const bool has = hasBoundingBox();
    if (!has) {
        once.report("no bounding box in this type");
    }
    *x = has ? boundingBox_[0] : 0.0;
    *y = has ? boundingBox_[1] : 0.0;
    *z = has ? boundingBox_[2] : 0.0;
}

void CExternalVersion::getDistances(double* distances) const {
    static OneTimeWarning once;
    if (hasDistances()) {
        std::copy_n(distances_, distanceCount, distances);
    } else {
        once.report("no distances in this type");
        std::fill_n(distances, distanceCount, 0.0);
    }
}

double CExternalVersion::getVolume() const {
    static OneTimeWarning once;
    if (!hasVolume()) {
        once.report("no volume in this type");
        return 0.0;
    }
    return volume_;
}

void CExternalVersion::getCenteroid(double* x, double* y, double* z) const {
    static OneTimeWarning once;
    const bool has = hasVolume();
    if (!has) {
        once.report("no centeroid in this type");
    }
    *x = has ? centroid_[0] : 0.0;
    *y = has ? centroid_[1] : 0.0;
    *z = has ? centroid_[2] : 0.0;
}

unsigned int CExternalVersion::toByteStream(unsigned int size, char* buffer) const {
    if (size < MaximumStreamSize) {
        return 0;
    }
    StreamWriter stream(buffer);
    const std::uint32_t type = type_; // the bytes of the stream might be this object's, as far as the compiler knows
    stream.put(&type, 1);
    switch (type) {
    case ExternalVersionType_Solid:
        stream.put(&volume_, 1);
        stream.put(centroid_, 3);
        [[fallthrough]];
    case ExternalVersionType_Geometry:
        stream.put(distances_, distanceCount);
        [[fallthrough]];
    case ExternalVersionType_BoundingBox:
        stream.put(boundingBox_, 3);
        break;
    default:
        break;
    }
    return stream.size();
}

void CExternalVersion::fromByteStream(unsigned int size, const char* buffer) {
    static OneTimeWarning volumeWarning;
    static OneTimeWarning distancesWarning;
    static OneTimeWarning boundingBoxWarning;
    if (size < tagSize) {
        type_ = ExternalVersionType_Invalid;
        return;
    }
    const std::uint32_t type = readTag(buffer);
    type_ = type;
    if (type > ExternalVersionType_Geometry || type == ExternalVersionType_Invalid) {
        return;
    }
    StreamReader stream(buffer + tagSize, size - tagSize);
    if (type == ExternalVersionType_Solid) {
        if (stream.remaining() < sizeof volume_ + sizeof centroid_) {
            volumeWarning.report();
            return;
        }
        stream.get(&volume_, 1);
        stream.get(centroid_, 3);
    }
    if (type != ExternalVersionType_BoundingBox) {
        if (stream.remaining() < sizeof distances_) {
            distancesWarning.report();
            return;
        }
        stream.get(distances_, distanceCount);
    }
    if (stream.remaining() == sizeof boundingBox_) {
        stream.get(boundingBox_, 3);
    } else {
        boundingBoxWarning.report();
    }
}

void CExternalVersion::toString(unsigned int size, char* buffer) const {
    const double* d = distances_;
    const double* c = centroid_;
    const double origin[3] = {};
    const double diagonal = distanceOf(boundingBox_, origin);
    switch (type_) {
    case ExternalVersionType_Invalid:
        std::strncpy(buffer, "invalid", size);
        break;
    case ExternalVersionType_BoundingBox:
        std::snprintf(buffer, size, "bb=%e", diagonal);
        break;
    case ExternalVersionType_Solid:
        std::snprintf(buffer, size, "bb=%e d1=%e d2=%e d3=%e d4=%e d5=%e d6=%e d7=%e d8=%e c1=%e c2=%e c3=%e", diagonal,
                      d[0], d[1], d[2], d[3], d[4], d[5], d[6], d[7], c[0], c[1], c[2]);
        break;
    case ExternalVersionType_Geometry:
        std::snprintf(buffer, size, "bb=%e d1=%e d2=%e d3=%e d4=%e d5=%e d6=%e d7=%e d8=%e", diagonal, d[0], d[1], d[2],
                      d[3], d[4], d[5], d[6], d[7]);
        break;
    default:
        break;
    }
}

} // namespace ImportCommon
