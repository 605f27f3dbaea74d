#include "DxKDTreeCells.h"

#include <ImportCommon/DxKDTree.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>
#include <new>
#include <utility>

namespace ImportCommon {

namespace {

// In the place of an id: only a descent can tell.
constexpr unsigned int unsure = CDxKDTree::NotFound - 1;

constexpr unsigned int nodesPerBlock = 1024;
constexpr double matchTolerance = 0.01;
static_assert(matchTolerance < CDxKDTreeCells::reach, "no match is overlooked");

// A vector that is below a node by no more than this still goes to the node's high side. Stored ids depend on it.
constexpr double highSideSlack = 0.04;

constexpr unsigned int mostBlocks = unsure / nodesPerBlock;
constexpr std::size_t cacheLine = 64;

} // namespace

/** A node; its vector stands behind it. What a descent needs of most nodes stands in one cache line. */
struct alignas(double) CDxKDTree::Node_s {
    class Chain;

    Node_s* high;
    Node_s* low;
    Skip* skip; // the longest one from here
    unsigned int id;
    float room; // how far a component may move, at least, for the vector to still come by here; 0 outside of the tree

    double* vector() { return reinterpret_cast<double*>(this + 1); }

    /** Bytes of a node with its vector, in whole cache lines. */
    static std::size_t size(unsigned int dimension) {
        return (sizeof(Node_s) + sizeof(double) * dimension + cacheLine - 1) / cacheLine * cacheLine;
    }
};

/**
 * A short cut from a node to one of those below it. On the way the sides that are taken depend on the axis alone, and it
 * is for vectors that can't match anything on it and go to all these sides; the outermost components of its nodes, which
 * stand behind this, tell. Nodes stay where they are, so a skip stays valid.
 */
struct alignas(double) CDxKDTree::Skip {
    Node_s* target;
    Skip* shorter;
    Skip* allocatedBefore;
    unsigned int level;
    unsigned int axis; // of the target
    unsigned int low;  // bits of the axes where the way goes to the low side; 0 when there are too many axes

    bool isLow(unsigned int i) const { return low != 0 && (low >> i & 1) != 0; }

    /** The largest component where the way goes to the high side, the smallest where it goes to the low side. */
    double* outermost() { return reinterpret_cast<double*>(this + 1); }

    /** Takes a vector over. What is not a number doesn't count: whatever is compared with it goes to the low side. */
    void include(const double* vector, unsigned int dimension) {
        for (unsigned int i = 0; i < dimension; ++i) {
            const double component = outermost()[i];
            outermost()[i] = isLow(i) ? std::fmin(component, vector[i]) : std::fmax(component, vector[i]);
        }
    }

    /** Whether a vector may take it. If so, @p room is lowered to what the nodes in between leave. */
    bool mayPass(const double* vector, unsigned int dimension, bool mayMatch, double& room) {
        double apart = 0;
        double least = room;
        for (unsigned int i = 0; i < dimension; ++i) {
            const double difference = vector[i] - outermost()[i];
            if (isLow(i) ? !(difference < -highSideSlack) : !(difference >= -highSideSlack)) {
                return false;
            }
            apart = std::max(apart, isLow(i) ? -difference : difference);
            least = std::min(least, std::fabs(difference + highSideSlack));
        }
        if (mayMatch && apart < matchTolerance) {
            return false;
        }
        room = least;
        return true;
    }
};

/** Where a descent came to. */
struct CDxKDTree::Way {
    Node_s* match;
    Node_s** place; // of the vector's node, without a match
    double room;    // how far a component may move, at least, without another way
};

struct CDxKDTree::Block {
    void* memory;
    char* nodes; // the first address in the memory that begins a cache line
};

/**
 * The last nodes of a descent, as long as each axis has its side. Sorted input makes them very many, so skips are laid
 * over them: over 16 nodes, over 16 of those skips, and so on, each when a descent comes by where it ends.
 */
class CDxKDTree::Node_s::Chain {
public:
    Chain(Node_s* root, Skip*& skips, unsigned int dimension) : skips_(skips), dimension_(dimension) { begin(root); }

