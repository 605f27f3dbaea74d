#include "Solid.h"

#include <limits>
#include <new>
#include <string>

namespace {

template <typename Number>
void append(std::string& bytes, Number number) {
    bytes.append(reinterpret_cast<const char*>(&number), sizeof number);
}

void appendCount(std::string& bytes, std::size_t count) {
    append(bytes, static_cast<std::uint32_t>(count));
}

} // namespace

ForeignObjectSolid solidOf(const std::vector<Surface>& surfaces, const Vector& origin) {
    std::string bytes;
    appendCount(bytes, surfaces.size());
    for (const Surface& surface : surfaces) {
        appendCount(bytes, surface.material);
        appendCount(bytes, surface.vertices.size());
        for (const Vector& vertex : surface.vertices) {
            for (const double coordinate : {vertex.x + origin.x, vertex.y + origin.y, vertex.z + origin.z}) {
                append(bytes, coordinate);
            }
        }
        appendCount(bytes, surface.polygons.size());
        for (const Surface::Polygon& polygon : surface.polygons) {
            appendCount(bytes, polygon.size());
            for (const std::uint32_t vertex : polygon) {
                append(bytes, vertex);
            }
        }
    }
    if (bytes.size() > std::numeric_limits<unsigned int>::max()) {
        throw std::bad_alloc();
    }

    ForeignObjectSolid solid(ForeignObjectSolid::Type_BoundaryRepresentation, static_cast<unsigned int>(bytes.size()),
                             bytes.data());
    unsigned int size = 0;
    solid.getBytes(&size);
    if (size != bytes.size()) {
        throw std::bad_alloc(); // without memory a solid is empty
    }
    return solid;
}
