/**
 * @file Pieces.h
 * Which faces hang together, which way they have to be turned, and whether they enclose something.
 */
#pragma once

#include "geometry/Body.h"
#include "geometry/Work.h"

#include <cstdint>
#include <vector>

namespace IfcReader {

/** Faces that hang together by their edges, turned alike. */
struct Piece {
    struct Member {
        std::uint32_t face = 0; ///< its number
        bool turned = false;    ///< has to be turned round
    };

    std::vector<Member> members;
    bool closed = true;
    bool turned = false; ///< some of them have to be turned round
};

/**
 * Sorts faces by what they hang together with. Corners less than a tenth of a millimetre apart are one, and corners
 * that lie on an edge of another face belong to that edge too.
 * @throw LimitError
 */
std::vector<Piece> piecesOf(const std::vector<Face>& faces, Work& work);

/** Moves the faces of a piece out of those that it was found in, and turns them alike. */
std::vector<Face> takeFaces(const Piece& piece, std::vector<Face>& from);

} // namespace IfcReader
