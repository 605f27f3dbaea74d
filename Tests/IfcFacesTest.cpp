/**
 * @file IfcFacesTest.cpp
 * Faces: cut into triangles, joined by their edges, and their corners numbered.
 */
#include "geometry/Pieces.h"
#include "geometry/PointMerger.h"
#include "geometry/Sweeps.h"
#include "geometry/Triangulation.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>

using namespace IfcReader;

namespace {

constexpr double pi = 3.14159265358979323846;

/** A star-shaped loop with random radii around a centre. */
Loop star(std::mt19937& random, int corners, double inner, double outer, const Vector& centre = {}) {
    std::uniform_real_distribution<double> radius(inner, outer);
    Loop loop;
    for (int i = 0; i < corners; ++i) {
        const double t = 2 * pi * i / corners;
        loop.push_back(centre + Vector{std::cos(t), std::sin(t), 0.0} * radius(random));
    }
    return loop;
}

/** Expects triangles that cover a face exactly once. */
void expectCovered(const Face& face, const Vector& normal) {
    Loop corners = face.outer;
    for (const Loop& hole : face.holes) {
        corners.insert(corners.end(), hole.begin(), hole.end());
    }
    double area = 0.0;
    std::map<std::pair<std::uint32_t, std::uint32_t>, int> edges;
    for (const auto& triangle : triangulate(face, normal)) {
        const double part =
            dot(areaVector(Loop{corners[triangle[0]], corners[triangle[1]], corners[triangle[2]]}), normal);
        EXPECT_GE(part, -1e-12);
        area += std::abs(part);
        for (std::size_t i = 0; i < 3; ++i) {
            ++edges[{triangle[i], triangle[(i + 1) % 3]}];
        }
    }
    EXPECT_NEAR(area, dot(areaVector(face), normal), 1e-9 * area);
    for (const auto& [edge, uses] : edges) {
        EXPECT_EQ(uses, 1);
    }
}

TEST(IfcFacesTest, triangulation) {
    std::mt19937 random(3);
    for (int t = 0; t < 200; ++t) {
        SCOPED_TRACE(t);
        Face face{star(random, 5 + static_cast<int>(random() % 60), 3.0, 10.0), {}};
        for (int h = 0; h < t % 6; ++h) { // holes that don't meet each other or the outline
            const Vector centre{1.2 * std::cos(2 * pi * h / 6), 1.2 * std::sin(2 * pi * h / 6), 0.0};
            Loop hole = star(random, 3 + static_cast<int>(random() % 9), 0.2, 0.5, centre);
            std::reverse(hole.begin(), hole.end());
            face.holes.push_back(hole);
        }
        // Seen along each axis, from both sides.
        Affine turn;
        const auto side = [&] { return static_cast<double>(random() % 3) - 0.9; };
        turn.z = normalized({side(), side(), side()});
        turn.x = perpendicular(turn.z);
        turn.y = cross(turn.z, turn.x);
        transform(face, turn);
        expectCovered(face, turn.z);
    }
}

TEST(IfcFacesTest, triangulationOfWhatTouchesItself) {
    const Vector up{0, 0, 1};
    const Loop square{{0, 0, 0}, {4, 0, 0}, {4, 4, 0}, {0, 4, 0}};
    expectCovered({square, {{{4, 2, 0}, {2, 1, 0}, {2, 3, 0}}}}, up); // a hole at an edge
    expectCovered({square, {{{1, 1, 0}, {1, 2, 0}, {2, 2, 0}}, {{2, 2, 0}, {2, 3, 0}, {3, 3, 0}}}}, up); // at a hole
    expectCovered({{{0, 0, 0}, {2, 0, 0}, {4, 0, 0}, {4, 4, 0}, {2, 4, 0}, {0, 4, 0}}, {}}, up); // straight corners
    // What has no area has no triangles, and what crosses itself ends.
    EXPECT_TRUE(triangulate({{{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {1, 0, 0}}, {}}, up).empty());
    EXPECT_LE(triangulate({{{0, 0, 0}, {4, 4, 0}, {4, 0, 0}, {0, 4, 0}}, {}}, up).size(), 2u);
}

TEST(IfcFacesTest, triangulationOfNumbersThatAreNoPlaces) {
    constexpr double infinite = std::numeric_limits<double>::infinity();
    const double numbers[] = {0.0, 1.0, 1e308, -1e308, 1e300, 1e-308, infinite, std::nan("")};
    std::mt19937 random(4);
    const auto any = [&] { return numbers[random() % std::size(numbers)]; };
    for (int t = 0; t < 5000; ++t) {
        Face face;
        for (std::size_t i = 3 + random() % 9; i > 0; --i) {
            face.outer.push_back({any(), any(), any()});
        }
        EXPECT_LE(triangulate(face, {0, 0, 1}).size(), face.outer.size() - 2);
        EXPECT_LE(triangulate(face, {any(), any(), any()}).size(), face.outer.size() - 2);
    }
}

TEST(IfcFacesTest, triangulationOfManyCorners) {
    std::mt19937 random(5);
    expectCovered({star(random, 20'000, 1.0, 10.0), {}}, {0, 0, 1});
    Loop comb;
    for (int i = 0; i < 10'000; ++i) {
        comb.push_back({i * 1.0, 0.0, 0.0});
        comb.push_back({i + 0.5, 1000.0, 0.0});
    }
    comb.push_back({10'000.0, 0.0, 0.0});
    comb.push_back({5'000.0, -1.0, 0.0});
    std::reverse(comb.begin(), comb.end());
    expectCovered({comb, {}}, {0, 0, 1});
    Face sieve{{{0, 0, 0}, {100, 0, 0}, {100, 100, 0}, {0, 100, 0}}, {}};
    for (int i = 0; i < 2'500; ++i) {
        const Vector p{1.0 + 2.0 * (i % 50), 1.0 + 2.0 * (i / 50), 0.0};
        sieve.holes.push_back({p, p + Vector{0, 0.5, 0}, p + Vector{0.5, 0.5, 0}, p + Vector{0.5, 0, 0}});
    }
    expectCovered(sieve, {0, 0, 1});
}

Body box(const Vector& low, const Vector& size) {
    Body body = prism({{{{0, 0, 0}, {size.x, 0, 0}, {size.x, size.y, 0}, {0, size.y, 0}}, {}}}, {0, 0, size.z});
    transform(body, Affine{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, low});
    return body;
}

/** Volumes of the closed pieces, sorted; an open one counts as 0. */
std::vector<double> volumesOf(std::vector<Face> faces) {
    Work work;
    std::vector<double> volumes;
    for (const Piece& piece : piecesOf(faces, work)) {
        volumes.push_back(piece.closed ? std::abs(signedVolume(takeFaces(piece, faces))) : 0.0);
    }
    std::sort(volumes.begin(), volumes.end());
    return volumes;
}

TEST(IfcFacesTest, piecesAreTurnedAlike) {
    std::mt19937 random(11);
    std::vector<Face> faces = box({0, 0, 0}, {1, 1, 1}).faces;
    const std::vector<Face> other = box({2, 0, 0}, {2, 1, 1}).faces;
    const std::vector<Face> open = box({6, 0, 0}, {1, 1, 1}).faces;
    faces.insert(faces.end(), other.begin(), other.end());
    faces.insert(faces.end(), open.begin() + 1, open.end());
    for (int t = 0; t < 20; ++t) {
        std::vector<Face> given = faces;
        std::shuffle(given.begin(), given.end(), random);
        for (Face& face : given) {
            std::rotate(face.outer.begin(), face.outer.begin() + static_cast<int>(random() % 4), face.outer.end());
            if (random() % 2 == 0) {
                flip(face);
            }
        }
        const std::vector<double> volumes = volumesOf(given);
        ASSERT_EQ(volumes.size(), 3u);
        EXPECT_EQ(volumes[0], 0.0);
        EXPECT_NEAR(volumes[1], 1.0, 1e-12);
        EXPECT_NEAR(volumes[2], 2.0, 1e-12);
    }
}

TEST(IfcFacesTest, piecesThatMeetAtCornersAndEdges) {
    // The top is one face, the sides below it are two each, and corners are a little off.
    std::vector<Face> faces{{{{0, 0, 0}, {0, 1, 0}, {2, 1, 0}, {2, 0, 0}}, {}},
                            {{{0, 0, 1.00001}, {2, 0, 1}, {2, 1, 1}, {0, 1, 1}}, {}},
                            {{{0, 0, 0}, {0, 0, 1}, {0, 1, 1}, {0, 1, 0}}, {}},
                            {{{2, 0, 0}, {2, 1, 0}, {2, 1, 1}, {2, 0, 1}}, {}}};
    for (const double y : {0.0, 1.0}) {
        faces.push_back({{{0, y, 0}, {1, y, 0}, {1, y, 1}, {0, y, 1}}, {}});
        faces.push_back({{{1, y, 0}, {2, y, 0}, {2, y, 1}, {1, y, 1}}, {}});
    }
    ASSERT_EQ(volumesOf(faces).size(), 1u);
    EXPECT_NEAR(volumesOf(faces)[0], 2.0, 1e-4);
    // Two boxes that share an edge: four faces around it.
    std::vector<Face> boxes = box({0, 0, 0}, {1, 1, 1}).faces;
    const std::vector<Face> second = box({1, 1, 0}, {1, 1, 1}).faces;
    boxes.insert(boxes.end(), second.begin(), second.end());
    double sum = 0.0;
    for (const double volume : volumesOf(boxes)) {
        sum += volume;
    }
    EXPECT_NEAR(sum, 2.0, 1e-12);
}

/** What looks at all pairs of these would not come to an end. */
TEST(IfcFacesTest, piecesOfManyFaces) {
    std::vector<Face> fan; // on one edge
    for (int i = 0; i < 200'000; ++i) {
        const double t = 2 * pi * i / 200'000;
        fan.push_back({{{0, 0, 0}, {0, 0, 1}, {std::cos(t), std::sin(t), 0.5}}, {}});
    }
    Work work;
    EXPECT_EQ(piecesOf(fan, work).size(), 1u);
    std::vector<Face> loose; // in one plane, with no corner in common
    for (int i = 0; i < 200'000; ++i) {
        const double y = 0.01 * (i % 500);
        const double z = 0.01 * (i / 500);
        loose.push_back({{{0, y, z}, {0, y + 0.005, z}, {0, y, z + 0.005}}, {}});
    }
    Work more;
    EXPECT_EQ(piecesOf(loose, more).size(), loose.size());
}

TEST(IfcFacesTest, pointsInOnePlaceHaveOneNumber) {
    std::mt19937 random(17);
    std::uniform_real_distribution<double> place(-0.01, 0.01);
    PointMerger merger(1e-4, 1);
    for (int i = 0; i < 20'000; ++i) {
        const Vector p{place(random), place(random), 0.0};
        const std::size_t known = merger.points().size();
        const std::uint32_t number = merger.numberOf(p);
        ASSERT_LT(number, merger.points().size());
        EXPECT_LE(length(merger.points()[number] - p), 1e-4);
        if (number == known) {
            for (std::size_t k = 0; k < known; ++k) {
                ASSERT_GT(length(merger.points()[k] - p), 1e-4);
            }
        }
    }
    PointMerger far(1e-5, 10);
    EXPECT_EQ(far.numberOf({1e15, -1e15, 1e300}), far.numberOf({1e15, -1e15, 1e300}));
}

} // namespace
