#include "Models/PlainTree.h"

#include <ImportCommon/DxKDTree.h>

#include <DxKDTreeDescent.h> // private: only there one can see how a descent goes
#include <gtest/gtest.h>
#include <pthread.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <iostream>
#include <limits>
#include <random>
#include <vector>

using ImportCommon::CDxKDTree;

namespace ImportCommon {

/** Follows a descent and counts what it looks at. */
class CDxKDTreeProbe {
public:
    CDxKDTreeProbe(const CDxKDTree& tree, const PlainTree::Vector& vector) {
        tree.descend(CDxKDTree::Query(vector.data(), static_cast<unsigned int>(vector.size())), *this);
    }

    void onNode(unsigned int, unsigned int) { ++nodes; }
    void onSkip(unsigned int level) { longest = std::max(longest, static_cast<int>(level)); }

    unsigned int nodes = 0;
    int longest = -1; // level of the longest skip that was taken
};

} // namespace ImportCommon

using ImportCommon::CDxKDTreeProbe;

namespace {

using Vector = PlainTree::Vector;

TEST(DxKDTreeTest, agreesWithAPlainModel) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double special[] = {nan, -nan, HUGE_VAL, -HUGE_VAL, -0.0, 1e308, -1e308};
    const double steps[] = {0, 0, 0, 0.0009, -0.0009, 0.001, -0.001, 0.0099, -0.0101, 0.03, -0.03, -0.04, -0.05};
    unsigned int seed = 4200;
    for (const std::size_t dimension : {1U, 2U, 3U, 11U, 20U}) {
        std::cout << "dimension " << dimension << ": seed " << ++seed << "\n";
        std::mt19937 random(seed);
        const auto oneOf = [&random](const auto& values) { return values[random() % std::size(values)]; };
        CDxKDTree tree(static_cast<unsigned int>(dimension));
        PlainTree model;
        Vector vector(dimension);
        for (int call = 0; call < 20000; ++call) {
            const bool fresh = model.size() == 0 || random() % 3 == 0;
            if (!fresh) {
                vector = model.vectorOf(static_cast<unsigned int>(random() % model.size()));
            }
            for (double& component : vector) {
                component = (fresh ? static_cast<double>(random() % 40) / (dimension == 1 ? 0.01 : 4) : component) +
                            oneOf(steps);
            }
            if (random() % 20 == 0) {
                vector[random() % dimension] = oneOf(special);
            }
            if (random() % 2 == 0) {
                ASSERT_EQ(tree.insert(vector.data()), model.insert(vector)) << call;
            } else {
                ASSERT_EQ(tree.find(vector.data()), model.find(vector)) << call;
            }
            ASSERT_EQ(tree.getCount(), model.size()) << call;
        }
        for (unsigned int id = 0; id < model.size(); ++id) {
            ASSERT_EQ(std::memcmp(tree.getVector(id), model.vectorOf(id).data(), dimension * sizeof(double)), 0) << id;
        }
        EXPECT_EQ(tree.getVector(static_cast<unsigned int>((model.size() + 1023) / 1024 * 1024)), nullptr);
    }
}

struct Shape {
    const char* name;
    void (*place)(unsigned int number, std::mt19937& random, double (&centre)[3]);
};

double uniform(std::mt19937& random, double limit) {
    return std::uniform_real_distribution<double>(0, limit)(random);
}

/** Mostly equal objects. In the first two, the second of a pair is so low that a small move takes another way. */
const Shape shapes[] = {
    {"ascending", [](unsigned int n, std::mt19937&, double (&at)[3]) { at[0] = n, at[1] = n % 2 * -0.035; }},
    {"descending", [](unsigned int n, std::mt19937&, double (&at)[3]) { at[0] = -1.0 * n, at[2] = n % 2 * -0.035; }},
    {"to and fro", [](unsigned int n, std::mt19937&, double (&at)[3]) { at[1] = n % 2 == 0 ? n : -1.0 * n; }},
    {"closing in", [](unsigned int n, std::mt19937&, double (&at)[3]) { at[1] = n % 2 == 0 ? n : 6000.0 - n; }},
    {"close together",
     [](unsigned int n, std::mt19937&, double (&at)[3]) { at[0] = n * 0.0101, at[2] = n % 3 * 0.01; }},
    {"lattice", [](unsigned int n, std::mt19937&,
                   double (&at)[3]) { at[0] = n % 15 * 0.5, at[1] = n / 15 % 15 * 0.5, at[2] = n / 225 * 0.5; }},
    {"same projection",
     [](unsigned int n, std::mt19937&, double (&at)[3]) { at[0] = 0.8955344 * n, at[1] = -1.0 * n; }},
    {"scattered", [](unsigned int, std::mt19937& random,
                     double (&at)[3]) { std::generate_n(at, 3, [&] { return uniform(random, 20) - 10; }); }},
    {"crowded", [](unsigned int, std::mt19937& random,
                   double (&at)[3]) { std::generate_n(at, 3, [&] { return uniform(random, 0.3); }); }},
    {"far away", [](unsigned int n, std::mt19937& random,
                    double (&at)[3]) { at[0] = std::ldexp(1 + uniform(random, 1e-9), static_cast<int>(n % 60)); }},
    {"sorted far away",
     [](unsigned int n, std::mt19937& random, double (&at)[3]) { at[0] = n * 1e13, at[1] = uniform(random, 0.02); }},
    {"huge", [](unsigned int n, std::mt19937&, double (&at)[3]) { at[0] = n * 5e304, at[1] = n % 2 * -1.7e308; }},
};

