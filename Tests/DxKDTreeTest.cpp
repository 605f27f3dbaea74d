#include <ImportCommon/DxKDTree.h>

#include <gtest/gtest.h>
#include <pthread.h>

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

/** The rule of the descent, word for word: recursive, and with every distance summed up in full. */
class PlainTree {
public:
    unsigned int insert(const Vector_t& vector) {
        const unsigned int id = static_cast<unsigned int>(nodes_.size());
        const unsigned int found = id == 0 ? notFound : descend(0, vector, 0, &id);
        if (found != notFound)
            return found;
        nodes_.push_back({vector, notFound, notFound});
        return id;
    }

    unsigned int find(const Vector_t& vector) { return nodes_.empty() ? notFound : descend(0, vector, 0, nullptr); }

    std::size_t size() const { return nodes_.size(); }
    const Vector_t& vectorOf(unsigned int id) const { return nodes_[id].vector; }

private:
    struct Node_s {
        Vector_t vector;
        unsigned int high;
        unsigned int low;
    };

    unsigned int descend(unsigned int at, const Vector_t& vector, std::size_t depth, const unsigned int* newChild) {
        Node_s& node = nodes_[at];
        double distance = 0;
        for (std::size_t i = 0; i < vector.size(); ++i)
            distance += std::fabs(node.vector[i] - vector[i]);
        if (0.01 > distance)
            return at;
        const std::size_t axis = depth % vector.size();
        unsigned int& child = vector[axis] - node.vector[axis] >= -0.04 ? node.high : node.low;
        if (child != notFound)
            return descend(child, vector, depth + 1, newChild);
        if (newChild != nullptr)
            child = *newChild;
        return notFound;
    }

    std::vector<Node_s> nodes_;
};

TEST(DxKDTree, agreesWithAPlainModel) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double special[] = {nan, -nan, HUGE_VAL, -HUGE_VAL, -0.0, 1e308, -1e308};
    const double steps[] = {0, 0, 0, 0.0009, -0.0009, 0.001, -0.001, 0.0099, -0.0101, 0.03, -0.03, -0.04, -0.05};
    unsigned int seed = 4200;
    for (const std::size_t dimension : {1U, 2U, 3U, 11U}) {
        std::cout << "dimension " << dimension << ": seed " << ++seed << "\n";
        std::mt19937 random(seed);
        const auto oneOf = [&random](const auto& values) { return values[random() % std::size(values)]; };
        CDxKDTree tree(static_cast<unsigned int>(dimension));
        PlainTree model;
        Vector_t vector(dimension);
        for (int call = 0; call < 20000; ++call) {
            const bool fresh = model.size() == 0 || random() % 3 == 0;
            if (!fresh)
                vector = model.vectorOf(static_cast<unsigned int>(random() % model.size()));
            for (double& component : vector)
                component = (fresh ? static_cast<double>(random() % 40) / (dimension == 1 ? 0.01 : 4) : component) +
                            oneOf(steps);
            if (random() % 20 == 0)
                vector[random() % dimension] = oneOf(special);
            if (random() % 2 == 0)
                ASSERT_EQ(tree.insert(vector.data()), model.insert(vector)) << call;
            else
                ASSERT_EQ(tree.find(vector.data()), model.find(vector)) << call;
            ASSERT_EQ(tree.getCount(), model.size()) << call;
        }
        for (unsigned int id = 0; id < model.size(); ++id)
            ASSERT_EQ(std::memcmp(tree.getVector(id), model.vectorOf(id).data(), dimension * sizeof(double)), 0) << id;
    }
}

TEST(DxKDTree, toleranceAndSlackHaveSharpEdges) {
    CDxKDTree apart(11);
    Vector_t vector(11, 5.0);
    EXPECT_EQ(apart.find(vector.data()), notFound);
    EXPECT_EQ(apart.insert(vector.data()), 0U);
    EXPECT_EQ(apart.insert(Vector_t(11, 5.0 + 0.0009).data()), 0U);
    EXPECT_EQ(apart.insert(Vector_t(11, 5.0 - 0.0009).data()), 0U);
    EXPECT_EQ(apart.getCount(), 1U);
    EXPECT_EQ(apart.insert(Vector_t(11, 5.0 + 0.001).data()), 1U);

    // Two nodes that lie within the tolerance of each query; which one answers tells the side.
    const struct {
        double stored, query;
        unsigned int found;
    } cases[] = {{-0.035, -0.039, 1}, {-0.035, -0.041, notFound}, {-0.045, -0.041, 1}, {-0.045, -0.039, notFound},
                 {-0.03, -0.035, 1},  {-0.05, -0.0455, 1},        {-0.04, -0.035, 1},  {-0.04, -0.0405, notFound}};
    for (const auto& c : cases) {
        CDxKDTree tree(2);
        for (const Vector_t& stored : {Vector_t{0, 0}, Vector_t{c.stored, 7}})
            tree.insert(stored.data());
        EXPECT_EQ(tree.find(Vector_t{c.query, 7}.data()), c.found) << c.stored << " " << c.query;
    }
}

TEST(DxKDTree, blocksHold1024Nodes) {
    CDxKDTree tree(3);
    const auto vectorOf = [](unsigned int id) { return Vector_t{id % 16 * 1.0, id / 16 % 16 * 1.0, id / 256 * 1.0}; };
    for (unsigned int id = 0; id < 2049; ++id) {
        if (id == 1024 || id == 2048) {
            EXPECT_EQ(tree.getVector(id), nullptr);
        }
        ASSERT_EQ(tree.insert(vectorOf(id).data()), id);
        ASSERT_EQ(tree.getCount(), id + 1);
    }
    for (const unsigned int id : {0U, 1023U, 1024U, 1025U, 2047U, 2048U})
        EXPECT_EQ(Vector_t(tree.getVector(id), tree.getVector(id) + 3), vectorOf(id));
    EXPECT_NE(tree.getVector(3071), nullptr);
    EXPECT_EQ(tree.getVector(3072), nullptr);
    EXPECT_EQ(tree.getVector(notFound), nullptr);
    EXPECT_EQ(CDxKDTree(3).getVector(2000), nullptr);
}

/** One long chain in either direction; counts the wrong answers. */
void* fillSorted(void* wrong) {
    for (const double step : {1.0, -1.0}) {
        CDxKDTree tree(1);
        for (unsigned int id = 0; id < 10000; ++id) {
            const double value = step * id;
            *static_cast<int*>(wrong) += tree.insert(&value) == id ? 0 : 1;
        }
        for (unsigned int id = 0; id < 10000; id += 101) {
            const double value = step * id + 0.005;
            *static_cast<int*>(wrong) += tree.find(&value) == id ? 0 : 1;
        }
    }
    return nullptr;
}

TEST(DxKDTree, sortedInputNeedsNoStack) {
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
