/**
 * @file IfcCuttingTest.cpp
 * Random chains of unions, differences and intersections, against counting the cells of a grid.
 */
#include "geometry/Cutting.h"
#include "geometry/Sweeps.h"

#include <gtest/gtest.h>

#include <random>

using namespace IfcReader;

namespace {

constexpr int side = 8;

/** The cells from a corner to another one; a prism lacks the quarter that is above the middle in x and y. */
struct Cells {
    int low[3];
    int high[3];
    bool isPrism;

    bool contains(int x, int y, int z) const {
        const bool inBox = x >= low[0] && x < high[0] && y >= low[1] && y < high[1] && z >= low[2] && z < high[2];
        return inBox && !(isPrism && 2 * x >= low[0] + high[0] && 2 * y >= low[1] + high[1]);
    }
};

class Chain {
public:
    Chain(unsigned int seed, bool turned, double noise) : random_(seed), noise_(noise) {
        if (turned) {
            turn_.z = normalized({real(), real(), real()});
            turn_.x = perpendicular(turn_.z);
            turn_.y = cross(turn_.z, turn_.x);
            turn_.origin = {real() * 50, real() * 50, real()};
        }
    }

    unsigned int below(unsigned int limit) { return static_cast<unsigned int>(random_() % limit); }

    Cells cells() {
        Cells cells{};
        for (int k = 0; k < 3; ++k) {
            const int a = static_cast<int>(below(side));
            int b = static_cast<int>(below(side));
            b += a == b ? 1 : 0;
            cells.low[k] = std::min(a, b);
            cells.high[k] = std::max(a, b);
        }
        const bool isEven = (cells.high[0] - cells.low[0]) % 2 == 0 && (cells.high[1] - cells.low[1]) % 2 == 0;
        cells.isPrism = isEven && below(2) == 0;
        return cells;
    }

    /** Cells as a body, each corner moved a little. */
    Body body(const Cells& c) {
        const double x0 = c.low[0];
        const double x1 = c.high[0];
        const double y0 = c.low[1];
        const double y1 = c.high[1];
        const Loop base = c.isPrism ? Loop{{x0, y0, 0},
                                           {x1, y0, 0},
                                           {x1, (y0 + y1) / 2, 0},
                                           {(x0 + x1) / 2, (y0 + y1) / 2, 0},
                                           {(x0 + x1) / 2, y1, 0},
                                           {x0, y1, 0}}
                                    : Loop{{x0, y0, 0}, {x1, y0, 0}, {x1, y1, 0}, {x0, y1, 0}};
        // The lower corners, then the upper ones: shared by the faces, so that noise opens no gap.
        Loop corners;
        for (const double z : {static_cast<double>(c.low[2]), static_cast<double>(c.high[2])}) {
            for (const Vector& p : base) {
                corners.push_back(turn_({p.x, p.y, z}) + Vector{real(), real(), real()} * noise_);
            }
        }
        const std::size_t size = base.size();
        Body body;
        body.faces.push_back({Loop(corners.begin() + static_cast<std::ptrdiff_t>(size), corners.end()), {}});
        body.faces.push_back({Loop(corners.rend() - static_cast<std::ptrdiff_t>(size), corners.rend()), {}});
        for (std::size_t i = 0; i < size; ++i) {
            const std::size_t next = (i + 1) % size;
            body.faces.push_back({{corners[i], corners[next], corners[size + next], corners[size + i]}, {}});
        }
        return body;
    }

private:
    double real() { return std::uniform_real_distribution<double>(-1.0, 1.0)(random_); }

