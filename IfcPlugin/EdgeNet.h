/**
 * @file EdgeNet.h
 * How the polygons of a surface hang together.
 */
#pragma once

#include "Surface.h"

/** Vertices closer than this are one, in metres. */
constexpr double joinDistance = 1e-4;

/**
 * The edges that polygons share.
 *
 * Readers cut openings into walls so that a corner of one polygon may lie on the middle of another's edge, and do not
 * turn all polygons of a body to the same side. Both are put right here before the net says what is closed.
 */
class EdgeNet {
public:
    explicit EdgeNet(const Surface& surface);

    /** One polygon of a piece, and whether it has to be turned over to fit the first one. */
    struct Side {
        std::uint32_t polygon;
        bool turned;
    };

    /** Polygons that hang together. */
    using Piece = std::vector<Side>;

    /** The pieces without a hole: each of their edges is run through equally often in both directions. */
    std::vector<Piece> closedPieces() const;

private:
    struct Use {
        std::uint64_t edge; ///< lower vertex number in the upper half, higher one in the lower half
        std::uint32_t polygon;
        bool upwards; ///< run through from the lower vertex number to the higher one
    };

    void findEdges();
    void splitEdges(const std::vector<Vector>& vertices);
    std::vector<std::size_t> edgeBegins() const;

    std::vector<Surface::Polygon> polygons_;
    std::vector<Use> uses_; ///< sorted by edge
};
