#include <PluginKit/Escapes.h>
#include <PluginKit/Number.h>
#include <PluginKit/Solids.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <stdexcept>
#include <string>

namespace PluginKit {

namespace {

constexpr long boundaryRepresentation = 2;

/** The bytes of one solid, taken from the front. */
class Bytes {
public:
    explicit Bytes(std::string_view bytes) : rest_(bytes) {}

    std::uint32_t number() {
        std::uint32_t value = 0;
        copy(&value, sizeof value, 1);
        return value;
    }

    /** A number of things that take at least @p size bytes each, all of which must still be there. */
    std::uint32_t countOf(std::size_t size) {
        const std::uint32_t count = number();
        if (count > rest_.size() / size) {
            throw std::runtime_error("a solid ends too early");
        }
        return count;
    }

    void copy(void* target, std::size_t size, std::size_t count) {
        if (count > rest_.size() / size) {
            throw std::runtime_error("a solid ends too early");
        }
        if (count > 0) {
            std::memcpy(target, rest_.data(), size * count);
            rest_.remove_prefix(size * count);
        }
    }

    bool isEmpty() const { return rest_.empty(); }

private:
    std::string_view rest_;
};

void readSurface(Bytes& bytes, SolidSurface& surface) {
    surface.material = bytes.number();
    surface.vertices.resize(bytes.countOf(3 * sizeof(double)));
    bytes.copy(surface.vertices.data(), 3 * sizeof(double), surface.vertices.size());
    surface.sizes.resize(bytes.countOf(sizeof(std::uint32_t)));
    surface.corners.clear();
    for (std::uint32_t& size : surface.sizes) {
        size = bytes.countOf(sizeof(std::uint32_t));
        const std::size_t first = surface.corners.size();
        surface.corners.resize(first + size);
        bytes.copy(surface.corners.data() + first, sizeof(std::uint32_t), size);
    }
    const std::string fault = surface.fault();
    if (!fault.empty()) {
        throw std::runtime_error(fault);
    }
}

void readSurfaces(std::string_view content, std::vector<SolidSurface>& surfaces) {
    Bytes bytes(content);
    surfaces.resize(bytes.countOf(3 * sizeof(std::uint32_t)));
    for (SolidSurface& surface : surfaces) {
        readSurface(bytes, surface);
    }
    if (!bytes.isEmpty()) {
        throw std::runtime_error("a solid has bytes behind its end");
    }
}

template <typename Number>
void append(std::string& bytes, const Number* numbers, std::size_t count) {
    bytes.append(reinterpret_cast<const char*>(numbers), sizeof(Number) * count);
}

void appendCount(std::string& bytes, std::size_t count) {
    if (count > std::numeric_limits<std::uint32_t>::max()) {
        throw std::length_error("a solid of too many parts");
    }
    const auto number = static_cast<std::uint32_t>(count);
    append(bytes, &number, 1);
}

std::size_t positive(std::string_view field, bool allowZero) {
    const long value = toLong(field);
    if (value < 0 || (value == 0 && !allowZero)) {
        throw std::runtime_error("a solid has a wrong number of its object or bytes");
    }
    return static_cast<std::size_t>(value);
}

} // namespace

void SolidSurface::addPolygon(const std::vector<std::uint32_t>& polygon) {
    if (polygon.empty()) {
        return;
    }
    sizes.push_back(static_cast<std::uint32_t>(polygon.size()));
    corners.insert(corners.end(), polygon.begin(), polygon.end());
}

std::string SolidSurface::fault() const {
    for (const std::array<double, 3>& vertex : vertices) {
        if (!std::isfinite(vertex[0]) || !std::isfinite(vertex[1]) || !std::isfinite(vertex[2])) {
            return "a coordinate of a solid is not a number";
        }
    }
    std::size_t count = 0;
    for (const std::uint32_t size : sizes) {
        count += size;
    }
    if (count != corners.size()) {
        return "the polygons of a solid have another number of corners than there are";
    }
    for (const std::uint32_t corner : corners) {
        if (corner >= vertices.size()) {
            return "a polygon of a solid has a vertex that is not there";
        }
    }
    return "";
}

std::string solidBytes(const std::vector<SolidSurface>& surfaces) {
    std::string bytes;
    appendCount(bytes, surfaces.size());
    for (const SolidSurface& surface : surfaces) {
        append(bytes, &surface.material, 1);
        appendCount(bytes, surface.vertices.size());
        append(bytes, surface.vertices.data(), surface.vertices.size());
        appendCount(bytes, surface.sizes.size());
        const std::uint32_t* corner = surface.corners.data();
        for (const std::uint32_t size : surface.sizes) {
            append(bytes, &size, 1);
            append(bytes, corner, size);
            corner += size;
        }
    }
    return bytes;
}

std::vector<SolidSurface> surfacesOf(std::string_view bytes) {
    std::vector<SolidSurface> surfaces;
    readSurfaces(bytes, surfaces);
    return surfaces;
}

bool SolidsReader::next(Solid& solid) {
    while (!rest_.empty()) {
        ++count_;
        try {
            const std::size_t lineEnd = rest_.find('\n');
            const std::vector<std::string_view> fields = split(rest_.substr(0, lineEnd), '\t');
            if (lineEnd == std::string_view::npos || fields.size() != 3) {
                throw std::runtime_error("not the line of a solid");
            }
            const std::size_t size = positive(fields[2], true);
            rest_.remove_prefix(lineEnd + 1);
            if (size >= rest_.size() || rest_[size] != '\n') {
                throw std::runtime_error("a solid ends too early");
            }
            const std::string_view bytes = rest_.substr(0, size);
            rest_.remove_prefix(size + 1);
            if (toLong(fields[1]) != boundaryRepresentation) {
                continue;
            }
            solid.object = positive(fields[0], false);
            readSurfaces(bytes, solid.surfaces);
            return true;
        } catch (const std::runtime_error& e) {
            rest_ = {};
            throw std::runtime_error("solid " + std::to_string(count_) + ": " + e.what());
        }
    }
    return false;
}

} // namespace PluginKit
