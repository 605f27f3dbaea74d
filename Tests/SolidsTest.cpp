/**
 * @file SolidsTest.cpp
 * Shapes from the solids stream, and their polygons as triangles.
 */
#include <PluginKit/Polygons.h>
#include <PluginKit/Solids.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <stdexcept>
#include <string>
#include <vector>

using namespace PluginKit;

namespace {

using Vertices = std::vector<std::array<double, 3>>;

void append(std::string& bytes, std::uint32_t number) {
    bytes.append(reinterpret_cast<const char*>(&number), sizeof number);
}

void append(std::string& bytes, const Vertices& vertices) {
    append(bytes, static_cast<std::uint32_t>(vertices.size()));
    bytes.append(reinterpret_cast<const char*>(vertices.data()), vertices.size() * sizeof vertices[0]);
}

/** One surface of material 7 with a triangle and a square. */
std::string exampleBytes(const Vertices& vertices = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}},
                         std::uint32_t lastCorner = 3) {
    std::string bytes;
    append(bytes, 1U);
    append(bytes, 7U);
    append(bytes, vertices);
    for (const std::uint32_t number : {2U, 3U, 0U, 1U, 2U, 4U, 0U, 1U, 2U, lastCorner}) {
        append(bytes, number);
    }
    return bytes;
}

std::string record(const std::string& object, const std::string& type, const std::string& bytes) {
    return object + '\t' + type + '\t' + std::to_string(bytes.size()) + '\n' + bytes + '\n';
}

std::string messageOf(const std::string& stream) {
    try {
        SolidsReader reader(stream);
        for (Solid solid; reader.next(solid);) {
        }
    } catch (const std::runtime_error& e) {
        return e.what();
    }
    return "";
}

/** The sum of the triangles' areas, less what is turned the other way than the polygon. */
double areaOf(const Vertices& vertices, const std::vector<std::uint32_t>& corners) {
    std::vector<std::uint32_t> triangles;
    triangulate(vertices, corners.data(), corners.size(), triangles);
    const std::array<double, 3> whole = areaVector(vertices, corners.data(), corners.size());
    const double length = std::hypot(whole[0], whole[1], whole[2]);
    double sum = 0.0;
    for (std::size_t i = 0; i < triangles.size(); i += 3) {
        const std::array<double, 3> one = areaVector(vertices, &triangles[i], 3);
        const double along = (one[0] * whole[0] + one[1] * whole[1] + one[2] * whole[2]) / length;
        EXPECT_GT(along, 0.0) << "a triangle is turned";
        sum += std::fabs(along) / 2.0;
    }
    EXPECT_NEAR(sum, length / 2.0, 1e-6 * length);
    return sum;
}

/** The same corners in another plane, far from the origin. */
Vertices tilted(const Vertices& flat) {
    Vertices result;
    for (const auto& p : flat) {
        result.push_back({100'000.0 + 0.6 * p[0], -50'000.0 + p[1], 0.8 * p[0]});
    }
    return result;
}

} // namespace

TEST(SolidsTest, readsBoundaryRepresentationsAndPassesOverOthers) {
    const std::string stream =
        record("1", "2", exampleBytes()) + record("2", "1", "no faces") + record("2", "2", exampleBytes());
    SolidsReader reader(stream);
    Solid solid;
    ASSERT_TRUE(reader.next(solid));
    EXPECT_EQ(solid.object, 1U);
    ASSERT_TRUE(reader.next(solid));
    EXPECT_EQ(solid.object, 2U);
    ASSERT_EQ(solid.surfaces.size(), 1U);
    EXPECT_EQ(solid.surfaces[0].material, 7U);
    EXPECT_EQ(solid.surfaces[0].vertices[2], (std::array<double, 3>{1, 1, 0}));
    EXPECT_EQ(solid.surfaces[0].sizes, (std::vector<std::uint32_t>{3, 4}));
    EXPECT_EQ(solid.surfaces[0].corners, (std::vector<std::uint32_t>{0, 1, 2, 0, 1, 2, 3}));
    EXPECT_FALSE(reader.next(solid));
}

