#include "output/html/ShapeBlock.h"

#include <PluginKit/Polygons.h>
#include <PluginKit/Solids.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <unordered_map>

using PluginKit::areaVector;
using PluginKit::Solid;
using PluginKit::SolidsReader;
using PluginKit::SolidSurface;
using PluginKit::triangulate;

namespace {

constexpr double steps = 65535.0;

/** The angle between two surfaces from which on they meet in an edge: 25 degrees. */
constexpr double cosineOfEdge = 0.9063;

template <typename Number>
void appendNumber(std::string& bytes, Number number) {
    // The page reads numbers as its machine has them, and machines with browsers have the low byte first.
    bytes.append(reinterpret_cast<const char*>(&number), sizeof number);
}

} // namespace

/** Points on the grid of one box, and what they are the corners of. */
class ShapeBlock::Piece {
public:
    static constexpr std::size_t mostPoints = 65536; ///< that 16 bits can tell apart

    struct Edge {
        Vector3 normal;   ///< of the first polygon along it
        std::size_t uses; ///< polygons along it
        bool isSharp;     ///< two of them meet at an angle
    };

    Piece(const Vector3& low, const Vector3& high) : low_(low) {
        for (std::size_t k = 0; k < 3; ++k) {
            step_[k] = static_cast<float>((high[k] - low[k]) / steps);
        }
    }

    /** Whether so many more points surely fit. */
    bool hasRoom(std::size_t corners) const { return points_.size() / 3 + corners <= mostPoints; }

    void addPolygon(const std::vector<Vector3>& vertices, const std::uint32_t* corners, std::size_t count) {
        triangles_.clear();
        triangulate(vertices, corners, count, triangles_);
        for (std::size_t i = 0; i + 2 < triangles_.size(); i += 3) {
            const std::uint16_t a = point(vertices[triangles_[i]]);
            const std::uint16_t b = point(vertices[triangles_[i + 1]]);
            const std::uint16_t c = point(vertices[triangles_[i + 2]]);
            if (a != b && b != c && c != a) {
                indices_.insert(indices_.end(), {a, b, c});
            }
        }
        Vector3 normal = areaVector(vertices, corners, count);
        const double length = std::sqrt(dot(normal, normal));
        for (double& component : normal) {
            component = length > 0.0 ? component / length : 0.0;
        }
        for (std::size_t i = 0; i < count && length > 0.0; ++i) {
            addEdge(point(vertices[corners[i]]), point(vertices[corners[(i + 1) % count]]), normal);
        }
    }

private:
    friend class ShapeBlock;

    /** The number of the point on the grid that is next to a vertex. */
    std::uint16_t point(const Vector3& vertex) {
        std::array<std::uint16_t, 3> grid{};
        for (std::size_t k = 0; k < 3; ++k) {
            const double at = step_[k] > 0.0F ? (vertex[k] - low_[k]) / static_cast<double>(step_[k]) : 0.0;
            grid[k] = static_cast<std::uint16_t>(std::lround(std::clamp(at, 0.0, steps)));
        }
        const std::uint64_t key = std::uint64_t{grid[0]} << 32 | std::uint64_t{grid[1]} << 16 | grid[2];
        const auto found = numbers_.emplace(key, static_cast<std::uint16_t>(points_.size() / 3));
        if (found.second) {
            points_.insert(points_.end(), grid.begin(), grid.end());
        }
        return found.first->second;
    }

    void addEdge(std::uint16_t a, std::uint16_t b, const Vector3& normal) {
        if (a == b) {
            return;
        }
        const std::uint32_t key = std::uint32_t{std::min(a, b)} << 16 | std::max(a, b);
        const auto found = edges_.emplace(key, Edge{normal, 1, false});
        if (!found.second) {
            Edge& edge = found.first->second;
            ++edge.uses;
            edge.isSharp = edge.isSharp || dot(edge.normal, normal) < cosineOfEdge;
        }
    }

    /** Pairs of points; edges between polygons of one surface are left out. */
    std::vector<std::uint16_t> drawnEdges() const {
        std::vector<std::uint32_t> keys;
        for (const auto& [key, edge] : edges_) {
            if (edge.isSharp || edge.uses == 1) {
                keys.push_back(key);
            }
        }
        std::sort(keys.begin(), keys.end());
        std::vector<std::uint16_t> ends;
        for (const std::uint32_t key : keys) {
            ends.push_back(static_cast<std::uint16_t>(key >> 16));
            ends.push_back(static_cast<std::uint16_t>(key & 0xFFFFU));
        }
        return ends;
    }

