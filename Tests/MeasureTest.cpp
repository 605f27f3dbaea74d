/**
 * @file MeasureTest.cpp
 * Numbers of shapes, and faces with holes.
 */
#include <PluginKit/Measure.h>
#include <PluginKit/Polygons.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

namespace {

using namespace PluginKit;

using Loop = std::vector<std::uint32_t>;

/** A box with the corners @p low and @p high; sides by axis, first those at the low end. */
SolidSurface box(const std::array<double, 3>& low, const std::array<double, 3>& high) {
    SolidSurface surface;
    for (unsigned int i = 0; i < 8; ++i) {
        surface.vertices.push_back(
            {(i & 1) != 0 ? high[0] : low[0], (i & 2) != 0 ? high[1] : low[1], (i & 4) != 0 ? high[2] : low[2]});
    }
    const Loop sides[] = {{0, 4, 6, 2}, {1, 3, 7, 5}, {0, 1, 5, 4}, {2, 6, 7, 3}, {0, 2, 3, 1}, {4, 5, 7, 6}};
    for (const Loop& side : sides) {
        surface.addPolygon(side);
    }
    return surface;
}

/** The same surface with some of its sides alone. */
SolidSurface onlySides(const SolidSurface& whole, const std::vector<int>& sides) {
    SolidSurface surface;
    surface.vertices = whole.vertices;
    for (const int side : sides) {
        const auto first = whole.corners.begin() + 4 * side;
        surface.addPolygon({first, first + 4});
    }
    return surface;
}

TEST(MeasureTest, boxesAnywhereHaveTheirNumbers) {
    for (const double away : {0.0, -3.0, 100'000.0}) {
        const Measurement m = measure({box({away, 1, 2}, {away + 4, 3, 3})});
        EXPECT_NEAR(m.volume, 8.0, 1e-9) << away;
        EXPECT_NEAR(m.centroid[0], away + 2, 1e-9);
        EXPECT_NEAR(m.centroid[2], 2.5, 1e-9);
        EXPECT_EQ(m.centre(), (std::array<double, 3>{away + 2, 2, 2.5}));
        for (const double radius : m.radii) {
            EXPECT_NEAR(radius, std::sqrt(4 + 1 + 0.25), 1e-9);
        }
        EXPECT_EQ(versionOf(m).getType(), ImportCommon::ExternalVersionType_Solid);
    }
}

TEST(MeasureTest, radiiBelongToTheirOctants) {
    SolidSurface surface;
    surface.vertices = {{-4, -4, -4}, {4, 4, 4}, {1, -2, -2}, {-1, 3, -1}};
    surface.addPolygon({0, 1, 2});
    surface.addPolygon({0, 1, 3});
    const Measurement m = measure({surface});
    EXPECT_NEAR(m.radii[0], std::sqrt(48.0), 1e-12);
    EXPECT_NEAR(m.radii[1], 3.0, 1e-12); // x alone is above the centre
    EXPECT_NEAR(m.radii[2], std::sqrt(11.0), 1e-12);
    EXPECT_EQ(m.radii[4], 0.0);
    EXPECT_NEAR(m.radii[7], std::sqrt(48.0), 1e-12);
}

TEST(MeasureTest, openSurfacesEncloseNothing) {
    const SolidSurface whole = box({0, 0, 0}, {2, 3, 5});
    // A tube: opposite sides are missing, so the sum of the area vectors is zero all the same.
    const std::vector<int> around[] = {{2, 3, 4, 5}, {0, 1, 4, 5}, {0, 1, 2, 3}};
    for (std::size_t axis = 0; axis < 3; ++axis) {
        const Measurement m = measure({onlySides(whole, around[axis])});
        EXPECT_EQ(m.volume, 0.0) << axis;
        EXPECT_EQ(versionOf(m).getType(), ImportCommon::ExternalVersionType_Geometry);
    }
    EXPECT_EQ(measure({onlySides(whole, {0, 2, 3, 4, 5})}).volume, 0.0);
    // What is open by itself may be closed together; what is closed counts beside what is open.
    EXPECT_NEAR(measure({onlySides(whole, around[2]), onlySides(whole, {4, 5})}).volume, 30.0, 1e-9);
    EXPECT_NEAR(measure({whole, onlySides(box({9, 0, 0}, {10, 1, 1}), {1, 2, 3, 4, 5})}).volume, 30.0, 1e-9);
    EXPECT_NEAR(measure({whole, box({9, 0, 0}, {10, 1, 1})}).volume, 31.0, 1e-9);
}

double areaOf(const std::vector<std::array<double, 3>>& vertices, const Loop& loop) {
    const auto twice = areaVector(vertices, loop.data(), loop.size());
    return std::hypot(twice[0], twice[1], twice[2]) / 2;
}

TEST(HolesTest, joinedFacesCoverWhatIsBetweenTheirLoops) {
    std::mt19937 random(7);
    const auto number = [&](double low, double high) {
        return low + (high - low) * static_cast<double>(random()) / static_cast<double>(std::mt19937::max());
    };
    for (int run = 0; run < 200; ++run) {
        const int columns = 1 + run % 5;
        const int rows = 1 + run % 3;
        const double slope = number(-1, 1);
        std::vector<std::array<double, 3>> vertices;
        const auto corner = [&](double x, double y) {
            vertices.push_back({x, y, slope * x});
            return static_cast<std::uint32_t>(vertices.size() - 1);
        };
        const Loop outer = {corner(0, 0), corner(columns, 0), corner(columns, rows), corner(0, rows)};
        double expected = areaOf(vertices, outer);
        std::vector<Loop> holes;
        for (int x = 0; x < columns; ++x) {
            for (int y = 0; y < rows; ++y) {
                const double size = number(0.05, 0.4);
                const double u = x + 0.5 + number(-0.05, 0.05);
                const double v = y + 0.5;
                Loop hole = {corner(u - size, v), corner(u, v - size), corner(u + size, v), corner(u, v + size)};
                expected -= areaOf(vertices, hole);
                if (random() % 2 == 0) {
                    std::reverse(hole.begin(), hole.end());
                }
                holes.push_back(hole);
            }
        }
        std::shuffle(holes.begin(), holes.end(), random);

        const Loop joined = joinHoles(vertices, outer, holes);
        EXPECT_NEAR(areaOf(vertices, joined), expected, 1e-9) << run;
        Loop triangles;
        triangulate(vertices, joined.data(), joined.size(), triangles);
        double sum = 0.0; // of absolute values: a way across a hole would make it larger
        for (std::size_t i = 0; i + 2 < triangles.size(); i += 3) {
            sum += areaOf(vertices, {triangles[i], triangles[i + 1], triangles[i + 2]});
        }
        EXPECT_NEAR(sum, expected, 1e-9) << run;
    }
}

TEST(HolesTest, loopsThatAreNoneAreLeftOut) {
    const std::vector<std::array<double, 3>> vertices = {{0, 0, 0}, {4, 0, 0}, {4, 4, 0}, {0, 4, 0}, {1, 1, 0}};
    const Loop outer = {0, 1, 2, 3};
    EXPECT_EQ(joinHoles(vertices, outer, {{4}, {}, {4, 4}}), outer);
    EXPECT_EQ(joinHoles(vertices, {}, {{0, 1, 2}}), Loop());
    const Loop same = joinHoles(vertices, outer, {outer}); // nothing is left of it, but every corner is a vertex
    EXPECT_TRUE(std::all_of(same.begin(), same.end(), [](std::uint32_t i) { return i < 5; }));
}

} // namespace
