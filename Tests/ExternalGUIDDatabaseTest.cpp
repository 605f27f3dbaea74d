#include <ImportCommon/ExternalGUIDDatabase.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <climits>
#include <cstring>
#include <iostream>
#include <map>
#include <random>
#include <string>
#include <vector>

using ImportCommon::ExternalGUID;
using ImportCommon::ExternalGUIDDatabase;
using ImportCommon::ExternalGUIDRuntimeID_e;

namespace {

using Hash_t = std::array<double, 11>;

std::string bytesOf(const ExternalGUID& guid) {
    unsigned int size = 0;
    const char* const bytes = guid.getBytes(&size);
    return std::string(bytes, size);
}

ExternalGUID fromBytes(const std::string& bytes) {
    return ExternalGUID::fromByteStream(static_cast<unsigned int>(bytes.size()), bytes.data());
}

std::string bytesFor(ExternalGUIDDatabase& database, int id) {
    return bytesOf(database.findGUID(static_cast<ExternalGUIDRuntimeID_e>(id)));
}

ExternalGUID spatialHash(const Hash_t& values) {
    ExternalGUID guid;
    guid.fromSpatialHash(values.data());
    return guid;
}

/** A GlobalId, a PX GUID or an object id; every byte of its key may be zero, and all kinds share their payloads. */
ExternalGUID randomKey(std::mt19937& random) {
    const std::size_t sizes[] = {22, 16, 4};
    const std::size_t kind = random() % 3;
    std::string bytes(8 + sizes[kind], '\0');
    bytes[0] = static_cast<char>(ExternalGUID::GUIDTypeIFCGlobalID + kind);
    const std::size_t spread = random() % 3; // the bytes that tell the keys apart stand in front, behind, or in between
    for (std::size_t i = 0; i < 3; ++i)
        bytes[8 + std::min(i + spread * 9, sizes[kind] - 1 - i)] = static_cast<char>(random() % 13 * 20);
    return fromBytes(bytes);
}

TEST(ExternalGUIDDatabase, agreesWithAMap) {
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
            for (double& value : values)
                value = static_cast<double>(random() % 2) * 3;
            key = bytesOf(spatialHash(values));
            for (double& value : values)
                value += static_cast<double>(random() % 9) * 0.0001;
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
        if (id < 0) {
            ASSERT_EQ(bytesFor(database, id), bytes) << id;
        }
    }
    for (const int id : {-1, nextKey, nextKey - 1, INT_MIN, nextHash, nextHash + 1, 2047, 2048, INT_MAX})
        EXPECT_EQ(bytesFor(database, id), std::string(96, '\0')) << id;
}

TEST(ExternalGUIDDatabase, kindsWithoutKeyHaveNoId) {
    ExternalGUIDDatabase database;
    for (const char kind : {'\0', '\5', 'd'}) {
        EXPECT_EQ(database.insertGUID(fromBytes(std::string(1, kind))), -1);
        EXPECT_EQ(database.findGUID(fromBytes(std::string(1, kind))), -1);
    }
    EXPECT_EQ(bytesFor(database, 0), std::string(96, '\0'));
    EXPECT_EQ(database.insertGUID(ExternalGUID::fromHalvorneObi(0)), -2) << "no id was used up";
}

TEST(ExternalGUIDDatabase, globalIdsDifferBehindAZeroByte) {
    ExternalGUIDDatabase database;
    std::string bytes("\2\0\0\0\0\0\0\0ab\0"
                      "defghijklmnopqrstu_",
                      30);
    for (int id = -2; id > -7; --id) {
        EXPECT_EQ(database.insertGUID(fromBytes(bytes)), id);
        EXPECT_EQ(bytesFor(database, id), bytes + std::string(66, '\0'));
        ++bytes.back();
    }
}

TEST(ExternalGUIDDatabase, fiftyThousandGlobalIds) {
    ExternalGUIDDatabase database;
    const auto guidOf = [](int number) {
        const std::string digits = std::to_string(number);
        return ExternalGUID::fromIFCGlobalID(("2O2Fr$t4X7Zf8NOew3FLOH" + digits).c_str() + digits.size());
    };
    for (int number = 0; number < 50000; ++number)
        ASSERT_EQ(database.insertGUID(guidOf(number)), -2 - number);
    for (int number = 0; number < 50000; ++number) {
        const ExternalGUID guid = guidOf(number);
        ASSERT_EQ(database.insertGUID(guid), -2 - number);
        ASSERT_EQ(database.findGUID(guid), -2 - number);
        ASSERT_EQ(bytesFor(database, -2 - number), bytesOf(guid));
    }
    EXPECT_EQ(database.findGUID(guidOf(50000)), -1);
}

} // namespace