    /** The descent goes from a node to a child, which may be null. */
    void step(Node_s* node, unsigned int axis, bool isHigh, Node_s* child, unsigned int childAxis) {
        // Sixteen nodes must have all axes among them, or a skip over them would not know its sides.
        if (dimension_ <= skipLength) {
            follow(node, 1U << axis, isHigh ? 0 : 1U << axis);
        } else if (!isHigh) {
            begin(child);
            return;
        }
        if (child != nullptr) {
            advance(child, 1, childAxis);
        }
    }

    /** The descent takes a skip. */
    void step(Node_s* node, const Skip& taken) {
        if (dimension_ <= skipLength) {
            follow(node, (1U << dimension_) - 1, taken.low);
        }
        advance(taken.target, skipLength << (levelBits * taken.level), taken.axis);
    }

private:
    static constexpr unsigned int levelBits = 4;
    static constexpr unsigned int skipLength = 1U << levelBits;
    static constexpr unsigned int longChain = 8 * skipLength;
    static constexpr unsigned int levels = 7; // a longer one would not fit a count of nodes

    void begin(Node_s* head) {
        head_ = head;
        length_ = 0;
        known_ = 0;
        low_ = 0;
    }

    /** Takes over to which side it goes on some axes; a chain that went to the other one ends at the node. */
    void follow(Node_s* node, unsigned int axes, unsigned int lowAxes) {
        if (((low_ ^ lowAxes) & known_ & axes) != 0) {
            begin(node);
        }
        known_ |= axes;
        low_ |= lowAxes;
    }

    /** The descent arrived at a node that is @p count nodes further. */
    void advance(Node_s* node, unsigned int count, unsigned int axis) {
        length_ += count;
        unsigned int unit = skipLength;
        for (unsigned int level = 0; level < levels && length_ % unit == 0; ++level, unit *= skipLength) {
            if (unit > count) { // else there is a skip already, the one that the descent took
                addSkip(length_ == unit ? head_ : starts_[level], node, level, axis);
            }
            starts_[level] = node;
        }
    }

    /** Adds a skip from one node to another unless there is one. Without memory the way stays as long as it is. */
    void addSkip(Node_s* start, Node_s* end, unsigned int level, unsigned int axis) {
        const bool isThere = start->skip != nullptr && start->skip->level >= level;
        const bool isRare = low_ != 0 && length_ < longChain; // few vectors would take it, and all have to look at it
        if (isThere || isRare || (level > 0 && !isSkipped(start, end, level - 1))) {
            return;
        }
        void* memory = std::malloc(sizeof(Skip) + sizeof(double) * dimension_);
        if (memory == nullptr) {
            return;
        }
        Skip* added = new (memory) Skip{end, start->skip, skips_, level, axis, low_};
        std::memcpy(added->outermost(), start->vector(), sizeof(double) * dimension_);
        if (level > 0) {
            for (Node_s* node = start; node != end; node = node->skip->target) {
                added->include(node->skip->outermost(), dimension_);
            }
        } else {
            unsigned int nodeAxis = (axis + skipLength * (dimension_ - 1)) % dimension_; // 16 nodes before
            for (Node_s* node = start; node != end; nodeAxis = (nodeAxis + 1) % dimension_) {
                added->include(node->vector(), dimension_);
                node = added->isLow(nodeAxis) ? node->low : node->high;
            }
        }
        start->skip = added;
        skips_ = added;
    }

    /** Whether skips of a level lead from one node to another. */
    static bool isSkipped(const Node_s* start, const Node_s* end, unsigned int level) {
        for (unsigned int i = 0; i < skipLength; ++i) {
            if (start->skip == nullptr || start->skip->level != level) {
                return false;
            }
            start = start->skip->target;
        }
        return start == end;
    }

