#include "EdgeNet.h"

#include <algorithm>
#include <unordered_map>

namespace {

/** More loose edges than this are no matter of a few cut openings, and comparing each with each would take long. */
constexpr std::size_t maxLooseEdges = 600;

constexpr std::uint64_t edgeOf(std::uint32_t a, std::uint32_t b) {
    return static_cast<std::uint64_t>(std::min(a, b)) << 32 | std::max(a, b);
}

constexpr std::uint32_t lowEnd(std::uint64_t edge) {
    return static_cast<std::uint32_t>(edge >> 32);
}

constexpr std::uint32_t highEnd(std::uint64_t edge) {
    return static_cast<std::uint32_t>(edge);
}

/** Those of @p candidates that lie inside an edge, in the order from its lower to its higher vertex. */
std::vector<std::uint32_t> verticesOn(std::uint64_t edge, const std::vector<std::uint32_t>& candidates,
                                      const std::vector<Vector>& vertices) {
    const Vector& from = vertices[lowEnd(edge)];
    Vector direction = vertices[highEnd(edge)] - from;
    const double length = direction.Length();
    if (length <= joinDistance) {
        return {};
    }
    direction /= length;

    std::vector<std::pair<double, std::uint32_t>> found;
    for (const std::uint32_t candidate : candidates) {
        const Vector offset = vertices[candidate] - from;
        const double along = offset * direction;
        if (along > joinDistance && along < length - joinDistance &&
            (offset - direction * along).Length() < 2.0 * joinDistance) {
            found.emplace_back(along, candidate);
        }
    }
    std::sort(found.begin(), found.end());

    std::vector<std::uint32_t> result;
    result.reserve(found.size());
    for (const auto& entry : found) {
        result.push_back(entry.second);
    }
    return result;
}

} // namespace

EdgeNet::EdgeNet(const Surface& surface) : polygons_(surface.polygons) {
    findEdges();
    splitEdges(surface.vertices);
}

void EdgeNet::findEdges() {
    uses_.clear();
    for (std::uint32_t i = 0; i < polygons_.size(); ++i) {
        const Surface::Polygon& polygon = polygons_[i];
        for (std::size_t k = 0; k < polygon.size() && polygon.size() > 2; ++k) {
            const std::uint32_t a = polygon[k];
            const std::uint32_t b = polygon[(k + 1) % polygon.size()];
            uses_.push_back({edgeOf(a, b), i, a < b});
        }
    }
    std::sort(uses_.begin(), uses_.end(),
              [](const Use& a, const Use& b) { return a.edge != b.edge ? a.edge < b.edge : a.polygon < b.polygon; });
}

/** Where the uses of each edge begin; one more entry marks the end. */
std::vector<std::size_t> EdgeNet::edgeBegins() const {
    std::vector<std::size_t> begins;
    for (std::size_t i = 0; i < uses_.size(); ++i) {
        if (i == 0 || uses_[i].edge != uses_[i - 1].edge) {
            begins.push_back(i);
        }
    }
    begins.push_back(uses_.size());
    return begins;
}

/** Puts the corners that lie on an edge with nothing beside it into that edge. */
void EdgeNet::splitEdges(const std::vector<Vector>& vertices) {
    const std::vector<std::size_t> begins = edgeBegins();
    std::vector<std::uint64_t> loose;
    std::vector<std::uint32_t> corners;
    for (std::size_t i = 0; i + 1 < begins.size(); ++i) {
        if ((begins[i + 1] - begins[i]) % 2 == 0) {
            continue;
        }
        loose.push_back(uses_[begins[i]].edge);
        corners.push_back(lowEnd(loose.back()));
        corners.push_back(highEnd(loose.back()));
    }
    if (loose.empty() || loose.size() > maxLooseEdges) {
        return;
    }
    std::sort(corners.begin(), corners.end());
    corners.erase(std::unique(corners.begin(), corners.end()), corners.end());

    std::unordered_map<std::uint64_t, std::vector<std::uint32_t>> splits;
    for (const std::uint64_t edge : loose) {
        splits.emplace(edge, verticesOn(edge, corners, vertices));
    }

    for (Surface::Polygon& polygon : polygons_) {
        Surface::Polygon split;
        for (std::size_t k = 0; k < polygon.size(); ++k) {
            const std::uint32_t next = polygon[(k + 1) % polygon.size()];
            split.push_back(polygon[k]);
            const auto found = splits.find(edgeOf(polygon[k], next));
            if (found == splits.end()) {
                continue;
            }
            if (polygon[k] < next) {
                split.insert(split.end(), found->second.begin(), found->second.end());
            } else {
                split.insert(split.end(), found->second.rbegin(), found->second.rend());
            }
        }
        polygon = std::move(split);
    }
    findEdges();
}

std::vector<EdgeNet::Piece> EdgeNet::closedPieces() const {
    const std::vector<std::size_t> begins = edgeBegins();

    // Polygons on both sides of an edge run through it in opposite directions, or one of them has to be turned over.
    std::vector<std::vector<Side>> neighbours(polygons_.size());
    for (std::size_t i = 0; i + 1 < begins.size(); ++i) {
        if (begins[i + 1] - begins[i] != 2) {
            continue;
        }
        const Use& a = uses_[begins[i]];
        const Use& b = uses_[begins[i] + 1];
        neighbours[a.polygon].push_back({b.polygon, a.upwards == b.upwards});
        neighbours[b.polygon].push_back({a.polygon, a.upwards == b.upwards});
    }

    constexpr std::size_t none = static_cast<std::size_t>(-1);
    std::vector<std::size_t> pieceOf(polygons_.size(), none);
    std::vector<bool> turned(polygons_.size(), false);
    std::vector<Piece> pieces;
    for (std::uint32_t first = 0; first < polygons_.size(); ++first) {
        if (pieceOf[first] != none || polygons_[first].size() < 3) {
            continue;
        }
        Piece piece = {{first, false}};
        pieceOf[first] = pieces.size();
        for (std::size_t k = 0; k < piece.size(); ++k) {
            const Side side = piece[k];
            for (const Side& next : neighbours[side.polygon]) {
                if (pieceOf[next.polygon] != none) {
                    continue;
                }
                pieceOf[next.polygon] = pieces.size();
                turned[next.polygon] = side.turned != next.turned;
                piece.push_back({next.polygon, turned[next.polygon]});
            }
        }
        pieces.push_back(std::move(piece));
    }

    std::vector<bool> open(pieces.size(), false);
    for (std::size_t i = 0; i + 1 < begins.size(); ++i) {
        for (std::size_t k = begins[i]; k < begins[i + 1]; ++k) {
            int balance = 0;
            for (std::size_t other = begins[i]; other < begins[i + 1]; ++other) {
                if (pieceOf[uses_[other].polygon] == pieceOf[uses_[k].polygon]) {
                    balance += uses_[other].upwards != turned[uses_[other].polygon] ? 1 : -1;
                }
            }
            if (balance != 0) {
                open[pieceOf[uses_[k].polygon]] = true;
            }
        }
    }

    std::vector<Piece> closed;
    for (std::size_t i = 0; i < pieces.size(); ++i) {
        if (!open[i]) {
            closed.push_back(std::move(pieces[i]));
        }
    }
    return closed;
}