    std::mt19937 random_;
    double noise_;
    Affine turn_;
};

/** What became of some chains. */
struct Outcome {
    int wrong = 0;
    int silent = 0; ///< wrong without being told
};

Outcome runChains(int count, bool turned, double noise) {
    Outcome outcome;
    for (int t = 0; t < count; ++t) {
        Chain chain(static_cast<unsigned int>(t), turned, noise);
        const Cells all{{0, 0, 0}, {side, side, side}, false};
        Body body = chain.body(all);
        std::vector<bool> truth(side * side * side, true);
        bool closed = true;
        for (unsigned int steps = 1 + chain.below(8); steps > 0; --steps) {
            const Operation operation = chain.below(5) < 3    ? Operation::difference
                                        : chain.below(3) != 0 ? Operation::unite
                                                              : Operation::intersect;
            const Cells cells = chain.cells();
            for (int i = 0; i < side * side * side; ++i) {
                const bool in = cells.contains(i % side, i / side % side, i / side / side);
                const bool was = truth[static_cast<std::size_t>(i)];
                truth[static_cast<std::size_t>(i)] = operation == Operation::difference ? was && !in
                                                     : operation == Operation::unite    ? was || in
                                                                                        : was && in;
            }
            Work work;
            CutResult result = combine(operation, body, chain.body(cells), work);
            body = std::move(result.body);
            closed = closed && result.closed;
        }
        const auto volume = static_cast<double>(std::count(truth.begin(), truth.end(), true));
        const bool right = std::abs(signedVolume(body.faces) - volume) < (1e-6 + 20 * noise) * std::max(1.0, volume);
        outcome.wrong += right ? 0 : 1;
        outcome.silent += right || !closed ? 0 : 1;
    }
    return outcome;
}

TEST(IfcCuttingTest, boxesAndPrismsThatTouch) {
    for (const bool turned : {false, true}) {
        SCOPED_TRACE(turned ? "turned" : "along the axes");
        EXPECT_EQ(runChains(1500, turned, 0.0).wrong, 0);
    }
}

/** Where faces nearly touch, floating point may fail; seldom, and never without saying so. */
TEST(IfcCuttingTest, boxesAndPrismsThatNearlyTouch) {
    for (const double noise : {1e-12, 1e-9, 1e-8, 1e-7, 1e-6, 1e-5, 1e-4, 1e-3}) {
        SCOPED_TRACE(noise);
        const Outcome outcome = runChains(400, true, noise);
        EXPECT_LE(outcome.wrong, noise > 1e-8 ? 2 : 0);
        EXPECT_EQ(outcome.silent, 0);
    }
}

Body boxOfSize(const Vector& low, double size) {
    Body body = prism({{{{0, 0, 0}, {size, 0, 0}, {size, size, 0}, {0, size, 0}}, {}}}, {0, 0, size});
    transform(body, Affine{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, low});
    return body;
}

TEST(IfcCuttingTest, facesThatLoseNothingStayWhole) {
    Work work;
    const Body box = boxOfSize({0, 0, 0}, 1.0);
    const Body cut = combine(Operation::difference, box, boxOfSize({-0.5, -0.5, 0.9}, 2.0), work).body;
    EXPECT_EQ(cut.faces.size(), 6u);
    EXPECT_EQ(combine(Operation::difference, box, boxOfSize({5, 5, 5}, 1.0), work).body.faces.size(), 6u);
    EXPECT_TRUE(combine(Operation::difference, box, boxOfSize({-1, -1, -1}, 3.0), work).body.faces.empty());
    EXPECT_EQ(combine(Operation::unite, box, boxOfSize({-1, -1, -1}, 3.0), work).body.faces.size(), 6u);
    EXPECT_TRUE(combine(Operation::intersect, box, boxOfSize({1, 0, 0}, 1.0), work).body.faces.empty());
    EXPECT_TRUE(combine(Operation::difference, box, box, work).body.faces.empty());
}

TEST(IfcCuttingTest, noSkinIsLeftWhereAnOpeningEndsShortOfAFace) {
    for (const double missing : {-1.5e-6, -1e-9, 0.0, 1e-9, 3e-8, 3e-7, 1e-6, 1.5e-6}) {
        Work work;
        const Body cut =
            combine(Operation::difference, boxOfSize({0, 0, 0}, 1.0), boxOfSize({0.3, 0.3, missing}, 1.0), work).body;
        double area = 0.0;
        for (const Face& face : cut.faces) {
            area += length(areaVector(face));
        }
        EXPECT_NEAR(area, 4.0 + 2 * 0.51, 1e-4) << missing;
    }
}

TEST(IfcCuttingTest, surfacesOnlyLoseWhatIsCutAway) {
    Work work;
    Body sheet;
    sheet.solid = false;
    sheet.faces.push_back({{{0, 0, 0}, {2, 0, 0}, {2, 1, 0}, {0, 1, 0}}, {}});
    const Body rest = combine(Operation::difference, sheet, boxOfSize({0.5, -0.5, -1}, 0.75), work).body;
    EXPECT_FALSE(rest.solid);
    EXPECT_EQ(rest.faces.size(), 1u) << "the box ends below the sheet";
    double area = 0.0;
    for (const Face& face : combine(Operation::difference, sheet, boxOfSize({0.5, -0.5, -0.5}, 1.0), work).body.faces) {
        area += length(areaVector(face));
    }
    EXPECT_NEAR(area, 1.5, 1e-9);
}

/** A body of many faces that is cut in one corner: the work is that of the corner. */
TEST(IfcCuttingTest, manyFaces) {
    std::vector<std::vector<Face>> sections;
    for (int s = 0; s <= 400; ++s) {
        Loop ring;
        for (int i = 0; i < 100; ++i) {
            const double t = 0.0628318530717958648 * i;
            const double radius = 1.0 + 0.1 * std::sin(0.3 * s) * std::cos(5.0 * t);
            ring.push_back({radius * std::cos(t), radius * std::sin(t), 0.05 * s});
        }
        sections.push_back({{ring, {}}});
    }
    const Body vase = loft(sections, false);
    Work work;
    const Body corner = boxOfSize({0.5, 0.5, 19.5}, 1.0);
    const CutResult outside = combine(Operation::difference, vase, corner, work);
    const CutResult inside = combine(Operation::intersect, vase, corner, work);
    EXPECT_TRUE(outside.closed && inside.closed);
    EXPECT_NEAR(signedVolume(outside.body.faces) + signedVolume(inside.body.faces), signedVolume(vase.faces), 1e-6);
    EXPECT_LT(work.used(), 3'000'000u);
}

TEST(IfcCuttingTest, gapTellsWhatIsOpen) {
    Body box = boxOfSize({3, 4, 5}, 1.0);
    EXPECT_LT(gap(box.faces), 1e-12);
    Body open = box;
    open.faces.erase(open.faces.begin());
    EXPECT_GT(gap(open.faces), 0.1);
    open.faces.erase(open.faces.begin()); // the face on the other side: the normals cancel again
    EXPECT_GT(gap(open.faces), 0.1);
}

} // namespace
