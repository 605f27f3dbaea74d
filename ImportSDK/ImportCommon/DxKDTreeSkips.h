/**
 * @file DxKDTreeSkips.h
 * Lays skips over a k-d tree.
 *
 * Invariant: a skip of level n leads from a node whose depth is a multiple of 16^(n+1) to a node 16^(n+1) levels below
 * it, and a node has at most one skip of each level. It belongs to the first descent that got so deep; that is where long
 * chains grow, which sorted input makes. A skip's bounds and those of all nodes above its start are together those of all
 * nodes above its target; what is known at the start already is left out, for each vector that comes there has passed it.
 */
#pragma once

#include "DxKDTreeDescent.h"

namespace ImportCommon {

/** Observes the descent of a new node and then adds the skips that end at it. */
class CDxKDTree::SkipBuilder {
public:
    explicit SkipBuilder(CDxKDTree& tree) : tree_(tree) {}

    void onNode(unsigned int id, unsigned int depth) {
        for (unsigned int level = 0; level < levels && depth % lengthOf(level) == 0; ++level) {
            starts_[level] = id;
        }
    }
    void onSkip(unsigned int) {}

    /** Adds the skips to a node that has been linked where the descent ended. */
    void finish(unsigned int target, const Query& query, const Way& way);

private:
    static constexpr unsigned int levelBits = 4;
    static constexpr unsigned int stepCount = 1U << levelBits; // in a skip
    static constexpr unsigned int levels = 7;                  // a longer one would not fit a depth

    static unsigned int lengthOf(unsigned int level) { return 1U << levelBits * (level + 1); }

    struct Cell;

    bool addSkip(unsigned int start, const Query& query, const Skip& skip);
    void walk(unsigned int start, unsigned int startDepth, const Query& query, unsigned int endDepth, Cell& cell) const;

    CDxKDTree& tree_;
    unsigned int starts_[levels] = {}; // for each level the last node of a descent where a skip can begin
};

} // namespace ImportCommon
