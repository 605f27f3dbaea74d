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
        EXPECT_EQ(tree.getVector(static_cast<unsigned int>((model.size() + 1023) / 1024 * 1024)), nullptr);
    }
}

/** One long chain; counts the wrong answers. */
void* fillSorted(void* wrong) {
    CDxKDTree tree(1);
    for (unsigned int id = 0; id < 10000; ++id) {
        const double value = id;
        *static_cast<int*>(wrong) += tree.insert(&value) == id && tree.find(&value) == id ? 0 : 1;
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
