#include "Models/IdentityModel.h"

#include <ImportCommon/ExternalGUIDDatabase.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstring>
#include <iostream>
#include <random>
#include <string>
#include <vector>

using IdentityModel::Hash_t;
using IdentityModel::record;
using IdentityModel::recordOfStream;
using IdentityModel::recordSize;
using ImportCommon::ExternalGUID;
using ImportCommon::ExternalGUIDDatabase;
using ImportCommon::ExternalGUIDRuntimeID_e;
using ImportCommon::PXGUID_t;

namespace {

const char* const globalId = "2O2Fr$t4X7Zf8NOew3FLOH";
const PXGUID_t pxGuid = {{0xFF, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 0, 0x80}};
const Hash_t hashValues = {1.5, -2, 3, 4, 5, 6, 7, 8, 9, 10, 1e300};

std::string bytesOf(const ExternalGUID& guid) {
    unsigned int size = 0;
    const char* const bytes = guid.getBytes(&size);
    EXPECT_EQ(size, recordSize);
    return std::string(bytes, size);
}

ExternalGUID guidOfHash(const Hash_t& values) {
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
        {guidOfHash(hashValues), record(1, hashValues.data(), sizeof hashValues)},
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
        const std::string expected = recordOfStream(stream.substr(0, size));
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
        const Hash_t expected = IdentityModel::spatialHash(xyz);
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
    IdentityModel::Database model;
    for (int call = 0; call < 60000; ++call) {
        ExternalGUID guid = randomKey(random);
        std::string key = bytesOf(guid);
        if (random() % 4 == 0) { // whole numbers are far apart; what is added stays within the tolerance
            Hash_t values = {};
            for (double& value : values) {
                value = static_cast<double>(random() % 2) * 3;
            }
            key = bytesOf(guidOfHash(values));
            for (double& value : values) {
                value += static_cast<double>(random() % 9) * 0.0001;
            }
            guid = guidOfHash(values);
        }
        const int known = model.find(key);
        ASSERT_EQ(database.findGUID(guid), known) << call;
        if (random() % 2 == 0) {
            const int id = model.insert(key);
            ASSERT_EQ(database.insertGUID(guid), id) << call;
            ASSERT_TRUE(known != -1 || bytesFor(database, id) == bytesOf(guid))
                << "the first of near-equal hashes is kept";
        }
    }
    EXPECT_GT(model.nextHash, 1024);
    EXPECT_LT(model.nextKey, -6000);
    for (const auto& [bytes, id] : model.all()) {
        ASSERT_EQ(database.findGUID(fromBytes(bytes)), id);
        ASSERT_TRUE(id >= 0 || bytesFor(database, id) == bytes) << id;
    }
    for (const int id :
         {-1, model.nextKey, model.nextKey - 1, INT_MIN, model.nextHash, model.nextHash + 1, 2047, 2048, INT_MAX}) {
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
