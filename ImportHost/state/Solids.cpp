#include "state/Solids.h"

#include "state/Numbers.h"

#include <ImportCommon/ForeignObjectSolid.h>

#include <PluginKit/Text.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <stdexcept>
#include <string>

namespace {

/** Takes values off the front of bytes. */
class ByteReader {
public:
    explicit ByteReader(std::string_view bytes) : bytes_(bytes) {}

    std::uint32_t count() {
        std::uint32_t value = 0;
        std::memcpy(&value, take(sizeof value).data(), sizeof value);
        return value;
    }

    Vector3 vertex() {
        Vector3 vertex{};
        std::memcpy(vertex.data(), take(sizeof vertex).data(), sizeof vertex);
        for (const double coordinate : vertex) {
            if (!(std::abs(coordinate) <= farthest)) {
                throw std::runtime_error("a coordinate is not finite or out of range");
            }
        }
        return vertex;
    }

    /** A number of things of at least @p size bytes each, so that a wrong one can't ask for more than there is. */
    std::uint32_t countOf(std::size_t size) {
        const std::uint32_t number = count();
        if (number > bytes_.size() / size) {
            throw std::runtime_error("its bytes end too early");
        }
        return number;
    }

    bool isAtEnd() const { return bytes_.empty(); }

private:
    std::string_view take(std::size_t size) {
        if (size > bytes_.size()) {
            throw std::runtime_error("its bytes end too early");
        }
        const std::string_view front = bytes_.substr(0, size);
        bytes_.remove_prefix(size);
        return front;
    }

    std::string_view bytes_;
};

void readSurface(ByteReader& reader, Surface& surface) {
    surface.material = reader.count();
    surface.vertices.resize(reader.countOf(sizeof(Vector3)));
    for (Vector3& vertex : surface.vertices) {
        vertex = reader.vertex();
    }
    surface.polygons.resize(reader.countOf(sizeof(std::uint32_t)));
    for (std::vector<std::uint32_t>& polygon : surface.polygons) {
        polygon.resize(reader.countOf(sizeof(std::uint32_t)));
        for (std::uint32_t& index : polygon) {
            index = reader.count();
            if (index >= surface.vertices.size()) {
                throw std::runtime_error("there is no vertex " + std::to_string(index));
            }
        }
    }
}

void readSurfaces(std::string_view bytes, std::vector<Surface>& surfaces) {
    constexpr std::size_t smallest = 3 * sizeof(std::uint32_t);
    ByteReader reader(bytes);
    const std::size_t first = surfaces.size();
    surfaces.resize(first + reader.countOf(smallest));
    for (std::size_t i = first; i < surfaces.size(); ++i) {
        readSurface(reader, surfaces[i]);
    }
    if (!reader.isAtEnd()) {
        throw std::runtime_error("there are bytes behind its last surface");
    }
}

/** A solid's line and bytes. */
struct Block {
    std::size_t number; ///< in the stream, from 1
    std::size_t object; ///< from 0
    long type;
    std::string_view bytes;
};

/** Runs @p action, and says of which solid it complained. */
template <typename Action>
void withNumber(std::size_t number, const Action& action) {
    try {
        action();
    } catch (const std::runtime_error& e) {
        throw std::runtime_error("solid " + std::to_string(number) + ": " + e.what());
    }
}

Block takeBlock(std::string_view& stream, std::size_t number, std::size_t objectCount) {
    const std::size_t end = stream.find('\n');
    const std::vector<std::string_view> fields = split(stream.substr(0, end), '\t');
    if (end == std::string_view::npos || fields.size() < 3) {
        throw std::runtime_error("too few fields");
    }
    const long object = toLong(fields[0]);
    const long type = toLong(fields[1]);
    const long size = toLong(fields[2]);
    stream.remove_prefix(end + 1);
    if (object < 1 || static_cast<unsigned long>(object) > objectCount) {
        throw std::runtime_error("there is no object " + std::to_string(object));
    }
    if (size < 0 || static_cast<unsigned long>(size) >= stream.size() ||
        stream[static_cast<std::size_t>(size)] != '\n') {
        throw std::runtime_error("its bytes and the line break behind them are not there");
    }
    const std::string_view bytes = stream.substr(0, static_cast<std::size_t>(size));
    stream.remove_prefix(bytes.size() + 1);
    return {number, static_cast<std::size_t>(object) - 1, type, bytes};
}

} // namespace

void readSolids(std::string_view solidsStream, std::size_t objectCount,
                const std::function<void(std::size_t object, const std::vector<Surface>& surfaces)>& take) {
    std::vector<Block> blocks;
    for (std::size_t number = 1; !solidsStream.empty(); ++number) {
        withNumber(number, [&] {
            const Block block = takeBlock(solidsStream, number, objectCount);
            if (block.type == ForeignObjectSolid::Type_BoundaryRepresentation) {
                blocks.push_back(block);
            }
        });
    }
    std::stable_sort(blocks.begin(), blocks.end(), [](const Block& a, const Block& b) { return a.object < b.object; });

    for (auto block = blocks.begin(); block != blocks.end();) {
        const std::size_t object = block->object;
        std::vector<Surface> surfaces;
        for (; block != blocks.end() && block->object == object; ++block) {
            withNumber(block->number, [&] { readSurfaces(block->bytes, surfaces); });
        }
        take(object, surfaces);
    }
}