TEST(DxKDTreeTest, agreesWithAPlainModelInShapes) {
    const double moves[] = {0, 1e-9, 0.0007, 0.0099, 0.01, 0.0101, 0.03, 0.04, 0.05};
    for (const Shape& shape : shapes) {
        std::mt19937 random(77);
        CDxKDTree tree(11);
        PlainTree model;
        for (unsigned int number = 0; number < 2500; ++number) {
            double centre[3] = {};
            shape.place(number, random, centre);
            Vector vector(11, 0.87);
            std::copy_n(centre, 3, vector.begin());
            if (number % 500 == 499) {
                vector[random() % 11] = number % 1000 == 999 ? HUGE_VAL : std::numeric_limits<double>::quiet_NaN();
            }
            ASSERT_EQ(tree.insert(vector.data()), model.insert(vector)) << shape.name << ", seed 77, " << number;
            for (int call = 0; call < 2 && number > 1000; ++call) {
                Vector moved = model.vectorOf(static_cast<unsigned int>(random() % model.size()));
                moved[random() % 4] += moves[random() % std::size(moves)] * (random() % 2 == 0 ? 1 : -1);
                ASSERT_EQ(tree.find(moved.data()), model.find(moved)) << shape.name << ", seed 77, " << number;
                if (random() % 4 == 0) {
                    ASSERT_EQ(tree.insert(moved.data()), model.insert(moved)) << shape.name << ", seed 77, " << number;
                }
            }
        }
        ASSERT_EQ(tree.getCount(), model.size()) << shape.name;
    }
}

struct Chain {
    const char* name;
    double (*componentOf)(unsigned int number);
};

const Chain chains[] = {
    {"ascending", [](unsigned int n) { return 2.0 * n; }},
    {"descending", [](unsigned int n) { return -2.0 * n; }},
    {"away on both sides", [](unsigned int n) { return n % 2 == 0 ? 2.0 * n : -2.0 * n; }},
    {"closing in", [](unsigned int n) { return n % 2 == 0 ? 2.0 * n : 90000.0 - 2.0 * n; }},
};

TEST(DxKDTreeTest, longChainsArePassedOver) {
    constexpr unsigned int count = 20000;
    for (const std::size_t dimension : {1U, 2U, 11U, 40U}) {
        for (const Chain& chain : chains) {
            CDxKDTree tree(static_cast<unsigned int>(dimension));
            Vector vector(dimension, 0.87);
            unsigned int most = 0;
            int longest = -1;
            for (unsigned int id = 0; id < count; ++id) {
                vector[dimension / 2] = chain.componentOf(id);
                ASSERT_EQ(tree.insert(vector.data()), id) << chain.name << " in " << dimension;
            }
            for (unsigned int id = 0; id < count; ++id) {
                vector[dimension / 2] = chain.componentOf(id) + 0.001;
                ASSERT_EQ(tree.find(vector.data()), id) << chain.name << " in " << dimension;
                const CDxKDTreeProbe probe(tree, vector);
                most = std::max(most, probe.nodes);
                longest = std::max(longest, probe.longest);
            }
            EXPECT_LT(most, 100U) << chain.name << " in " << dimension;
            EXPECT_EQ(longest, 2) << chain.name << " in " << dimension;
        }
    }
}

TEST(DxKDTreeTest, chainsOfAMixtureArePassedOver) {
    // Rows of equal objects, one of each in turn, and now and then one that fits in nowhere.
    std::mt19937 random(5);
    CDxKDTree tree(11);
    PlainTree model;
    unsigned long long nodes = 0;
    for (unsigned int number = 0; number < 6000; ++number) {
        Vector vector(11, 0.5 + number % 3);
        vector[0] = 0.7 * number;
        vector[1] = number % 40 == 39 ? uniform(random, 100) - 50 : 0;
        ASSERT_EQ(tree.insert(vector.data()), model.insert(vector)) << "seed 5, " << number;
        vector[0] += 0.0001;
        ASSERT_EQ(tree.find(vector.data()), model.find(vector)) << "seed 5, " << number;
        nodes += CDxKDTreeProbe(tree, vector).nodes;
    }
    EXPECT_LT(nodes / 6000, 250U);
}

TEST(DxKDTreeTest, whatIsNotANumberHidesNoOtherNode) {
    CDxKDTree tree(20);
    PlainTree model;
    const auto insert = [&](const Vector& vector) { ASSERT_EQ(tree.insert(vector.data()), model.insert(vector)); };
    const auto levelOf = [](int k) { return k < 16 ? k : k == 16 ? std::nan("") : k < 32 ? 1000 : 999.962; };
    for (int k = 0; k < 300; ++k) {
        Vector vector(20, k);
        vector[18] = levelOf(k);
        insert(vector);
    }
    Vector other(20, 400);
    other[18] = 999.93;
    insert(other);
    other[18] -= 0.009;
    EXPECT_EQ(tree.find(other.data()), model.find(other));
}

/** One long chain; counts the wrong answers. */
void* fillSorted(void* wrong) {
    CDxKDTree tree(1);
    for (unsigned int id = 0; id < 10000; ++id) {
        const double value = id;
        const double nearby = value + 0.001; // which takes a descent
        *static_cast<int*>(wrong) += tree.insert(&value) == id && tree.find(&nearby) == id ? 0 : 1;
    }
    return nullptr;
}

TEST(DxKDTreeTest, sortedInputNeedsNoStack) {
    pthread_attr_t attributes;
    ASSERT_EQ(pthread_attr_init(&attributes), 0);
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, 128 * 1024), 0);
    pthread_t thread;
    int wrong = 0;
    ASSERT_EQ(pthread_create(&thread, &attributes, &fillSorted, &wrong), 0);
    EXPECT_EQ(pthread_join(thread, nullptr), 0);
    EXPECT_EQ(wrong, 0);
    pthread_attr_destroy(&attributes);
}

} // namespace
