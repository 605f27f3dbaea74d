#include <ImportCommon/DxKDTree.h>

#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <cstring>

namespace ImportCommon {

namespace {

constexpr unsigned int nodesPerBlock = 1024;
constexpr double matchTolerance = 0.01;

// A vector that is below a node by no more than this still goes to the node's high side. Stored ids depend on it.
constexpr double highSideSlack = 0.04;

} // namespace

/** A node; its vector stands behind it. */
struct CDxKDTree::Node_s {
    unsigned int id;
    Node_s* high;
    Node_s* low;

    double* vector() { return reinterpret_cast<double*>(this + 1); }
};

struct CDxKDTree::Block_s {
    Block_s* next;
    char* nodes;
    unsigned int used;
};

CDxKDTree::CDxKDTree(unsigned int dimension) : dimension_(dimension) {
    first_ = addBlock();
    if (first_ != nullptr && allocateNodes(*first_)) {
        current_ = first_;
    }
}

CDxKDTree::~CDxKDTree() {
    while (first_ != nullptr) {
        Block_s* next = first_->next;
        std::free(first_->nodes);
        std::free(first_);
        first_ = next;
    }
}

unsigned int CDxKDTree::insert(const double* vector) {
    if (current_ == nullptr) {
        return 0;
    }
    if (current_->used == nodesPerBlock) {
        Block_s* block = addBlock();
        if (block == nullptr) {
            return 0;
        }
        current_->next = block;
        current_ = block;
    }
    // A block that got no memory for its nodes stays in place, and each insert asks for it again.
    if (current_->nodes == nullptr && !allocateNodes(*current_)) {
        return 0;
    }
    // The node is written before a match is looked for; without one it stays.
    Node_s* node = nodeAt(*current_, current_->used);
    std::memmove(node->vector(), vector, sizeof(double) * dimension_);
    if (count_ > 0) {
        Node_s** place = nullptr;
        if (const Node_s* match = descend(node->vector(), place)) {
            return match->id;
        }
        *place = node;
    }
    node->id = count_;
    ++current_->used;
    return count_++;
}

unsigned int CDxKDTree::find(const double* vector) {
    Node_s** place = nullptr;
    const Node_s* match = count_ > 0 ? descend(vector, place) : nullptr;
    return match != nullptr ? match->id : NotFound;
}

const double* CDxKDTree::getVector(unsigned int id) {
    const Block_s* block = first_;
    while (block != nullptr && id >= nodesPerBlock) {
        block = block->next;
        id -= nodesPerBlock;
    }
    return block != nullptr && block->nodes != nullptr ? nodeAt(*block, id)->vector() : nullptr;
}

unsigned int CDxKDTree::getCount() const {
    return count_;
}

/** A new block without room for nodes yet; null without memory. */
CDxKDTree::Block_s* CDxKDTree::addBlock() {
    return static_cast<Block_s*>(std::calloc(1, sizeof(Block_s)));
}

bool CDxKDTree::allocateNodes(Block_s& block) const {
    block.nodes = static_cast<char*>(std::calloc(nodesPerBlock, sizeof(Node_s) + sizeof(double) * dimension_));
    return block.nodes != nullptr;
}

CDxKDTree::Node_s* CDxKDTree::nodeAt(const Block_s& block, unsigned int index) const {
    return reinterpret_cast<Node_s*>(block.nodes + index * (sizeof(Node_s) + sizeof(double) * dimension_));
}

bool CDxKDTree::matches(Node_s& node, const double* vector) const {
    const double* stored = node.vector();
    double distance = 0;
    // No term is negative, so once the sum has reached the tolerance (or is not a number) it stays there.
    for (unsigned int i = 0; i < dimension_ && matchTolerance > distance; ++i) {
        distance += std::fabs(stored[i] - vector[i]);
    }
    return matchTolerance > distance;
}

/**
 * Goes down from the root to a match. Without one the result is null and @p place is where the vector's node belongs. A
 * loop, since sorted input makes the tree one long chain.
 */
CDxKDTree::Node_s* CDxKDTree::descend(const double* vector, Node_s**& place) {
    Node_s* node = nodeAt(*first_, 0);
    unsigned int axis = 0;
    while (node != nullptr && !matches(*node, vector)) {
        const bool high = vector[axis] - node->vector()[axis] >= -highSideSlack;
        place = high ? &node->high : &node->low;
        node = *place;
        axis = axis + 1 == dimension_ ? 0 : axis + 1;
    }
    return node;
}

} // namespace ImportCommon
