#include "OneTimeWarning.h"

#include <ImportCommon/ExternalGUID.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>

namespace ImportCommon {

namespace {

constexpr unsigned int octantCount = 8;

} // namespace

/** The stored record, and a zero behind it that ends a GlobalId whatever bytes a foreign stream brought. */
struct ExternalGUID::Record {
    std::uint32_t type;
    std::uint32_t zero;
    union {
        double spatialHash[SpatialHashSize];
        char globalId[8 * SpatialHashSize];
        PXGUID_t px;
        std::int32_t obi;
    };
    char terminator;
};

namespace {

/** Bounds of vertices as spatial hashes take them, and what follows from them. */
struct Bounds {
    double minimum[3];
    double maximum[3];

    explicit Bounds(const double* vertex) {
        std::copy_n(vertex, 3, minimum);
        std::copy_n(vertex, 3, maximum);
    }

    void include(const double* vertex) {
        for (int axis = 0; axis < 3; ++axis) {
            if (minimum[axis] > vertex[axis]) {
                minimum[axis] = vertex[axis];
            }
            if (vertex[axis] > maximum[axis]) {
                // The largest z becomes the vertex's y: stored hashes were computed like that.
                maximum[axis] = vertex[axis == 2 ? 1 : axis];
            }
        }
    }
};

/** Raises the largest squared distance from the centre in the vertex's octant. */
void widenOctant(double* squares, const double* centre, const double* vertex) {
    const double dx = vertex[0] - centre[0];
    const double dy = vertex[1] - centre[1];
    const double dz = vertex[2] - centre[2];
    const double square = dx * dx + dy * dy + dz * dz;
    double& largest = squares[(dx > 0 ? 1 : 0) + (dy > 0 ? 2 : 0) + (dz > 0 ? 4 : 0)];
    if (square > largest) {
        largest = square;
    }
}

} // namespace

ExternalGUID::ExternalGUID() : record_(new(std::nothrow) Record()) {
    static_assert(sizeof(PXGUID_t) == 16, "a PX GUID has 16 bytes");
    static_assert(offsetof(Record, spatialHash) == PayloadOffset, "the identity follows its kind");
    static_assert(offsetof(Record, terminator) == RecordSize, "the stored record has 96 bytes");
}

ExternalGUID::ExternalGUID(const ExternalGUID& other) : ExternalGUID() {
    *this = other;
}

ExternalGUID& ExternalGUID::operator=(const ExternalGUID& other) {
    if (record_ != nullptr) {
        *record_ = other.record_ != nullptr ? *other.record_ : Record();
    }
    return *this;
}

ExternalGUID::~ExternalGUID() {
    delete record_;
}

ExternalGUID ExternalGUID::fromIFCGlobalID(const char* globalId) {
    ExternalGUID guid;
    if (guid.record_ != nullptr && globalId != nullptr) {
        guid.record_->type = GUIDTypeIFCGlobalID;
        std::strncpy(guid.record_->globalId, globalId, GlobalIdSize);
    }
    return guid;
}

ExternalGUID ExternalGUID::fromPX(const PXGUID_t& px) {
    ExternalGUID guid;
    if (guid.record_ != nullptr) {
        guid.record_->type = GUIDTypePX;
        guid.record_->px = px;
    }
    return guid;
}

ExternalGUID ExternalGUID::fromHalvorneObi(int obi) {
    ExternalGUID guid;
    if (guid.record_ != nullptr) {
        guid.record_->type = GUIDTypeHalvorneObi;
        guid.record_->obi = obi;
    }
    return guid;
}

ExternalGUID ExternalGUID::fromByteStream(unsigned int size, const char* bytes) {
    ExternalGUID guid;
    if (guid.record_ != nullptr && size > 0) {
        std::memcpy(guid.record_, bytes, size < RecordSize ? size : RecordSize);
    }
    return guid;
}

ExternalGUID ExternalGUID::spatialHashFromVertexes(unsigned int count, const double* xyz) {
    double hash[SpatialHashSize] = {};
    if (xyz != nullptr) {
        // The last vertex is left out of both passes: stored hashes were computed like that.
        const double* end = xyz + 3 * static_cast<std::size_t>(std::max(count, 1U) - 1);
        Bounds bounds(xyz);
        for (const double* vertex = xyz; vertex != end; vertex += 3) {
            bounds.include(vertex);
        }
        for (int axis = 0; axis < 3; ++axis) {
            hash[axis] = (bounds.minimum[axis] + bounds.maximum[axis]) / 2.0;
        }
        double* radii = hash + 3;
        for (const double* vertex = xyz; vertex != end; vertex += 3) {
            widenOctant(radii, hash, vertex);
        }
        std::transform(radii, radii + octantCount, radii, [](double square) { return std::sqrt(square); });
    }
    ExternalGUID guid;
    guid.fromSpatialHash(hash);
    return guid;
}

void ExternalGUID::fromSpatialHash(const double* values) {
    if (record_ != nullptr) {
        record_->type = GUIDTypeSpatialHash;
        std::memmove(record_->spatialHash, values, sizeof record_->spatialHash); // they may be its own
    }
}

const char* ExternalGUID::getBytes(unsigned int* size) const {
    static const Record none = {};
    *size = RecordSize;
    return reinterpret_cast<const char*>(record_ != nullptr ? record_ : &none);
}

ExternalGUID::Type_t ExternalGUID::getType() const {
    return record_ != nullptr ? static_cast<Type_t>(record_->type) : GUIDTypeNone;
}

const double* ExternalGUID::getSpatialHash() const {
    static const double none[SpatialHashSize] = {};
    return getType() == GUIDTypeSpatialHash ? record_->spatialHash : none;
}

const char* ExternalGUID::getIFCGlobalID() const {
    static OneTimeWarning once;
    if (getType() != GUIDTypeIFCGlobalID) {
        once.report();
        return "";
    }
    return record_->globalId;
}

const PXGUID_t& ExternalGUID::getPXGUID() const {
    static const PXGUID_t none = {};
    static OneTimeWarning once;
    if (getType() != GUIDTypePX) {
        once.report();
        return none;
    }
    return record_->px;
}

int ExternalGUID::getHalvorneObi() const {
    static OneTimeWarning once;
    if (getType() != GUIDTypeHalvorneObi) {
        once.report();
        return 0;
    }
    return record_->obi;
}

} // namespace ImportCommon