    Vector3 low_;
    std::array<float, 3> step_{};
    std::vector<std::uint16_t> points_;
    std::vector<std::uint16_t> indices_;
    std::vector<std::uint32_t> triangles_;
    std::unordered_map<std::uint64_t, std::uint16_t> numbers_;
    std::unordered_map<std::uint32_t, Edge> edges_;
};

void ShapeBlock::add(std::string_view solidsStream, const std::vector<std::size_t>& objects, Role role,
                     const Mapping& mapping) {
    SolidsReader reader(solidsStream);
    for (Solid solid; reader.next(solid);) {
        const std::size_t object = solid.object <= objects.size() ? objects[solid.object - 1] : none;
        if (object != none) {
            addSurfaces(solid.surfaces, object, role, mapping);
        }
    }
}

void ShapeBlock::addBox(const Box& box, std::size_t object, Role role, const Mapping& mapping) {
    SolidSurface surface;
    for (std::size_t corner = 0; corner < 8; ++corner) {
        surface.vertices.push_back({(corner & 1U) != 0 ? box.high[0] : box.low[0],
                                    (corner & 2U) != 0 ? box.high[1] : box.low[1],
                                    (corner & 4U) != 0 ? box.high[2] : box.low[2]});
    }
    surface.sizes.assign(6, 4);
    surface.corners = {0, 2, 3, 1, 4, 5, 7, 6, 0, 1, 5, 4, 2, 6, 7, 3, 0, 4, 6, 2, 1, 3, 7, 5};
    std::vector<SolidSurface> surfaces = {surface};
    addSurfaces(surfaces, object, role, mapping);
}

void ShapeBlock::addSurfaces(std::vector<SolidSurface>& surfaces, std::size_t object, Role role,
                             const Mapping& mapping) {
    Vector3 low{};
    Vector3 high{};
    bool isEmpty = true;
    for (SolidSurface& surface : surfaces) {
        for (Vector3& vertex : surface.vertices) {
            vertex = mapping ? mapping(vertex) : vertex;
            for (std::size_t k = 0; k < 3; ++k) {
                low[k] = isEmpty ? vertex[k] : std::min(low[k], vertex[k]);
                high[k] = isEmpty ? vertex[k] : std::max(high[k], vertex[k]);
            }
            isEmpty = false;
        }
    }
    Piece piece(low, high);
    for (const SolidSurface& surface : surfaces) {
        std::size_t first = 0;
        for (const std::uint32_t size : surface.sizes) {
            if (size <= Piece::mostPoints) { // no piece has room for a larger polygon
                if (!piece.hasRoom(size)) {
                    append(piece, object, role);
                    piece = Piece(low, high);
                }
                piece.addPolygon(surface.vertices, surface.corners.data() + first, size);
            }
            first += size;
        }
    }
    append(piece, object, role);
}

bool ShapeBlock::has(std::size_t object, Role role) const {
    const auto& known = known_[static_cast<std::size_t>(role)];
    return object < known.size() && known[object];
}

void ShapeBlock::append(const Piece& piece, std::size_t object, Role role) {
    if (piece.indices_.empty()) {
        return;
    }
    const std::vector<std::uint16_t> edges = piece.drawnEdges();
    for (const double coordinate : piece.low_) {
        appendNumber(pieces_, coordinate);
    }
    for (const float length : piece.step_) {
        appendNumber(pieces_, length);
    }
    appendNumber(pieces_, static_cast<std::uint32_t>(object));
    appendNumber(pieces_, static_cast<std::uint32_t>(role));
    appendNumber(pieces_, static_cast<std::uint32_t>(piece.points_.size() / 3));
    appendNumber(pieces_, static_cast<std::uint32_t>(piece.indices_.size() / 3));
    appendNumber(pieces_, static_cast<std::uint32_t>(edges.size() / 2));
    appendNumber(pieces_, std::uint32_t{0});
    appendNumber(pieces_, std::uint32_t{0});
    for (const auto* numbers : {&piece.points_, &piece.indices_, &edges}) {
        data_.append(reinterpret_cast<const char*>(numbers->data()), numbers->size() * sizeof(std::uint16_t));
    }
    ++count_;
    auto& known = known_[static_cast<std::size_t>(role)];
    known.resize(std::max(known.size(), object + 1));
    known[object] = true;
}

std::string ShapeBlock::bytes() const {
    std::string bytes = "IHS1";
    appendNumber(bytes, count_);
    return bytes + pieces_ + data_;
}