TEST(SolidsTest, saysWhatIsWrongWithAStream) {
    const std::string good = record("1", "2", exampleBytes());
    for (std::size_t size = 1; size < good.size(); ++size) {
        EXPECT_EQ(messageOf(good.substr(0, size)).compare(0, 9, "solid 1: "), 0) << size;
    }
    const std::string bytes = exampleBytes();
    for (std::size_t size = 0; size < bytes.size(); ++size) {
        EXPECT_EQ(messageOf(good + record("1", "2", bytes.substr(0, size))), "solid 2: a solid ends too early");
    }
    EXPECT_EQ(messageOf(record("1", "2", bytes + "x")), "solid 1: a solid has bytes behind its end");
    EXPECT_EQ(messageOf(record("0", "2", bytes)), "solid 1: a solid has a wrong number of its object or bytes");
    EXPECT_EQ(messageOf(record("1", "2", exampleBytes({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}}, 4))),
              "solid 1: a polygon of a solid has a vertex that is not there");
    EXPECT_EQ(messageOf(record("1", "2", exampleBytes({{std::numeric_limits<double>::quiet_NaN(), 0, 0}}))),
              "solid 1: a coordinate of a solid is not a number");
    std::string greedy;
    append(greedy, 0xFFFFFFFFU);
    EXPECT_EQ(messageOf(record("1", "2", greedy)), "solid 1: a solid ends too early");
}

TEST(PolygonsTest, cutsUpWhatIsNotConvex) {
    // A comb with deep teeth, in both directions and in a plane of its own
    Vertices comb = {{0, 0, 0}, {9, 0, 0}};
    for (int tooth = 8; tooth >= 0; --tooth) {
        comb.push_back({tooth + 1.0, tooth % 2 == 0 ? 5.0 : 1.0, 0});
        comb.push_back({tooth + 0.0, tooth % 2 == 0 ? 5.0 : 1.0, 0});
    }
    std::vector<std::uint32_t> corners;
    for (std::uint32_t i = 0; i < comb.size(); ++i) {
        corners.push_back(i);
    }
    EXPECT_NEAR(areaOf(comb, corners), 29.0, 1e-9);
    EXPECT_NEAR(areaOf(tilted(comb), corners), 29.0, 1e-6);
    EXPECT_NEAR(areaOf(comb, {corners.rbegin(), corners.rend()}), 29.0, 1e-9);

    // A square with a hole that its outline leads to and back
    const Vertices ring = {{0, 0, 0}, {4, 0, 0}, {4, 4, 0}, {0, 4, 0}, {1, 1, 0}, {1, 3, 0}, {3, 3, 0}, {3, 1, 0}};
    EXPECT_NEAR(areaOf(tilted(ring), {0, 1, 2, 3, 0, 4, 5, 6, 7, 4}), 12.0, 1e-6);
    const Vertices two = {{0, 0, 0}, {9, 0, 0}, {9, 4, 0}, {0, 4, 0}, {1, 1, 0}, {1, 3, 0},
                          {3, 3, 0}, {3, 1, 0}, {5, 1, 0}, {5, 3, 0}, {7, 3, 0}, {7, 1, 0}};
    EXPECT_NEAR(areaOf(two, {0, 1, 2, 3, 0, 4, 5, 6, 7, 8, 9, 10, 11, 8, 7, 4}), 28.0, 1e-9);
}

TEST(PolygonsTest, endsWithPolygonsThatAreNone) {
    Vertices star; // crosses itself at every corner
    std::vector<std::uint32_t> corners;
    for (std::uint32_t i = 0; i < 20'001; ++i) {
        star.push_back({std::cos(2.0 * i), std::sin(2.0 * i), 0});
        corners.push_back(i);
    }
    std::vector<std::uint32_t> triangles;
    triangulate(star, corners.data(), corners.size(), triangles);
    EXPECT_LE(triangles.size(), 3 * corners.size());

    triangles.clear();
    const Vertices line = {{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {1, 0, 0}};
    for (std::size_t count = 0; count <= 4; ++count) {
        triangulate(line, corners.data(), count, triangles);
    }
    EXPECT_EQ(triangles.size() % 3, 0U);
}
