#include "Models/VersionModel.h"
#include "Support/Stderr.h"

#include <ImportCommon/ExternalVersion.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <iostream>
#include <random>
#include <string>
#include <vector>

using namespace ImportCommon;
using namespace VersionModel;
using namespace std::string_literals;

namespace {

constexpr unsigned int largest = 124;

const Values_t sample{42.5, -0.0, 1e-300, 1000.125, 1.25, 2, 3, 4, 5, 6, 7, -8, 3, 4, 12};
const Values_t other{99, 91, 92, 93, 11, 12, 13, 14, 15, 16, 17, 18, 30, 40, 50};

ExternalVersion make(std::size_t type, const Values_t& v) {
    switch (type) {
    case 1:
        return createFromBoundingBox(v[box], v[box + 1], v[box + 2]);
    case 2:
        return createFromSolid(v[box], v[box + 1], v[box + 2], &v[distances], v[0], &v[centroid]);
    case 3:
        return createFromGeometry(v[box], v[box + 1], v[box + 2], &v[distances]);
    default:
        return ExternalVersion();
    }
}

Values_t visible(const ExternalVersion& version) {
    Values_t v;
    v[0] = version.getVolume();
    version.getCenteroid(&v[centroid], &v[centroid + 1], &v[centroid + 2]);
    version.getDistances(&v[distances]);
    version.getBoundingBox(&v[box], &v[box + 1], &v[box + 2]);
    return v;
}

ExternalVersion withTag(ExternalVersion version, char tag) {
    version.fromByteStream(4, (tag + "\0\0\0"s).data());
    return version;
}

/** A version of unknown kind shows every value, those its former kind hides included. */
Values_t stored(const ExternalVersion& version) {
    return visible(withTag(version, 7));
}

std::string tagOf(std::size_t type) {
    return static_cast<char>(type) + "\0\0\0"s;
}

TEST(ExternalVersionTest, everyKindByteByByte) {
    for (const std::size_t type : {0u, 1u, 2u, 3u}) {
        const ExternalVersion version = make(type, sample);
        const std::string expected = stream(tagOf(type), firstValue[type], sample);
        for (const unsigned int size : {0u, largest - 1, largest, largest + 10}) {
            std::string buffer(size, '#');
            std::string after = buffer;
            if (size >= largest) {
                after.replace(0, expected.size(), expected);
            }
            EXPECT_EQ(version.toByteStream(size, buffer.data()), size < largest ? 0u : expected.size());
            EXPECT_EQ(buffer, after) << size;
        }
        Values_t carried{};
        std::copy(sample.begin() + firstValue[type], sample.end(), carried.begin() + firstValue[type]);
        EXPECT_EQ(visible(version), carried);
        EXPECT_EQ(stored(version), carried);
    }
    EXPECT_EQ(visible(withTag(make(2, sample), 0)), Values_t{}); // hidden, though still there
    char buffer[largest];
    EXPECT_EQ(withTag(make(2, sample), 4).toByteStream(largest, buffer), 4u);
}

TEST(ExternalVersionTest, streamsOfAnyLengthAndKind) {
    const std::string tags[] = {tagOf(0),      tagOf(1),      tagOf(2),      tagOf(3),     tagOf(4),
                                "\x80\1\0\0"s, "\2\x80\0\0"s, "\3\0\xFF\1"s, "\1\0\0\x80"s};
    for (const auto& tag : tags) {
        const std::string full = stream(tag, 0, sample) + "######";
        for (unsigned int size = 0; size <= full.size(); ++size) {
            const std::vector<char> exact(full.begin(), full.begin() + size);
            ExternalVersion version = make(2, other);
            version.fromByteStream(size, exact.data());
            Values_t expected = other;
            EXPECT_EQ(version.getType(), VersionModel::read(expected, full.substr(0, size))) << size;
            EXPECT_EQ(stored(version), expected) << "tag " << static_cast<int>(tag[0]) << ", " << size << " bytes";
        }
    }
}

TEST(ExternalVersionTest, equalWithinTheTolerances) {
    const struct {
        std::size_t value;
        double difference;
        bool boxes, solids, geometries; // whether versions of that kind stay equal
    } cases[] = {
        {0, 1e-6, true, true, true},           {0, -1.1e-6, true, false, true},
        {centroid, 0.001, true, true, true},   {centroid + 2, 0.0011, true, false, true},
        {distances, -0.001, true, true, true}, {distances + 7, 0.0011, true, false, false},
        {box + 1, 0.001, true, true, true},    {box + 2, -0.0011, false, false, false},
    };
    for (const auto& c : cases) {
        Values_t changed{};
        changed[c.value] = c.difference;
        const bool expected[] = {true, c.boxes, c.solids, c.geometries};
        for (const std::size_t type : {0u, 1u, 2u, 3u}) {
            EXPECT_EQ(make(type, {}) == make(type, changed), expected[type]) << type << " " << c.difference;
        }
    }
    // Of the box, the distance of all three dimensions together counts.
    EXPECT_FALSE(createFromBoundingBox(0, 0, 0) == createFromBoundingBox(0.0008, 0.0008, 0));
    EXPECT_FALSE(make(3, {}) == make(2, {}));
    EXPECT_FALSE(withTag(make(2, sample), 4) == withTag(make(2, sample), 4));
}

// Not a number is no larger than a tolerance, so it agrees with everything.
TEST(ExternalVersionTest, notANumberAgreesWithEverything) {
    for (const std::size_t type : {1u, 2u, 3u}) {
        for (std::size_t value = firstValue[type]; value < sample.size(); ++value) {
            Values_t changed = sample;
            changed[value] = std::nan("");
            EXPECT_TRUE(make(type, changed) == make(type, sample)) << type << " " << value;
            EXPECT_TRUE(make(type, sample) == make(type, changed)) << type << " " << value;
            // The other values still count; of the box, only the distance of all dimensions together does.
            const std::size_t next = value + 1 < sample.size() ? value + 1 : firstValue[type];
            changed[next] += 1;
            EXPECT_EQ(make(type, changed) == make(type, sample), value >= box && next >= box) << type << " " << value;
        }
    }
    EXPECT_TRUE(std::isnan(make(3, Values_t{}).similarity(make(3, Values_t{}))));
    Values_t changed = sample;
    changed[0] = std::nan("");
    EXPECT_TRUE(std::isnan(make(2, changed).similarity(make(2, sample))));
}

TEST(ExternalVersionTest, negativeVolumesCanScoreAboveOne) {
    Values_t a = sample;
    Values_t b = sample;
    a[0] = -1;
    b[0] = -2;
    EXPECT_NEAR(make(2, a).similarity(make(2, b)), 27, 1e-9);
}

TEST(ExternalVersionTest, similarityAgreesWithTheFormulas) {
    constexpr unsigned int seed = 99;
    std::cout << "seed " << seed << std::endl;
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> size(0.5, 1.5);
    std::uniform_real_distribution<double> change(-0.1, 0.1);
    int inBetween = 0;
    for (int round = 0; round < 5000 && !HasFailure(); ++round) {
        Values_t a;
        std::generate(a.begin(), a.end(), [&] { return size(random); });
        a[0] -= 0.6; // now and then below zero
        Values_t b;
        std::transform(a.begin(), a.end(), b.begin(), [&](double value) { return value + change(random); });
        const std::size_t typeA = random() % 4;
        const std::size_t typeB = random() % 3 ? typeA : random() % 4;
        const ExternalVersion versionA = make(typeA, a);
        const ExternalVersion versionB = make(typeB, b);
        const double expected = VersionModel::similarity(typeA, stored(versionA), stored(versionB));
        EXPECT_NEAR(versionA.similarity(versionB), expected, 1e-12 * std::max(1.0, expected)) << "round " << round;
        inBetween += expected > 0.05 && expected < 0.95;
    }
    EXPECT_GT(inBetween, 1000); // or the comparison says little
    EXPECT_NEAR(createFromBoundingBox(1, 5, 5).similarity(createFromBoundingBox(1.15, 5, 5)), 0.125, 1e-12);
    EXPECT_EQ(withTag(make(2, sample), 4).similarity(make(2, sample)), 0.0);
}

TEST(ExternalVersionTest, text) {
    const auto textOf = [](std::size_t type, unsigned int size) {
        std::string buffer(size, '#');
        make(type, sample).toString(size, buffer.data());
        return buffer;
    };
    const std::string geometry = "bb=1.300000e+01 d1=1.250000e+00 d2=2.000000e+00 d3=3.000000e+00 d4=4.000000e+00"
                                 " d5=5.000000e+00 d6=6.000000e+00 d7=7.000000e+00 d8=-8.000000e+00";
    EXPECT_STREQ(textOf(3, 300).c_str(), geometry.c_str());
    EXPECT_STREQ(textOf(2, 300).c_str(), (geometry + " c1=-0.000000e+00 c2=1.000000e-300 c3=1.000125e+03").c_str());
    EXPECT_EQ(textOf(1, 16), "bb=1.300000e+01\0"s);
    EXPECT_EQ(textOf(1, 15), "bb=1.300000e+0\0"s);
    EXPECT_EQ(textOf(0, 7), "invalid"); // without a terminator when it fills the buffer
    EXPECT_EQ(textOf(0, 9), "invalid\0\0"s);
    EXPECT_EQ(textOf(0, 0) + textOf(1, 0), "");
}

TEST(ExternalVersionTest, handlesOwnTheirVersion) {
    ExternalVersion version(new CExternalVersion(1, 2, 3)); // a leak or a second delete shows under a sanitizer
    const ExternalVersion copy(version);
    ExternalVersion assigned = make(2, sample);
    assigned = version;
    version = make(2, other);
    EXPECT_TRUE(copy == createFromBoundingBox(1, 2, 3));
    EXPECT_TRUE(assigned == copy);
    const ExternalVersion& self = assigned;
    assigned = self;
    EXPECT_EQ(stored(assigned), Values_t{});
    ExternalVersion null(static_cast<CExternalVersion*>(nullptr));
    EXPECT_TRUE(ExternalVersion(null) == ExternalVersion());
}

TEST(ExternalVersionDeathTest, eachAccessorWarnsOnce) {
    const auto readAll = [] {
        for (const std::size_t type : {2u, 1u, 3u, 0u, 0u}) {
            visible(make(type, sample));
        }
    };
    expectStderrOfFreshProcess(readAll, "no volume in this typeno centeroid in this type"
                                        "no distances in this typeno bounding box in this type");
}

} // namespace
