#include <ImportCommon/DxKDTree.h>

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

namespace {

constexpr unsigned int notFound = CDxKDTree::NotFound;
using Vector_t = std::vector<double>;

/** The rule of the descent, word for word, with every distance summed up in full. */
class PlainTree {
public:
    unsigned int insert(const Vector_t& vector) {
        unsigned int* place = nullptr;
        const unsigned int found = descend(vector, place);
        if (found != notFound) {
            return found;
        }
        *place = static_cast<unsigned int>(nodes_.size());
        nodes_.push_back({vector, notFound, notFound});
        return static_cast<unsigned int>(nodes_.size() - 1);
    }

    unsigned int find(const Vector_t& vector) {
        unsigned int* place = nullptr;
        return descend(vector, place);
    }

    std::size_t size() const { return nodes_.size(); }
    const Vector_t& vectorOf(unsigned int id) const { return nodes_[id].vector; }

private:
    struct Node_s {
        Vector_t vector;
        unsigned int high;
        unsigned int low;
    };

    unsigned int descend(const Vector_t& vector, unsigned int*& place) {
        place = &root_;
        for (std::size_t depth = 0; *place != notFound; ++depth) {
            Node_s& node = nodes_[*place];
            double distance = 0;
            for (std::size_t i = 0; i < vector.size(); ++i) {
                distance += std::fabs(node.vector[i] - vector[i]);
            }
            if (0.01 > distance) {
                return *place;
            }
            const std::size_t axis = depth % vector.size();
            place = vector[axis] - node.vector[axis] >= -0.04 ? &node.high : &node.low;
        }
        return notFound;
    }

    unsigned int root_ = notFound;
    std::vector<Node_s> nodes_;
};

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
        Vector_t vector(dimension);
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

/** Mostly equal objects; the second of a pair is so low that a small move takes another way. */
const Shape shapes[] = {
    {"ascending", [](unsigned int n, std::mt19937&, double (&at)[3]) { at[0] = n, at[1] = n % 2 * -0.035; }},
    {"descending", [](unsigned int n, std::mt19937&, double (&at)[3]) { at[0] = -1.0 * n, at[2] = n % 2 * -0.035; }},
    {"lattice", [](unsigned int n, std::mt19937&,
                   double (&at)[3]) { at[0] = n % 15 * 0.5, at[1] = n / 15 % 15 * 0.5, at[2] = n / 225 * 0.5; }},
    {"scattered", [](unsigned int, std::mt19937& random,
                     double (&at)[3]) { std::generate_n(at, 3, [&] { return uniform(random, 20) - 10; }); }},
    {"crowded", [](unsigned int, std::mt19937& random,
                   double (&at)[3]) { std::generate_n(at, 3, [&] { return uniform(random, 0.3); }); }},
    {"far away", [](unsigned int n, std::mt19937& random,
                    double (&at)[3]) { at[0] = std::ldexp(1 + uniform(random, 1e-9), static_cast<int>(n % 60)); }},
};

TEST(DxKDTreeTest, agreesWithAPlainModelInShapes) {
    const double moves[] = {0, 1e-9, 0.0007, 0.0099, 0.01, 0.0101, 0.03, 0.05};
    for (const Shape& shape : shapes) {
        std::mt19937 random(77);
        CDxKDTree tree(11);
        PlainTree model;
        for (unsigned int number = 0; number < 3000; ++number) {
            double centre[3] = {};
            shape.place(number, random, centre);
            Vector_t vector(11, 0.87);
            std::copy_n(centre, 3, vector.begin());
            if (number % 500 == 499) {
                vector[random() % 11] = number % 1000 == 999 ? HUGE_VAL : std::numeric_limits<double>::quiet_NaN();
            }
            ASSERT_EQ(tree.insert(vector.data()), model.insert(vector)) << shape.name << ", seed 77, " << number;
            for (int call = 0; call < 2 && number > 1000; ++call) { // the first are all added on their own
                Vector_t moved = model.vectorOf(static_cast<unsigned int>(random() % model.size()));
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

TEST(DxKDTreeTest, agreesWithAPlainModelAcrossCornersOfCells) {
    std::mt19937 random(11);
    CDxKDTree tree(3);
    PlainTree model;
    for (int call = 0; call < 20000; ++call) {
        Vector_t vector(3);
        std::generate(vector.begin(), vector.end(), [&] { return uniform(random, 50); });
        ASSERT_EQ(tree.insert(vector.data()), model.insert(vector)) << call;
        for (double& component : vector) {
            component += uniform(random, 0.006) - 0.003;
        }
        ASSERT_EQ(tree.find(vector.data()), model.find(vector)) << call;
    }
}

TEST(DxKDTreeTest, whatIsNotANumberHidesNoOtherNode) {
    CDxKDTree tree(20);
    PlainTree model;
    const auto insert = [&](const Vector_t& vector) { ASSERT_EQ(tree.insert(vector.data()), model.insert(vector)); };
    const auto levelOf = [](int k) { return k < 16 ? k : k == 16 ? std::nan("") : k < 32 ? 1000 : 999.962; };
    for (int k = 0; k < 300; ++k) {
        Vector_t vector(20, k);
        vector[18] = levelOf(k);
        insert(vector);
    }
    Vector_t other(20, 400);
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
