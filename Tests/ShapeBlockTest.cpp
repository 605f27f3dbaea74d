/**
 * @file ShapeBlockTest.cpp
 * What the page is given to draw.
 */
#include "output/html/ShapeBlock.h"

#include <PluginKit/Solids.h>
#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace {

template <typename Number>
Number numberAt(const std::string& bytes, std::size_t at) {
    Number number{};
    EXPECT_LE(at + sizeof number, bytes.size());
    std::memcpy(&number, bytes.data() + at, sizeof number);
    return number;
}

struct PieceHead {
    Vector3 low;
    std::array<float, 3> step;
    std::uint32_t object;
    std::uint32_t role;
    std::uint32_t points;
    std::uint32_t triangles;
    std::uint32_t edges;
};

/** The heads of all pieces; expects that their numbers fill the rest of the bytes and that all indices exist. */
std::vector<PieceHead> headsOf(const std::string& bytes) {
    std::vector<PieceHead> heads;
    EXPECT_EQ(bytes.substr(0, 4), "IHS1");
    const auto count = numberAt<std::uint32_t>(bytes, 4);
    std::size_t data = 8 + 64 * std::size_t{count};
    for (std::size_t at = 8; heads.size() < count; at += 64) {
        heads.push_back({numberAt<Vector3>(bytes, at), numberAt<std::array<float, 3>>(bytes, at + 24),
                         numberAt<std::uint32_t>(bytes, at + 36), numberAt<std::uint32_t>(bytes, at + 40),
                         numberAt<std::uint32_t>(bytes, at + 44), numberAt<std::uint32_t>(bytes, at + 48),
                         numberAt<std::uint32_t>(bytes, at + 52)});
        const PieceHead& head = heads.back();
        data += 6 * std::size_t{head.points};
        for (std::size_t i = 0; i < 3 * std::size_t{head.triangles} + 2 * std::size_t{head.edges}; ++i, data += 2) {
            EXPECT_LT(numberAt<std::uint16_t>(bytes, data), head.points);
        }
    }
    EXPECT_EQ(data, bytes.size());
    return heads;
}

/** A solids stream with a field of hills of @p side by @p side squares, which share their corners. */
std::string hills(std::uint32_t side) {
    PluginKit::SolidSurface surface;
    for (std::uint32_t i = 0; i <= side; ++i) {
        for (std::uint32_t k = 0; k <= side; ++k) {
            surface.vertices.push_back({1e6 + i, 2e6 + k, 0.5 * ((i * 7 + k * 3) % 5)});
            const std::uint32_t first = i * (side + 1) + k;
            if (i < side && k < side) {
                surface.addPolygon({first, first + side + 1, first + side + 2, first + 1});
            }
        }
    }
    const std::string bytes = PluginKit::solidBytes({surface});
    return "1\t2\t" + std::to_string(bytes.size()) + '\n' + bytes + '\n';
}

} // namespace

TEST(ShapeBlockTest, boxesHaveTheirTwelveEdges) {
    ShapeBlock shapes;
    shapes.addBox({{1, 2, 3}, {2, 4, 3.5}}, 6, ShapeBlock::Role::Before, [](const Vector3& p) {
        return Vector3{p[0] + 100.0, p[1], p[2]};
    });
    const std::vector<PieceHead> heads = headsOf(shapes.bytes());
    ASSERT_EQ(heads.size(), 1U);
    EXPECT_EQ(heads[0].low, (Vector3{101, 2, 3}));
    EXPECT_FLOAT_EQ(heads[0].step[1] * 65535.0F, 2.0F);
    EXPECT_EQ(heads[0].object, 6U);
    EXPECT_EQ(heads[0].role, 1U);
    EXPECT_EQ(heads[0].points, 8U);
    EXPECT_EQ(heads[0].triangles, 12U);
    EXPECT_EQ(heads[0].edges, 12U);
    EXPECT_TRUE(shapes.has(6, ShapeBlock::Role::Before));
    EXPECT_FALSE(shapes.has(6, ShapeBlock::Role::Now));
    EXPECT_FALSE(shapes.has(5, ShapeBlock::Role::Before));
}

TEST(ShapeBlockTest, largeShapesAreCutIntoPiecesAndLoseNothing) {
    ShapeBlock shapes;
    shapes.add(hills(300), {4}, ShapeBlock::Role::Now); // 90,601 corners
    std::size_t triangles = 0;
    const std::vector<PieceHead> heads = headsOf(shapes.bytes());
    EXPECT_GT(heads.size(), 1U);
    for (const PieceHead& head : heads) {
        EXPECT_EQ(head.object, 4U);
        EXPECT_LE(head.points, 65536U);
        triangles += head.triangles;
    }
    EXPECT_EQ(triangles, 2U * 300U * 300U);
}

TEST(ShapeBlockTest, objectsThatAreNotDrawnAndDamagedStreamsAddNothing) {
    ShapeBlock shapes;
    shapes.add(hills(2), {ShapeBlock::none}, ShapeBlock::Role::Now);
    shapes.add(hills(2), {}, ShapeBlock::Role::Now);
    EXPECT_THROW(shapes.add(hills(2).substr(0, 100), {0}, ShapeBlock::Role::Now), std::runtime_error);
    EXPECT_TRUE(headsOf(shapes.bytes()).empty());
}
