#include <ImportCommon/ExternalGUIDDatabase.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <climits>
#include <cmath>
#include <cstring>
#include <iostream>
#include <map>
#include <random>
#include <string>
#include <vector>

using ImportCommon::ExternalGUID;
using ImportCommon::ExternalGUIDDatabase;
using ImportCommon::ExternalGUIDRuntimeID_e;
using ImportCommon::PXGUID_t;

namespace {

constexpr unsigned int recordSize = 96;
using Hash_t = std::array<double, 11>;

const char* const globalId = "2O2Fr$t4X7Zf8NOew3FLOH";
const PXGUID_t pxGuid = {{0xFF, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 0, 0x80}};
const Hash_t hashValues = {1.5, -2, 3, 4, 5, 6, 7, 8, 9, 10, 1e300};

std::string bytesOf(const ExternalGUID& guid) {
    unsigned int size = 0;
    const char* const bytes = guid.getBytes(&size);
    EXPECT_EQ(size, recordSize);
    return std::string(bytes, size);
}

/** The record that the given kind and payload amount to. */
std::string record(char kind, const void* payload, std::size_t size) {
    std::string bytes(recordSize, '\0');
    bytes[0] = kind;
    bytes.replace(8, size, static_cast<const char*>(payload), size);
    return bytes;
}

ExternalGUID spatialHash(const Hash_t& values) {
    ExternalGUID guid = ExternalGUID::fromIFCGlobalID(globalId);
    guid.fromSpatialHash(values.data());
    return guid;
}

/** The getters' answers that belong to a kind; those of the other kinds must be neutral. */
void expectAnswersOf(const ExternalGUID& guid, unsigned int kind) {
    EXPECT_EQ(guid.getType(), kind);
    const auto hash = kind == ExternalGUID::GUIDTypeSpatialHash ? hashValues : Hash_t{};
    EXPECT_TRUE(std::equal(hash.begin(), hash.end(), guid.getSpatialHash()));
    EXPECT_STREQ(guid.getIFCGlobalID(), kind == ExternalGUID::GUIDTypeIFCGlobalID ? globalId : "");
    const PXGUID_t px = kind == ExternalGUID::GUIDTypePX ? pxGuid : PXGUID_t{};
    EXPECT_EQ(std::memcmp(&guid.getPXGUID(), &px, sizeof px), 0);
    EXPECT_EQ(guid.getHalvorneObi(), kind == ExternalGUID::GUIDTypeHalvorneObi ? -2 : 0);
}

TEST(ExternalGUIDTest, everyKindByteByByte) {
    const int obi = -2;
    const std::pair<ExternalGUID, std::string> cases[] = {
        {ExternalGUID(), record(0, "", 0)},
        {spatialHash(hashValues), record(1, hashValues.data(), sizeof hashValues)},
        {ExternalGUID::fromIFCGlobalID((std::string(globalId) + "more").c_str()), record(2, globalId, 22)},
        {ExternalGUID::fromPX(pxGuid), record(3, &pxGuid, sizeof pxGuid)},
        {ExternalGUID::fromHalvorneObi(obi), record(4, &obi, sizeof obi)},
    };
    unsigned int kind = 0;
    for (const auto& [guid, bytes] : cases) {
        EXPECT_EQ(bytesOf(guid), bytes);
        expectAnswersOf(guid, kind);
        expectAnswersOf(ExternalGUID::fromByteStream(recordSize, bytes.data()), kind);
        ++kind;
    }
}

TEST(ExternalGUIDTest, inputsOfAnyLength) {
    std::string stream(200, '\0');
    std::generate(stream.begin(), stream.end(), [next = 'A']() mutable { return next++; });
    for (unsigned int size = 0; size <= 200; ++size) {
        const std::vector<char> exact(stream.begin(), stream.begin() + size);
        std::string expected = stream.substr(0, std::min(size, recordSize));
        expected.resize(recordSize, '\0');
        ASSERT_EQ(bytesOf(ExternalGUID::fromByteStream(size, exact.data())), expected) << size;
    }
    const auto shortGuid = ExternalGUID::fromIFCGlobalID(std::vector<char>{'0', 'a', 'b', '\0'}.data());
    EXPECT_EQ(bytesOf(shortGuid), record(2, "0ab", 3));
    const std::string endless = "\2" + std::string(3, '\0') + std::string(92, 'x');
    EXPECT_LE(std::strlen(ExternalGUID::fromByteStream(recordSize, endless.data()).getIFCGlobalID()), 88u);
}

TEST(ExternalGUIDTest, copiesAreDeep) {
    ExternalGUID original = ExternalGUID::fromIFCGlobalID(globalId);
    const ExternalGUID copy(original);
    ExternalGUID assigned = ExternalGUID::fromByteStream(recordSize, std::string(recordSize, 'x').data());
    assigned = original;
    const ExternalGUID& self = original;
    original = self;
    EXPECT_EQ(bytesOf(original), record(2, globalId, 22));
    original.fromSpatialHash(hashValues.data());
    EXPECT_EQ(bytesOf(copy), record(2, globalId, 22));
    EXPECT_EQ(bytesOf(assigned), record(2, globalId, 22));
}

Hash_t modelSpatialHash(const std::vector<double>& xyz) {
    std::array<double, 3> low{xyz[0], xyz[1], xyz[2]};
    std::array<double, 3> high = low;
    const std::size_t visited = xyz.size() / 3 - 1; // the last vertex is left out
    for (std::size_t v = 0; v < visited; ++v) {
        const double* const p = &xyz[3 * v];
        for (std::size_t axis = 0; axis < 3; ++axis) {
            low[axis] = low[axis] > p[axis] ? p[axis] : low[axis];
        }
        high[0] = p[0] > high[0] ? p[0] : high[0];
        high[1] = p[1] > high[1] ? p[1] : high[1];
        high[2] = p[2] > high[2] ? p[1] : high[2]; // y, not z
    }
    Hash_t hash{};
    for (std::size_t axis = 0; axis < 3; ++axis) {
        hash[axis] = (low[axis] + high[axis]) / 2.0;
    }
    for (std::size_t v = 0; v < visited; ++v) {
        const double dx = xyz[3 * v] - hash[0];
        const double dy = xyz[3 * v + 1] - hash[1];
        const double dz = xyz[3 * v + 2] - hash[2];
        double& radius = hash[3 + (dx > 0 ? 1u : 0u) + (dy > 0 ? 2u : 0u) + (dz > 0 ? 4u : 0u)];
        radius = std::max(radius, std::sqrt(dx * dx + dy * dy + dz * dz));
    }
    return hash;
}

TEST(ExternalGUIDTest, spatialHashAgreesWithThePlainModel) {
    constexpr unsigned int seed = 4711;
    std::cout << "seed " << seed << std::endl;
    std::mt19937 random(seed);
    std::uniform_int_distribution<int> grid(-3, 3); // many ties, vertices on the centre planes
    std::uniform_real_distribution<double> anywhere(-1e6, 1e6);
    for (int round = 0; round < 3000 && !HasFailure(); ++round) {
        std::vector<double> xyz(3 * (1 + random() % 12));
        std::generate(xyz.begin(), xyz.end(), [&] { return round % 2 ? grid(random) : anywhere(random); });
        const auto count = static_cast<unsigned int>(xyz.size() / 3);
        const ExternalGUID guid = ExternalGUID::spatialHashFromVertexes(count, xyz.data());
        ASSERT_EQ(guid.getType(), ExternalGUID::GUIDTypeSpatialHash);
        const Hash_t expected = modelSpatialHash(xyz);
        for (std::size_t i = 0; i < expected.size(); ++i) {
            EXPECT_DOUBLE_EQ(guid.getSpatialHash()[i], expected[i]) << "value " << i << ", round " << round;
        }
    }
    const ExternalGUID none = ExternalGUID::spatialHashFromVertexes(0, nullptr);
    EXPECT_EQ(bytesOf(none), record(1, "", 0));
}

ExternalGUID fromBytes(const std::string& bytes) {
    return ExternalGUID::fromByteStream(static_cast<unsigned int>(bytes.size()), bytes.data());
}

std::string bytesFor(ExternalGUIDDatabase& database, int id) {
    return bytesOf(database.findGUID(static_cast<ExternalGUIDRuntimeID_e>(id)));
}

/** A GlobalId, a PX GUID or an object id; every byte of its key may be zero, and all kinds share their payloads. */
ExternalGUID randomKey(std::mt19937& random) {
    const std::size_t sizes[] = {22, 16, 4};
    const std::size_t kind = random() % 3;
    std::string bytes(8 + sizes[kind], '\0');
    bytes[0] = static_cast<char>(ExternalGUID::GUIDTypeIFCGlobalID + kind);
    const std::size_t spread = random() % 3; // the bytes that tell the keys apart stand in front, behind, or in between
    for (std::size_t i = 0; i < 3; ++i) {
        bytes[8 + std::min(i + spread * 9, sizes[kind] - 1 - i)] = static_cast<char>(random() % 13 * 20);
    }
    return fromBytes(bytes);
}

TEST(ExternalGUIDDatabaseTest, agreesWithAMap) {
    const unsigned int seed = 4300;
    std::cout << "seed " << seed << "\n";
    std::mt19937 random(seed);
    ExternalGUIDDatabase database;
    std::map<std::string, int> model;
    int nextKey = -2;
    int nextHash = 0;
    for (int call = 0; call < 60000; ++call) {
        ExternalGUID guid = randomKey(random);
        std::string key = bytesOf(guid);
        if (random() % 4 == 0) { // whole numbers are far apart; what is added stays within the tolerance
            Hash_t values = {};
            for (double& value : values) {
                value = static_cast<double>(random() % 2) * 3;
            }
            key = bytesOf(spatialHash(values));
            for (double& value : values) {
                value += static_cast<double>(random() % 9) * 0.0001;
            }
            guid = spatialHash(values);
        }
        const auto known = model.find(key);
        ASSERT_EQ(database.findGUID(guid), known == model.end() ? -1 : known->second) << call;
        if (random() % 2 == 0) {
            const bool isHash = guid.getType() == ExternalGUID::GUIDTypeSpatialHash;
            const int expected = known != model.end() ? known->second : isHash ? nextHash++ : nextKey--;
            ASSERT_EQ(database.insertGUID(guid), expected) << call;
            if (known == model.end()) {
                model[key] = expected;
                ASSERT_EQ(bytesFor(database, expected), bytesOf(guid)) << "the first of near-equal hashes is kept";
            }
        }
    }
    EXPECT_GT(nextHash, 1024);
    EXPECT_LT(nextKey, -6000);
    for (const auto& [bytes, id] : model) {
        ASSERT_EQ(database.findGUID(fromBytes(bytes)), id);
        ASSERT_TRUE(id >= 0 || bytesFor(database, id) == bytes) << id;
    }
    for (const int id : {-1, nextKey, nextKey - 1, INT_MIN, nextHash, nextHash + 1, 2047, 2048, INT_MAX}) {
        EXPECT_EQ(bytesFor(database, id), std::string(96, '\0')) << id;
    }
}

TEST(ExternalGUIDDatabaseTest, kindsWithoutKeyHaveNoId) {
    ExternalGUIDDatabase database;
    for (const char kind : {'\0', '\5', 'd'}) {
        EXPECT_EQ(database.insertGUID(fromBytes(std::string(1, kind))), -1);
        EXPECT_EQ(database.findGUID(fromBytes(std::string(1, kind))), -1);
    }
    EXPECT_EQ(bytesFor(database, 0), std::string(96, '\0'));
    EXPECT_EQ(database.insertGUID(ExternalGUID::fromHalvorneObi(0)), -2) << "no id was used up";
}

} // namespace
