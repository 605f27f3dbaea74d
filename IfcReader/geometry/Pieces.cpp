#include "geometry/Pieces.h"

#include "geometry/PointMerger.h"
#include "geometry/PointTree.h"

#include <algorithm>
#include <numeric>

namespace IfcReader {

namespace {

using Index = std::uint32_t;
constexpr double samePlace = 1e-4; ///< in metres

/** A face's use of an edge between two corners. */
struct Use {
    Index low = 0;
    Index high = 0;
    Index face = 0;
    bool upwards = false; ///< from the lower number to the higher one

    bool isSameEdge(const Use& other) const { return low == other.low && high == other.high; }
    bool operator<(const Use& other) const { return low != other.low ? low < other.low : high < other.high; }
};

struct Neighbour {
    Index of = 0;
    Index face = 0;
    bool turned = false; ///< one of the two has to be turned round
};

/** The faces of some pieces, and their edges. */
class Net {
public:
    Net(const std::vector<Face>& faces, Work& work)
        : faces_(faces), work_(work), merger_(samePlace, countPoints(faces)), isOpen_(faces.size(), false) {
        collectUses();
        work_.add(uses_.size() * 4);
        std::stable_sort(uses_.begin(), uses_.end());
        splitAtCorners();
        forEachEdge([&](std::size_t begin, std::size_t end) { join(begin, end); });
    }

    std::vector<Piece> pieces() const;

private:
    const std::vector<Vector>& points() const { return merger_.points(); }

    void addUse(std::vector<Use>& uses, Index from, Index to, Index face) const {
        if (from != to) {
            uses.push_back({std::min(from, to), std::max(from, to), face, from < to});
        }
    }

    void collectUses() {
        for (Index f = 0; f < faces_.size(); ++f) {
            forEachLoop(faces_[f], [&](const Loop& loop) {
                if (loop.empty()) {
                    return;
                }
                const Index last = merger_.numberOf(loop.back());
                Index from = last;
                for (std::size_t i = 0; i + 1 < loop.size(); ++i) {
                    const Index to = merger_.numberOf(loop[i]);
                    addUse(uses_, from, to, f);
                    from = to;
                }
                addUse(uses_, from, last, f);
            });
        }
    }

    /** Calls @p visit with the range of uses of each edge. */
    template <typename Visitor>
    void forEachEdge(Visitor visit) const {
        for (std::size_t begin = 0; begin < uses_.size();) {
            std::size_t end = begin;
            while (end < uses_.size() && uses_[end].isSameEdge(uses_[begin])) {
                ++end;
            }
            visit(begin, end);
            begin = end;
        }
    }

    bool isMatched(std::size_t begin, std::size_t end) const { return (end - begin) % 2 == 0; }

    void splitAtCorners();
    std::vector<Index> cornersOn(const PointTree& tree, const Use& edge) const;
    void join(std::size_t begin, std::size_t end);
    void sortAround(std::size_t begin, std::size_t end);

