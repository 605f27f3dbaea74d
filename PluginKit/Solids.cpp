#include <PluginKit/Solids.h>
#include <PluginKit/Text.h>

#include <cmath>
#include <cstring>
#include <stdexcept>
#include <string>

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
    for (const auto& vertex : surface.vertices) {
        if (!std::isfinite(vertex[0]) || !std::isfinite(vertex[1]) || !std::isfinite(vertex[2])) {
            throw std::runtime_error("a coordinate of a solid is not a number");
        }
    }
    surface.sizes.resize(bytes.countOf(sizeof(std::uint32_t)));
    surface.corners.clear();
    for (std::uint32_t& size : surface.sizes) {
        size = bytes.countOf(sizeof(std::uint32_t));
        const std::size_t first = surface.corners.size();
        surface.corners.resize(first + size);
        bytes.copy(surface.corners.data() + first, sizeof(std::uint32_t), size);
    }
    for (const std::uint32_t corner : surface.corners) {
        if (corner >= surface.vertices.size()) {
            throw std::runtime_error("a polygon of a solid has a vertex that is not there");
        }
    }
}

std::size_t positive(std::string_view field, bool allowZero) {
    const long value = toLong(field);
    if (value < 0 || (value == 0 && !allowZero)) {
        throw std::runtime_error("a solid has a wrong number of its object or bytes");
    }
    return static_cast<std::size_t>(value);
}

} // namespace

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
            Bytes bytes(rest_.substr(0, size));
            rest_.remove_prefix(size + 1);
            if (toLong(fields[1]) != boundaryRepresentation) {
                continue;
            }
            solid.object = positive(fields[0], false);
            solid.surfaces.resize(bytes.countOf(3 * sizeof(std::uint32_t)));
            for (SolidSurface& surface : solid.surfaces) {
                readSurface(bytes, surface);
            }
            if (!bytes.isEmpty()) {
                throw std::runtime_error("a solid has bytes behind its end");
            }
            return true;
        } catch (const std::runtime_error& e) {
            rest_ = {};
            throw std::runtime_error("solids, number " + std::to_string(count_) + ": " + e.what());
        }
    }
    return false;
}
