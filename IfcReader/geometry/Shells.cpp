#include "geometry/Shells.h"

#include "geometry/Curves.h"
#include "geometry/Pieces.h"
#include "geometry/Placements.h"

#include <algorithm>

namespace IfcReader {

namespace {

constexpr double samePoint = 1e-9; ///< in metres

void appendDistinct(Loop& loop, const Vector& p) {
    if (loop.empty() || length(p - loop.back()) > samePoint) {
        loop.push_back(p);
    }
}

Vector vertexOf(const Item& vertex) {
    return pointOf(vertex.is("IFCVERTEXPOINT") ? vertex.child(0) : vertex);
}

/** The part of a closed or open curve from one point on it to another, without the last one. */
Loop partBetween(const Item& curve, const Vector& from, const Vector& to, bool sense) {
    Loop path = Curves::path(curve);
    if (!sense) {
        std::reverse(path.begin(), path.end());
    }
    const auto nearest = [&](const Vector& p) {
        const auto found = std::min_element(
            path.begin(), path.end(), [&](const Vector& a, const Vector& b) { return length(a - p) < length(b - p); });
        return static_cast<std::size_t>(found - path.begin());
    };
    const std::size_t first = nearest(from);
    const std::size_t last = nearest(to);
    Loop part{from};
    if (path.size() > 2 && (first < last || isClosed(path))) {
        const std::size_t size = isClosed(path) ? path.size() - 1 : path.size();
        for (std::size_t i = (first + 1) % size; i != last % size && part.size() < size; i = (i + 1) % size) {
            appendDistinct(part, path[i]);
        }
    }
    return part;
}

/** An IfcEdgeLoop of straight and curved edges. */
Loop edgeLoop(const Item& item) {
    Loop loop;
    for (const std::uint64_t id : item.references(0)) {
        const Item oriented = item.items().at(id);
        const bool isOriented = oriented.is("IFCORIENTEDEDGE");
        const Item edge = isOriented ? oriented.child(2) : oriented;
        const Vector start = vertexOf(edge.child(0));
        const Vector end = vertexOf(edge.child(1));
        Loop part{start};
        if (edge.is("IFCEDGECURVE") && !edge.child(2).is("IFCLINE")) {
            part = partBetween(edge.child(2), start, end, edge.word(3) != "F");
        }
        part.push_back(end);
        if (isOriented && oriented.word(3) == "F") {
            std::reverse(part.begin(), part.end());
        }
        std::for_each(part.begin(), part.end(), [&](const Vector& p) { appendDistinct(loop, p); });
    }
    return loop;
}

Loop loopOf(const Item& item) {
    Loop loop;
    if (item.is("IFCPOLYLOOP")) {
        loop.reserve(4); // most faces have so many corners
        item.forEachReference(0, [&](std::uint64_t id) { appendDistinct(loop, pointOf(item.items().at(id))); });
    } else if (item.is("IFCEDGELOOP")) {
        loop = edgeLoop(item);
    } else {
        item.fail("no bound of a face that is known");
    }
    if (loop.size() > 1 && length(loop.front() - loop.back()) <= samePoint) {
        loop.pop_back();
    }
    return loop;
}

/** A face: the bound that is named the outer one, else the one with the largest area, and the others as holes. */
Face faceOf(const Item& item) {
    std::vector<Loop> loops;
    std::size_t outer = 0;
    bool isNamed = false;
    item.forEachReference(0, [&](std::uint64_t id) {
        const Item bound = item.items().at(id);
        Loop loop = loopOf(bound.child(0));
        if (loop.size() < 3) {
            return;
        }
        if (bound.word(1) == "F") {
            std::reverse(loop.begin(), loop.end());
        }
        const bool named = bound.is("IFCFACEOUTERBOUND");
        if (named || (!isNamed && !loops.empty() && length(areaVector(loop)) > length(areaVector(loops[outer])))) {
            outer = loops.size();
        }
        isNamed = isNamed || named;
        loops.push_back(std::move(loop));
    });
    if (loops.empty()) {
        return {};
    }
    std::swap(loops[0], loops[outer]);
    Face face{std::move(loops[0]), {}};
    const Vector normal = areaVector(face.outer);
    for (std::size_t i = 1; i < loops.size(); ++i) {
        if (dot(areaVector(loops[i]), normal) > 0.0) {
            std::reverse(loops[i].begin(), loops[i].end());
        }
        face.holes.push_back(std::move(loops[i]));
    }
    return face;
}

std::vector<Face> shellFaces(const Item& shell) {
    std::vector<Face> faces;
    shell.forEachReference(0, [&](std::uint64_t id) {
        Face face = faceOf(shell.items().at(id));
        if (!face.outer.empty()) {
            faces.push_back(std::move(face));
        }
    });
    return faces;
}

void append(std::vector<Face>& to, std::vector<Face>&& from) {
    std::move(from.begin(), from.end(), std::back_inserter(to));
}

/** The faces of a closed shell, turned alike and outwards where the file does not. */
Body closedShell(const Item& shell) {
    Body body;
    body.faces = shellFaces(shell);
    const std::vector<Piece> pieces = piecesOf(body.faces, shell.items().work());
    const auto all = [&](auto predicate) { return std::all_of(pieces.begin(), pieces.end(), predicate); };
    body.solid = !pieces.empty() && all([](const Piece& piece) { return piece.closed; });
    if (!all([](const Piece& piece) { return !piece.turned; })) {
        std::vector<Face> turned;
        for (const Piece& piece : pieces) {
            Body part;
            part.faces = takeFaces(piece, body.faces);
            turnOutwards(part);
            append(turned, std::move(part.faces));
        }
        body.faces = std::move(turned);
    }
    turnOutwards(body);
    return body;
}

/** Moves the closed pieces among faces to @p bodies; the others are returned. */
std::vector<Face> splitOffClosedPieces(std::vector<Face> faces, Work& work, std::vector<Body>& bodies) {
    std::vector<Face> rest;
    for (const Piece& piece : piecesOf(faces, work)) {
        std::vector<Face> members = takeFaces(piece, faces);
        if (piece.closed) {
            bodies.emplace_back();
            bodies.back().faces = std::move(members);
            turnOutwards(bodies.back());
        } else {
            append(rest, std::move(members));
        }
    }
    return rest;
}

} // namespace

Body brepOf(const Item& item) {
    Body body = closedShell(item.child(0));
    if (body.faces.empty()) {
        item.fail("it has no faces");
    }
    if (item.is("IFCFACETEDBREPWITHVOIDS")) {
        for (const std::uint64_t id : item.references(1)) {
            Body hollow = closedShell(item.items().at(id));
            std::for_each(hollow.faces.begin(), hollow.faces.end(), [](Face& face) { flip(face); });
            body.solid = body.solid && hollow.solid;
            append(body.faces, std::move(hollow.faces));
        }
    }
    return body;
}

std::vector<Body> surfaceModelOf(const Item& item) {
    std::vector<Body> bodies;
    Body open;
    open.solid = false;
    Work& work = item.items().work();
    const std::vector<std::uint64_t> shells = item.references(0);
    for (const std::uint64_t id : shells) {
        append(open.faces, splitOffClosedPieces(shellFaces(item.items().at(id)), work, bodies));
    }
    if (shells.size() > 1 && !open.faces.empty()) {
        open.faces = splitOffClosedPieces(std::move(open.faces), work, bodies);
    }
    if (!open.faces.empty()) {
        bodies.push_back(std::move(open));
    }
    return bodies;
}

} // namespace IfcReader