    const std::vector<Face>& faces_;
    Work& work_;
    PointMerger merger_;
    std::vector<Use> uses_;
    std::vector<Neighbour> neighbours_;
    std::vector<bool> isOpen_; ///< has an edge that no other face has
};

/** The corners between the ends of an edge, from the lower number to the higher one. */
std::vector<Index> Net::cornersOn(const PointTree& tree, const Use& edge) const {
    const Vector a = points()[edge.low];
    const Vector along = points()[edge.high] - a;
    const double size = length(along);
    std::vector<std::pair<double, Index>> found;
    std::size_t looked = 0;
    tree.forEachNear(a, points()[edge.high], samePlace, [&](Index i) {
        ++looked;
        const Vector away = points()[i] - a;
        const double t = dot(away, along) / size;
        if (i != edge.low && i != edge.high && t > 0.0 && t < size && length(away - along * (t / size)) < samePlace) {
            found.emplace_back(t, i);
        }
    });
    work_.add(looked + 1);
    std::sort(found.begin(), found.end());
    std::vector<Index> corners;
    for (const auto& [t, i] : found) {
        corners.push_back(i);
    }
    return corners;
}

/** Edges that don't fit each other are split at the corners that lie on them. */
void Net::splitAtCorners() {
    std::vector<Index> loose;
    forEachEdge([&](std::size_t begin, std::size_t end) {
        if (!isMatched(begin, end)) {
            loose.push_back(uses_[begin].low);
            loose.push_back(uses_[begin].high);
        }
    });
    if (loose.empty()) {
        return;
    }
    std::sort(loose.begin(), loose.end());
    loose.erase(std::unique(loose.begin(), loose.end()), loose.end());
    const PointTree tree(points(), std::move(loose));
    std::vector<Use> split;
    forEachEdge([&](std::size_t begin, std::size_t end) {
        const std::vector<Index> corners = isMatched(begin, end) ? std::vector<Index>() : cornersOn(tree, uses_[begin]);
        work_.add(corners.size() * (end - begin));
        for (std::size_t i = begin; i < end; ++i) {
            const Use& use = uses_[i];
            Index from = use.low;
            for (std::size_t k = 0; k <= corners.size(); ++k) {
                const Index to = k < corners.size() ? corners[k] : use.high;
                addUse(split, use.upwards ? from : to, use.upwards ? to : from, use.face);
                from = to;
            }
        }
    });
    uses_ = std::move(split);
    work_.add(uses_.size() * 4);
    std::stable_sort(uses_.begin(), uses_.end());
}

/** Orders the uses of an edge by the direction in which their faces lie from it. */
void Net::sortAround(std::size_t begin, std::size_t end) {
    const Vector axis = normalized(points()[uses_[begin].high] - points()[uses_[begin].low]);
    const Vector x = perpendicular(axis);
    const Vector y = cross(axis, x);
    std::vector<std::pair<double, Use>> around;
    for (std::size_t i = begin; i < end; ++i) {
        const Face& face = faces_[uses_[i].face];
        work_.add(face.outer.size());
        const Vector inwards = cross(areaVector(face), uses_[i].upwards ? axis : -axis);
        around.emplace_back(std::atan2(dot(inwards, y), dot(inwards, x)), uses_[i]);
    }
    std::stable_sort(around.begin(), around.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
    for (std::size_t i = begin; i < end; ++i) {
        uses_[i] = around[i - begin].second;
    }
}

/** Faces that follow each other around an edge run along it in opposite directions, however many there are. */
void Net::join(std::size_t begin, std::size_t end) {
    if (!isMatched(begin, end)) {
        for (std::size_t i = begin; i < end; ++i) {
            isOpen_[uses_[i].face] = true;
        }
        return;
    }
    if (end - begin > 2) {
        sortAround(begin, end);
    }
    for (std::size_t i = begin; i + 1 < end; ++i) {
        const Use& a = uses_[i];
        const Use& b = uses_[i + 1];
        const bool turned = a.upwards == b.upwards;
        neighbours_.push_back({a.face, b.face, turned});
        neighbours_.push_back({b.face, a.face, turned});
    }
}

std::vector<Piece> Net::pieces() const {
    enum class State : char { unseen, asGiven, turned };
    std::vector<State> states(faces_.size(), State::unseen);
    // All neighbours of the first face, then those of the second, and so on.
    std::vector<std::size_t> firstNeighbours(faces_.size() + 2, 0);
    for (const Neighbour& neighbour : neighbours_) {
        ++firstNeighbours[neighbour.of + 2];
    }
    std::partial_sum(firstNeighbours.begin(), firstNeighbours.end(), firstNeighbours.begin());
    std::vector<Neighbour> neighbours(neighbours_.size());
    for (const Neighbour& neighbour : neighbours_) {
        neighbours[firstNeighbours[neighbour.of + 1]++] = neighbour;
    }
    std::vector<Piece> pieces;
    std::vector<Index> todo;
    for (Index start = 0; start < faces_.size(); ++start) {
        if (states[start] != State::unseen) {
            continue;
        }
        Piece piece;
        states[start] = State::asGiven;
        todo.assign(1, start);
        while (!todo.empty()) {
            const Index f = todo.back();
            todo.pop_back();
            piece.members.push_back({f, states[f] == State::turned});
            piece.closed = piece.closed && !isOpen_[f];
            piece.turned = piece.turned || states[f] == State::turned;
            for (std::size_t i = firstNeighbours[f]; i < firstNeighbours[f + 1]; ++i) {
                const Neighbour& next = neighbours[i];
                const State wanted = (states[f] == State::turned) != next.turned ? State::turned : State::asGiven;
                if (states[next.face] == State::unseen) {
                    states[next.face] = wanted;
                    todo.push_back(next.face);
                } else if (states[next.face] != wanted) {
                    piece.closed = false; // it can't be turned alike
                }
            }
        }
        pieces.push_back(std::move(piece));
    }
    return pieces;
}

} // namespace

std::vector<Piece> piecesOf(const std::vector<Face>& faces, Work& work) {
    work.add(countPoints(faces));
    return Net(faces, work).pieces();
}

std::vector<Face> takeFaces(const Piece& piece, std::vector<Face>& from) {
    std::vector<Face> faces;
    faces.reserve(piece.members.size());
    for (const Piece::Member& member : piece.members) {
        faces.push_back(std::move(from[member.face]));
        if (member.turned) {
            flip(faces.back());
        }
    }
    return faces;
}

} // namespace IfcReader
