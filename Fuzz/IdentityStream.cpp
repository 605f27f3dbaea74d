/**
 * @file IdentityStream.cpp
 * Stored identities as bytes from anywhere, read, copied, and put into the identity database.
 */
#include "FuzzInput.h"
#include "Models/IdentityModel.h"

#include <ImportCommon/ExternalGUID.h>
#include <ImportCommon/ExternalGUIDDatabase.h>

#include <cmath>

using namespace ImportCommon;

namespace {

std::string recordOf(const ExternalGUID& guid) {
    unsigned int size = 0;
    const char* const bytes = guid.getBytes(&size);
    return std::string(bytes, size);
}

template <typename T>
T payloadOf(const std::string& record) {
    T value;
    std::memcpy(&value, record.data() + ExternalGUID::PayloadOffset, sizeof value);
    return value;
}

/** Each getter gives the payload for its own kind, and nothing for another. */
void checkGetters(const ExternalGUID& guid, const std::string& record) {
    const auto type = guid.getType();
    const std::string payload = record.substr(ExternalGUID::PayloadOffset);
    const std::string none(payload.size(), '\0');

    const std::string hash = type == ExternalGUID::GUIDTypeSpatialHash ? payload : none;
    require(std::memcmp(guid.getSpatialHash(), hash.data(), hash.size()) == 0, "spatial hash");
    const std::string globalId = type == ExternalGUID::GUIDTypeIFCGlobalID ? payload : none;
    require(std::strlen(guid.getIFCGlobalID()) == std::strlen(globalId.c_str()), "length of the GlobalId");
    require(std::strcmp(guid.getIFCGlobalID(), globalId.c_str()) == 0, "GlobalId");
    const std::string px = type == ExternalGUID::GUIDTypePX ? payload : none;
    require(std::memcmp(&guid.getPXGUID(), px.data(), sizeof(PXGUID_t)) == 0, "PX GUID");
    const int obi = type == ExternalGUID::GUIDTypeHalvorneObi ? payloadOf<std::int32_t>(record) : 0;
    require(guid.getHalvorneObi() == obi, "Halvorne id");
}

ExternalGUID readIdentity(FuzzInput& input) {
    const std::string bytes = input.bytes(input.take<std::uint8_t>());
    const ExactArray<char> exact(bytes.data(), bytes.size());
    const ExternalGUID guid = ExternalGUID::fromByteStream(static_cast<unsigned int>(exact.size()), exact.get());
    const std::string expected = IdentityModel::recordOfStream(bytes);
    require(recordOf(guid) == expected, "record");
    require(std::memcmp(expected.data(), "\0\0\0\0", 4) == 0 || guid.getType() != 0, "kind");
    checkGetters(guid, expected);
    require(recordOf(ExternalGUID(guid)) == expected, "copy");
    return guid;
}

bool isKey(const ExternalGUID& guid) {
    return guid.getType() >= ExternalGUID::GUIDTypeIFCGlobalID && guid.getType() <= ExternalGUID::GUIDTypeHalvorneObi;
}

bool isFinite(const ExternalGUID& guid) {
    const double* const hash = guid.getSpatialHash();
    return std::all_of(hash, hash + ExternalGUID::SpatialHashSize, [](double value) { return std::isfinite(value); });
}

/** Numbers that the compiler may combine in another order differ in their last bits, and NaN equals NaN here. */
void checkHash(const ExternalGUID& guid, const IdentityModel::Hash_t& expected) {
    for (std::size_t i = 0; i < expected.size(); ++i) {
        const double value = guid.getSpatialHash()[i];
        const bool close = std::fabs(value - expected[i]) <= 1e-12 * std::fabs(expected[i]);
        const bool same = value == expected[i] || (std::isnan(value) && std::isnan(expected[i]));
        require(same || (close && std::isfinite(expected[i])), "value of a spatial hash");
    }
}

/** What the database takes it gives back, whatever the record held. */
void store(ExternalGUIDDatabase& database, const ExternalGUID& guid) {
    const ExternalGUIDRuntimeID_e id = database.insertGUID(guid);
    if (isKey(guid)) {
        require(id <= -2, "id of a key");
        require(database.findGUID(guid) == id, "key is found");
        require(database.insertGUID(guid) == id, "key is known");
        require(database.findGUID(database.findGUID(id)) == id, "key is found by its id");
    } else if (guid.getType() == ExternalGUID::GUIDTypeSpatialHash) {
        require(id >= 0, "id of a spatial hash");
        require(!isFinite(guid) || database.findGUID(guid) == id, "spatial hash is found");
        require(database.findGUID(id).getType() == ExternalGUID::GUIDTypeSpatialHash, "kind found by the id");
    } else {
        require(id == ExternalGUIDRuntimeID_None && database.findGUID(guid) == id, "no identity");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzInput input(data, size);
    ExternalGUIDDatabase database;
    ExternalGUID last;
    while (!input.empty()) {
        const ExternalGUID guid = readIdentity(input);
        store(database, guid);
        last = guid;
        require(recordOf(last) == recordOf(guid), "assignment");
        database.findGUID(static_cast<ExternalGUIDRuntimeID_e>(input.take<std::int32_t>()));
    }
    // The last bytes once more, as the coordinates of an object.
    const ExactArray<double> vertexes(size / sizeof(double));
    std::memcpy(vertexes.get(), data, vertexes.size() * sizeof(double));
    const auto count = static_cast<unsigned int>(vertexes.size() / 3);
    if (count > 0) {
        const ExternalGUID hash = ExternalGUID::spatialHashFromVertexes(count, vertexes.get());
        checkHash(hash, IdentityModel::spatialHash({vertexes.get(), vertexes.get() + std::size_t{count} * 3}));
        store(database, hash);
    }
    return 0;
}