    Node_s* head_ = nullptr;
    Skip*& skips_;
    unsigned int dimension_;
    unsigned int length_ = 0;
    unsigned int known_ = 0; // bits of the axes whose side is known
    unsigned int low_ = 0;   // and of those where it is the low one
    Node_s* starts_[levels] = {};
};

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

/*
 * A tree has two parts that know about its nodes. Results are those of the descent, but the cells can mostly tell them:
 * - When nothing is within the tolerance there is no match. A new node is not even put into the tree until a vector
 *   comes that is close to a stored one.
 * - The way of a vector that equals a stored one ends there, since that met no match on it when it was added.
 * - A vector that is close to a stored one takes the same way to it when no comparison on that was closer.
 */
unsigned int CDxKDTree::insert(const double* vector) {
    const bool isFull = count_ == blockCount_ * nodesPerBlock;
    if (blockCount_ == 0 || (isFull && !addBlock())) {
        return 0;
    }
    // From here, since reading a copy that was only just made has to wait for it.
    const std::uint64_t cell = CDxKDTreeCells::cellOf(vector, dimension_);
    // The node is written before a match is looked for; without one it stays.
    Node_s& node = nodeAt(count_);
    std::memmove(node.vector(), vector, sizeof(double) * dimension_);
    if (count_ == 0) {
        cells_.reset(new (std::nothrow) CDxKDTreeCells);
    }
    const unsigned int known = recall(node.vector(), cell);
    if (known == unsure) {
        completeTree();
        const Way way = descend(node.vector(), true);
        if (way.match != nullptr) {
            return way.match->id;
        }
        addToTree(node, way);
    } else if (known != NotFound) {
        return known;
    }
    // A vector that doesn't even match itself is never looked for. Without memory the tree is left to itself.
    if (cells_ != nullptr && isFinite(node.vector()) && !cells_->add(cell, count_)) {
        cells_.reset();
    }
    node.id = count_;
    return count_++;
}

unsigned int CDxKDTree::find(const double* vector) {
    const unsigned int known = recall(vector, CDxKDTreeCells::cellOf(vector, dimension_));
    if (known != unsure) {
        return known;
    }
    completeTree();
    const Node_s* match = descend(vector, true).match;
    return match != nullptr ? match->id : NotFound;
}

const double* CDxKDTree::getVector(unsigned int id) {
    return id / nodesPerBlock < blockCount_ ? nodeAt(id).vector() : nullptr;
}

unsigned int CDxKDTree::getCount() const {
    return count_;
}

bool CDxKDTree::addBlock() {
    void* blocks = blockCount_ < mostBlocks ? std::realloc(blocks_, (blockCount_ + 1) * sizeof(Block)) : nullptr;
    if (blocks == nullptr) {
        return false;
    }
    blocks_ = static_cast<Block*>(blocks);
    std::size_t size = nodesPerBlock * Node_s::size(dimension_) + cacheLine;
    void* memory = std::calloc(1, size);
    if (memory == nullptr) {
        return false;
    }
    Block& added = blocks_[blockCount_++];
    added.memory = memory;
    added.nodes = static_cast<char*>(std::align(cacheLine, size - cacheLine, memory, size));
    return true;
}

CDxKDTree::Node_s& CDxKDTree::nodeAt(unsigned int id) const {
    return *reinterpret_cast<Node_s*>(blocks_[id / nodesPerBlock].nodes +
                                      id % nodesPerBlock * Node_s::size(dimension_));
}

bool CDxKDTree::isFinite(const double* vector) const {
    bool isFinite = true;
    for (unsigned int i = 0; i < dimension_; ++i) {
        isFinite &= std::fabs(vector[i]) <= std::numeric_limits<double>::max();
    }
    return isFinite;
}

/** The id of the match of a vector, NotFound, or unsure. */
unsigned int CDxKDTree::recall(const double* vector, std::uint64_t cell) const {
    if (count_ == 0) {
        return NotFound;
    }
    if (cells_ == nullptr) {
        return unsure;
    }
    // Who is on the vector's way for sure, and who may be. The first on any way has the lowest id.
    unsigned int match = NotFound;
    unsigned int possible = NotFound;
    const auto consider = [&](unsigned int id) {
        Node_s& node = nodeAt(id);
        const double apart = distance(node, vector);
        if (apart < matchTolerance) {
            unsigned int& lowest = apart < node.room ? match : possible;
            lowest = std::min(lowest, id);
        }
        return false;
    };
    bool isEqual = false;
    bool isComplete = cells_->forEach(cell, [&](unsigned int id) {
        isEqual = std::equal(vector, vector + dimension_, nodeAt(id).vector());
        match = isEqual ? id : match;
        return isEqual || consider(id);
    });
    if (isEqual) {
        return match;
    }
    const CDxKDTreeCells::Neighbours neighbours(vector, dimension_, cell);
    for (unsigned int i = 0; i < neighbours.count() && isComplete; ++i) {
        isComplete = cells_->forEach(neighbours[i], consider);
    }
    return isComplete && match <= possible ? match : unsure;
}

/** The distance of a node's vector, or some number that is not less than the tolerance, or no number. */
double CDxKDTree::distance(Node_s& node, const double* vector) const {
    const double* stored = node.vector();
    double sum = 0;
    // No term is negative, so once the sum has reached the tolerance (or is not a number) it stays there.
    for (unsigned int i = 0; i < dimension_ && sum < matchTolerance; ++i) {
        sum += std::fabs(stored[i] - vector[i]);
    }
    return sum;
}

/** Puts the nodes into the tree that aren't in it yet, in the order of their ids. They are known to have no match. */
void CDxKDTree::completeTree() {
    while (inTree_ < count_) {
        Node_s& node = nodeAt(inTree_);
        addToTree(node, inTree_ > 0 ? descend(node.vector(), false) : Way{nullptr, nullptr, HUGE_VAL});
    }
}

void CDxKDTree::addToTree(Node_s& node, const Way& way) {
    if (way.place != nullptr) {
        *way.place = &node;
    }
    // What rounding may add to the distance that this is compared with is far less.
    node.room = static_cast<float>(std::min(way.room, 1.0)) - 1e-6F;
    ++inTree_;
}

/** Goes down from the root to a match. A loop, since sorted input makes the tree one long chain. */
CDxKDTree::Way CDxKDTree::descend(const double* vector, bool mayMatch) {
    Way way{&nodeAt(0), nullptr, HUGE_VAL};
    if (dimension_ == 0) {
        return way; // nothing can differ
    }
    Node_s* node = &nodeAt(0);
    Node_s::Chain chain(node, skips_, dimension_);
    unsigned int axis = 0;
    while (node != nullptr) {
        Skip* skip = node->skip;
        while (skip != nullptr && !skip->mayPass(vector, dimension_, mayMatch, way.room)) {
            skip = skip->shorter;
        }
        if (skip != nullptr) {
            chain.step(node, *skip);
            node = skip->target;
            axis = skip->axis;
            continue;
        }
        // Which child it will be is as good as random, and waiting for either is what a descent's time goes to.
        __builtin_prefetch(node->high);
        __builtin_prefetch(node->low);
        // One difference is mostly enough to tell that a node is no match.
        const double difference = vector[axis] - node->vector()[axis];
        if (mayMatch && !(std::fabs(difference) >= matchTolerance) && distance(*node, vector) < matchTolerance) {
            break;
        }
        const bool high = difference >= -highSideSlack;
        way.room = std::min(way.room, std::fabs(difference + highSideSlack));
        way.place = high ? &node->high : &node->low;
        const unsigned int nextAxis = axis + 1 == dimension_ ? 0 : axis + 1;
        chain.step(node, axis, high, *way.place, nextAxis);
        node = *way.place;
        axis = nextAxis;
    }
    way.match = node;
    return way;
}

} // namespace ImportCommon
