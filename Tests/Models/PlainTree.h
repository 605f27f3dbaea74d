/**
 * @file PlainTree.h
 * The rule of the k-d tree's descent, word for word: every node on the way is looked at, with the distance in full.
 */
#pragma once

#include <cmath>
#include <cstddef>
#include <vector>

class PlainTree {
public:
    static constexpr unsigned int notFound = 0xFFFFFFFF;
    using Vector = std::vector<double>;

    /** The id of the match or of the new node. */
    unsigned int insert(const Vector& vector) {
        unsigned int* place = nullptr;
        const unsigned int found = descend(vector, place);
        if (found != notFound) {
            return found;
        }
        *place = static_cast<unsigned int>(nodes_.size());
        nodes_.push_back({vector, notFound, notFound});
        return static_cast<unsigned int>(nodes_.size() - 1);
    }

    unsigned int find(const Vector& vector) {
        unsigned int* place = nullptr;
        return descend(vector, place);
    }

    std::size_t size() const { return nodes_.size(); }
    const Vector& vectorOf(unsigned int id) const { return nodes_[id].vector; }

private:
    struct Node {
        Vector vector;
        unsigned int high;
        unsigned int low;
    };

    /** The match; without one @p place is where the vector's node belongs. */
    unsigned int descend(const Vector& vector, unsigned int*& place) {
        place = &root_;
        for (std::size_t depth = 0; *place != notFound; ++depth) {
            Node& node = nodes_[*place];
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
    std::vector<Node> nodes_;
};
