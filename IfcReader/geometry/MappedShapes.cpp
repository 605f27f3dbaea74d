#include "geometry/MappedShapes.h"

namespace IfcReader {

MappedShapes::Pointer MappedShapes::find(std::uint64_t map) const {
    const std::lock_guard<std::mutex> lock(mutex_);
    const auto found = shapes_.find(map);
    return found != shapes_.end() ? found->second : nullptr;
}

void MappedShapes::keep(std::uint64_t map, const Pointer& shape) {
    std::size_t points = 1;
    for (const Body& body : shape->bodies) {
        points += countPoints(body.faces);
    }
    const std::lock_guard<std::mutex> lock(mutex_);
    if (points <= room_ && shapes_.emplace(map, shape).second) {
        room_ -= points;
    }
}

} // namespace IfcReader
