/**
 * @file DxKDTree.h
 * A k-d tree that finds stored vectors within a small tolerance.
 */
#pragma once

#include <ImportCommon/Export.h>

namespace ImportCommon {

/**
 * Stores vectors of doubles and finds one that matches a given vector: the sum of absolute differences is below 0.01.
 *
 * A look-up is one descent without backtracking, so a match on the far side of a split is not found. Nodes are numbered
 * in the order of insertion, from 0, and are never removed. Vectors with a component that is not finite match nothing;
 * in a tree of dimension 0 everything matches. Not safe for use by several threads at a time.
 */
class IMPORT_COMMON_API CDxKDTree {
public:
    /** What find returns when there is no match. */
    static constexpr unsigned int NotFound = 0xFFFFFFFF;

    /**
     * An empty tree for vectors of @p dimension doubles. Without memory it stays empty for good.
     * @param dimension  number of doubles in a vector
     */
    explicit CDxKDTree(unsigned int dimension);

    /** Releases all nodes, and with them the vectors that getVector gave. */
    ~CDxKDTree();

    /** Not copied. */
    CDxKDTree(const CDxKDTree&) = delete;

    /** Not copied. */
    CDxKDTree& operator=(const CDxKDTree&) = delete;

    /**
     * Adds a copy of the vector unless a match is met on its way down.
     * @param vector  as many doubles as the tree has dimensions; copied
     * @return the id of the new node or of the match; without memory 0, which can't be told from the first node's id
     */
    unsigned int insert(const double* vector);

    /**
     * Id of a match met on the vector's way down, or NotFound.
     * @param vector  as many doubles as the tree has dimensions
     * @return the id or NotFound
     */
    unsigned int find(const double* vector);

    /**
     * The vector of a node, owned by the tree and valid as long as the tree.
     * @param id  compared with the room in the tree only: an id at or above getCount() may give a vector without
     *            meaning
     * @return null when the id is beyond the tree's blocks of 1024 nodes
     */
    const double* getVector(unsigned int id);

    /**
     * Number of nodes.
     * @return the number
     */
    unsigned int getCount() const;

private:
    friend class CDxKDTreeProbe; // a test that looks at how a descent went
    struct Node_s;
    struct Block;
    struct Skip;
    struct Query;
    struct Way;
    class IMPORT_COMMON_LOCAL SkipBuilder;

    IMPORT_COMMON_LOCAL bool addBlock();
    IMPORT_COMMON_LOCAL Node_s& nodeAt(unsigned int id) const;
    IMPORT_COMMON_LOCAL double* vectorAt(unsigned int id) const;
    IMPORT_COMMON_LOCAL bool matches(unsigned int id, const Query& query) const;
    template <typename Observer>
    IMPORT_COMMON_LOCAL Way descend(const Query& query, Observer& observer) const;

    unsigned int count_ = 0;
    unsigned int dimension_;
    unsigned int blockCount_ = 0;
    Block* blocks_ = nullptr;
    Skip* skips_ = nullptr; // the one that was allocated last
};

} // namespace ImportCommon
