#include "Surface.h"

#include "EdgeNet.h"

#include <array>
#include <cmath>
#include <optional>
#include <unordered_map>

namespace {

/** Finds vertices again by the cell of a grid that they lie in. */
class VertexJoiner {
public:
    explicit VertexJoiner(std::vector<Vector>& vertices) : vertices_(vertices) {}

    std::uint32_t join(const Vector& v) {
        const Cell cell = {std::floor(v.x / joinDistance), std::floor(v.y / joinDistance),
                           std::floor(v.z / joinDistance)};
        const auto found = cells_.find(cell);
        if (found != cells_.end()) {
            return found->second;
        }

        // Equal but for rounding, two vertices may lie on both sides of a cell's border.
        std::optional<std::uint32_t> neighbour;
        for (int i = 1; i < 8 && !neighbour; ++i) {
            neighbour = lookBeside(v, cell, i);
        }
        const auto index = neighbour.value_or(static_cast<std::uint32_t>(vertices_.size()));
        if (!neighbour) {
            vertices_.push_back(v);
        }
        cells_.emplace(cell, index);
        return index;
    }

private:
    using Cell = std::array<double, 3>;

    struct Hash {
        std::size_t operator()(const Cell& cell) const {
            const std::hash<double> hash;
            return (hash(cell[0]) * 31 + hash(cell[1])) * 31 + hash(cell[2]);
        }
    };

    /** The vertex near @p v in the cell beyond the nearest borders of the axes whose bits are set. */
    std::optional<std::uint32_t> lookBeside(const Vector& v, Cell cell, int axes) const {
        const double position[3] = {v.x, v.y, v.z};
        for (std::size_t axis = 0; axis < 3; ++axis) {
            if ((axes >> axis & 1) != 0) {
                cell[axis] += position[axis] / joinDistance - cell[axis] < 0.5 ? -1.0 : 1.0;
            }
        }
        const auto found = cells_.find(cell);
        if (found == cells_.end() || (vertices_[found->second] - v).Length() > joinDistance) {
            return std::nullopt;
        }
        return found->second;
    }

    std::vector<Vector>& vertices_;
    std::unordered_map<Cell, std::uint32_t, Hash> cells_;
};

bool isFinite(const Vector& v) {
    return std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.z);
}

} // namespace

Surface surfaceOf(const ProductMesh& mesh, const Matrix& orientation) {
    Surface surface;
    surface.material = mesh.mesh->mMaterialIndex;
    surface.polygons.reserve(mesh.mesh->mNumFaces);

    const Matrix transformation = orientation * mesh.toProduct;
    VertexJoiner joiner(surface.vertices);
    for (unsigned int i = 0; i < mesh.mesh->mNumFaces; ++i) {
        const aiFace& face = mesh.mesh->mFaces[i];
        Surface::Polygon polygon;
        for (unsigned int k = 0; k < face.mNumIndices; ++k) {
            const Vector v = transformation * toDouble(mesh.mesh->mVertices[face.mIndices[k]]);
            if (!isFinite(v)) {
                continue;
            }
            const std::uint32_t index = joiner.join(v);
            if (polygon.empty() || polygon.back() != index) {
                polygon.push_back(index);
            }
        }
        while (polygon.size() > 1 && polygon.back() == polygon.front()) {
            polygon.pop_back();
        }
        if (!polygon.empty()) {
            surface.polygons.push_back(std::move(polygon));
        }
    }
    return surface;
}

Enclosed enclosedBy(const Surface& surface) {
    const EdgeNet net(surface);
    Enclosed result;
    for (const EdgeNet::Piece& piece : net.closedPieces()) {
        // Tetrahedra over a corner of the piece itself: far from the origin the differences would lose their digits.
        const Vector base = surface.vertices[surface.polygons[piece.front().polygon].front()];
        double volume = 0.0;
        Vector moment;
        for (const EdgeNet::Side& side : piece) {
            const Surface::Polygon& polygon = surface.polygons[side.polygon];
            const Vector a = surface.vertices[polygon[0]] - base;
            for (std::size_t k = 1; k + 1 < polygon.size(); ++k) {
                const Vector b = surface.vertices[polygon[k]] - base;
                const Vector c = surface.vertices[polygon[k + 1]] - base;
                const double part = (side.turned ? -1.0 : 1.0) * (a * (b ^ c)) / 6.0;
                volume += part;
                moment += (a + b + c) * (part / 4.0);
            }
        }
        // Which side is the outside depends on the first polygon, so the sign says nothing.
        const double sign = volume < 0.0 ? -1.0 : 1.0;
        result.volume += sign * volume;
        result.moment += moment * sign + base * (sign * volume);
    }
    return result;
}
