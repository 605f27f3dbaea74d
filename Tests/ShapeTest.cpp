/**
 * @file ShapeTest.cpp
 * What is measured of shapes, and which are the same.
 */
#include "Support/SampleObjects.h"
#include "comparison/Congruence.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <random>

namespace {

constexpr double pi = 3.141592653589793;

const Outline lShape = {{0.0, 0.0}, {3.0, 0.0}, {3.0, 0.4}, {0.6, 0.4}, {0.6, 2.0}, {0.0, 2.0}};

/** No turn makes it its mirror image: an L with a block on one end of its top. */
std::vector<PluginKit::SolidSurface> handedBody() {
    return {prism(lShape, 1.0), shifted(block(0.3, 0.3, 0.5), {2.5, 0.05, 1.0})};
}

Outline circle(double radius) {
    constexpr int corners = 48;
    Outline outline;
    for (int i = 0; i < corners; ++i) {
        outline.push_back({radius * std::cos(2.0 * pi * i / corners), radius * std::sin(2.0 * pi * i / corners)});
    }
    return outline;
}

std::vector<PluginKit::SolidSurface> placedAll(std::vector<PluginKit::SolidSurface> body, const RigidMotion& motion) {
    for (PluginKit::SolidSurface& surface : body) {
        surface = placed(surface, motion);
    }
    return body;
}

/** As a tool writes it that knows six digits. */
std::vector<PluginKit::SolidSurface> rounded(std::vector<PluginKit::SolidSurface> body) {
    for (PluginKit::SolidSurface& surface : body) {
        for (Vector3& vertex : surface.vertices) {
            for (double& coordinate : vertex) {
                char text[32];
                std::snprintf(text, sizeof text, "%.6g", coordinate);
                coordinate = std::atof(text);
            }
        }
    }
    return body;
}

Body bodyOf(const std::vector<PluginKit::SolidSurface>& surfaces) {
    static std::deque<std::vector<ObjectRecord>> records; // which bodies refer to
    records.push_back({object("id", "name", surfaces)});
    return bodiesOf(records.back()).front();
}

TEST(ShapeTest, aBlockMeasuresWhatItsFormulasSay) {
    const Shape shape = shapeOf({shifted(block(2.0, 3.0, 4.0), {10.0, 20.0, 30.0})});
    EXPECT_NEAR(shape.area, 52.0, 1e-12);
    EXPECT_NEAR(length(shape.centroid - Vector3{11.0, 21.5, 32.0}), 0.0, 1e-12);
    // Faces across x lie a metre off, the others spread evenly over two: (2 * 12 * 1 + 28 * 4 / 12) / 52.
    EXPECT_NEAR(shape.second[0], (24.0 + 28.0 / 3.0) / 52.0, 1e-12);
    // Likewise with fourth powers: (2 * 12 * 1 + 28 * 16 / 80) / 52.
    EXPECT_NEAR(shape.fourth[0], (24.0 + 5.6) / 52.0, 1e-12);
    for (const double moment : shape.third) {
        EXPECT_NEAR(moment, 0.0, 1e-12);
    }
}

TEST(ShapeTest, theWayItIsWrittenMakesNoDifference) {
    const Body plain = bodyOf({prism(lShape, 1.0)});
    const Vector3 far = {80000.0, 60000.0, 100.0};
    EXPECT_TRUE(areInPlace(plain, bodyOf({prism(lShape, 1.0, 2)})));
    EXPECT_TRUE(areInPlace(plain, bodyOf({prism(lShape, 1.0, 3, true)})));
    EXPECT_TRUE(areInPlace(plain, bodyOf(rounded({prism(lShape, 1.0, 1, true)}))));
    EXPECT_TRUE(lieAlike(plain, bodyOf({shifted(prism(lShape, 1.0, 4, true), far)})));
    EXPECT_FALSE(areInPlace(plain, bodyOf({shifted(prism(lShape, 1.0), {0.002, 0.0, 0.0})})));
    EXPECT_FALSE(turnBetween(plain, bodyOf({prism(lShape, 1.004)})));
}

TEST(ShapeTest, turnsAreFound) {
    const struct {
        const char* name;
        std::vector<PluginKit::SolidSurface> body;
        int symmetry; ///< turns about z that change nothing
    } bodies[] = {{"handed", handedBody(), 1},
                  {"block", {block(3.0, 0.2, 2.0)}, 2},
                  {"square", {block(0.4, 0.4, 3.0)}, 4},
                  {"cube", {block(1.0, 1.0, 1.0)}, 4}};
    std::mt19937 random(7);
    std::uniform_real_distribution<double> angles(-pi, pi);
    for (const auto& [name, body, symmetry] : bodies) {
        SCOPED_TRACE(name);
        for (const double degrees : {90.0, 180.0, 17.0, -31.0}) {
            const double angle = degrees * pi / 180.0;
            const Body turned = bodyOf(placedAll(body, {rotationAbout({0.0, 0.0, 1.0}, angle), {5.0, -3.0, 1.0}}));
            const std::optional<Rotation> found = turnBetween(bodyOf(body), turned);
            ASSERT_TRUE(found) << degrees;
            const double step = 2.0 * pi / symmetry;
            const double smallest = std::fabs(angle - step * std::round(angle / step));
            EXPECT_NEAR(angleOf(*found), smallest, 1e-4) << degrees;
        }
        for (int i = 0; i < 20 && symmetry <= 2; ++i) {
            const Rotation rotation =
                product(rotationAbout({0.6, 0.0, 0.8}, angles(random)), rotationAbout({1.0, 0.0, 0.0}, angles(random)));
            EXPECT_TRUE(turnBetween(bodyOf(body), bodyOf(placedAll(body, {rotation, {}}))));
        }
    }
}

TEST(ShapeTest, aRoundColumnThatTiltsTurnsNoFartherThanItsAxis) {
    const std::vector<PluginKit::SolidSurface> column = {prism(circle(0.2), 3.0)};
    const Rotation tilt = rotationAbout({1.0, 0.0, 0.0}, 0.3);
    const std::optional<Rotation> found = turnBetween(bodyOf(column), bodyOf(placedAll(column, {tilt, {}})));
    ASSERT_TRUE(found);
    EXPECT_NEAR(angleOf(*found), 0.3, 1e-3);
}

TEST(ShapeTest, mirrorImagesAreOtherShapesUnlessATurnMakesThem) {
    std::vector<PluginKit::SolidSurface> mirrorImage;
    for (const PluginKit::SolidSurface& surface : handedBody()) {
        mirrorImage.push_back(mirrored(surface));
    }
    EXPECT_TRUE(measureAlike(bodyOf(handedBody()), bodyOf(mirrorImage)));
    EXPECT_FALSE(turnBetween(bodyOf(handedBody()), bodyOf(mirrorImage)));
    EXPECT_LT(likeness(bodyOf(handedBody()), bodyOf(mirrorImage)), 1.0);
    EXPECT_TRUE(turnBetween(bodyOf({prism(lShape, 1.0)}), bodyOf({mirrored(prism(lShape, 1.0))})));
}

TEST(ShapeTest, whatMovesInsideOfAWallMakesItAnotherShape) {
    const auto wall = [](double opening) -> std::vector<PluginKit::SolidSurface> {
        return {prism({{0.0, 0.0},
                       {5.0, 0.0},
                       {5.0, 2.5},
                       {opening + 1.0, 2.5},
                       {opening + 1.0, 0.5},
                       {opening, 0.5},
                       {opening, 2.5},
                       {0.0, 2.5}},
                      0.2)};
    };
    const Body before = bodyOf(wall(1.0));
    for (const double opening : {1.01, 1.2, 2.0}) {
        EXPECT_FALSE(turnBetween(before, bodyOf(wall(opening)))) << opening;
    }
    EXPECT_TRUE(turnBetween(before, bodyOf(wall(3.0)))) << "turned by half a turn it is the same";
}

} // namespace
