#include "DxKDTreeDescent.h"
#include "DxKDTreeSkips.h"

#include <cstdlib>
#include <cstring>
#include <memory>
#include <utility>

namespace ImportCommon {

namespace {

constexpr std::size_t cacheLine = 64;

struct NoObserver {
    void onNode(unsigned int, unsigned int) {}
    void onSkip(unsigned int) {}
};

} // namespace

CDxKDTree::CDxKDTree(unsigned int dimension) : dimension_(dimension) {
    addBlock();
}

CDxKDTree::~CDxKDTree() {
    while (skips_ != nullptr) {
        std::free(std::exchange(skips_, skips_->allocatedBefore));
    }
    while (blockCount_ > 0) {
        std::free(blocks_[--blockCount_].memory);
    }
    std::free(blocks_);
}

unsigned int CDxKDTree::insert(const double* vector) {
    const bool isFull = count_ == blockCount_ * Block::nodeCount;
    if (blockCount_ == 0 || (isFull && !addBlock())) {
        return 0;
    }
    // The vector is written before a match is looked for; without one it stays.
    double* stored = vectorAt(count_);
    std::memmove(stored, vector, sizeof(double) * dimension_);
    const Query query(stored, dimension_);
    Node_s& node = nodeAt(count_);
    node.projection = query.projection;
    if (count_ == 0) {
        node.split = dimension_ > 0 ? stored[0] : 0;
        return count_++;
    }
    SkipBuilder skips(*this);
    const Way way = descend(query, skips);
    if (way.match != NotFound) {
        return way.match;
    }
    node.split = stored[way.axis];
    *way.place = count_;
    skips.finish(count_, query, way);
    return count_++;
}

unsigned int CDxKDTree::find(const double* vector) {
    NoObserver observer;
    return count_ > 0 ? descend(Query(vector, dimension_), observer).match : NotFound;
}

const double* CDxKDTree::getVector(unsigned int id) {
    return id / Block::nodeCount < blockCount_ ? vectorAt(id) : nullptr;
}

unsigned int CDxKDTree::getCount() const {
    return count_;
}

bool CDxKDTree::addBlock() {
    constexpr unsigned int mostBlocks = NotFound / Block::nodeCount;
    void* blocks = blockCount_ < mostBlocks ? std::realloc(blocks_, (blockCount_ + 1) * sizeof(Block)) : nullptr;
    if (blocks == nullptr) {
        return false;
    }
    blocks_ = static_cast<Block*>(blocks);
    constexpr std::size_t nodeBytes = Block::nodeCount * sizeof(Node_s);
    std::size_t size = nodeBytes + Block::nodeCount * sizeof(double) * dimension_ + cacheLine;
    void* memory = std::calloc(1, size);
    if (memory == nullptr) {
        return false;
    }
    Block& added = blocks_[blockCount_++];
    added.memory = memory;
    added.nodes = static_cast<Node_s*>(std::align(cacheLine, size - cacheLine, memory, size));
    added.vectors = reinterpret_cast<double*>(added.nodes + Block::nodeCount);
    return true;
}

} // namespace ImportCommon
