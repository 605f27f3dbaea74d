/**
 * @file Pieces.h
 * Which faces hang together, which way they have to be turned, and whether they enclose something.
 */
#pragma once

#include "geometry/Body.h"
#include "geometry/Work.h"

#include <vector>

namespace IfcReader {

/** Faces that hang together by their edges, turned alike. */
struct Piece {
    std::vector<Face> faces;
    bool closed = true;
    bool turned = false; ///< some of them had to be turned round
};

/**
 * Sorts faces by what they hang together with. Corners less than a tenth of a millimetre apart are one, and corners
 * that lie on an edge of another face belong to that edge too.
 * @throw LimitError
 */
std::vector<Piece> piecesOf(const std::vector<Face>& faces, Work& work);

} // namespace IfcReader
