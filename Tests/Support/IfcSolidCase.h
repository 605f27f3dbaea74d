/**
 * @file IfcSolidCase.h
 * Solids as text, and the numbers that have to come of them.
 */
#pragma once

#include "Support/IfcShapeModel.h"

#include <gtest/gtest.h>

constexpr double pi = 3.14159265358979323846;
constexpr double flat = 1e-6; ///< tolerance of what has no curves

struct SolidCase {
    const char* name;
    std::string text; ///< the item is #100
    double volume;
    IfcReader::Vector low;
    IfcReader::Vector high;
    double tolerance = 0.005; ///< of the volume, as a part of it
    bool closed = true;
};

inline void expectSolid(const SolidCase& test, const ModelUnits& units) {
    SCOPED_TRACE(test.name);
    const ShapeModel model(ifcText(test.text + productOf100, units));
    const IfcReader::Shape shape = model.builder.build(30);
    for (const std::string& doubt : shape.doubts) {
        ADD_FAILURE() << doubt;
    }
    ASSERT_FALSE(shape.parts.empty());
    const ShapeNumbers found(shape);
    EXPECT_EQ(found.closed, test.closed);
    EXPECT_LT(found.gap, 1e-6);
    EXPECT_NEAR(found.volume, test.volume, test.volume * test.tolerance + 1e-12);
    EXPECT_LT(length(found.low - test.low), 1e-3) << found.low.x << ' ' << found.low.y << ' ' << found.low.z;
    EXPECT_LT(length(found.high - test.high), 1e-3) << found.high.x << ' ' << found.high.y << ' ' << found.high.z;
}

/** Tests that take their cases in each of several units. */
class SolidTest : public testing::TestWithParam<ModelUnits> {
protected:
    template <std::size_t size>
    void expectAll(const SolidCase (&cases)[size]) {
        for (const SolidCase& test : cases) {
            expectSolid(test, GetParam());
        }
    }
};

/** A place in space, and the placement that is one number lower. */
inline std::string place(int id, const char* point, const char* axes = "$,$") {
    return '#' + std::to_string(id) + "=IFCAXIS2PLACEMENT3D(#" + std::to_string(id + 1) + ',' + axes + ");\n#" +
           std::to_string(id + 1) + "=IFCCARTESIANPOINT((" + point + "));\n";
}
