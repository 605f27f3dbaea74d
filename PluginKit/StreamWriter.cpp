#include <ImportCommon/ForeignObjectSolid.h>

#include <PluginKit/Escapes.h>
#include <PluginKit/Hex.h>
#include <PluginKit/Number.h>
#include <PluginKit/StreamNames.h>
#include <PluginKit/StreamWriter.h>

#include <algorithm>
#include <charconv>
#include <cmath>

using ImportCommon::CExternalVersion;
using ImportCommon::ExternalGUID;
using ImportCommon::ExternalVersion;

namespace PluginKit {

namespace {

template <typename Whole>
void appendWhole(std::string& text, Whole value) {
    char buffer[24];
    text.append(buffer, static_cast<std::size_t>(std::to_chars(buffer, buffer + sizeof buffer, value).ptr - buffer));
}

/**
 * Appends metres in hundredths of a millimetre: enough for polygons, which are shown and not compared. Whole numbers of
 * hundredths are written as such, in a third of the time that the shortest text of a number takes.
 */
void appendRounded(std::string& text, double metres) {
    const double hundredths = metres * 1e5;
    if (!(std::abs(hundredths) < 1e15)) {
        appendNumber(text, metres);
        return;
    }
    const auto rounded = static_cast<long long>(std::abs(hundredths) + 0.5);
    char buffer[32];
    char* end = buffer;
    if (hundredths < 0.0 && rounded > 0) {
        *end++ = '-';
    }
    end = std::to_chars(end, buffer + sizeof buffer, rounded / 100000).ptr;
    auto left = static_cast<int>(rounded % 100000);
    if (left > 0) {
        *end++ = '.';
    }
    for (int unit = 10000; left > 0; unit /= 10) {
        *end++ = static_cast<char>('0' + left / unit);
        left %= unit;
    }
    text.append(buffer, static_cast<std::size_t>(end - buffer));
}

} // namespace

/**
 * One line of tab-separated fields on its way to a stream; each field is checked, and a fault names it. Lines that are
 * made inside one another end in the opposite order.
 */
class StreamWriter::Line {
public:
    Line(StreamWriter& writer, std::size_t stream)
        : writer_(writer), stream_(stream), text_(writer.lines_), begin_(text_.size()) {}
    ~Line() { text_.resize(begin_); }

    Line(const Line&) = delete;
    Line& operator=(const Line&) = delete;

    Line& text(std::string_view value) {
        appendEscaped(nextField(), value);
        return *this;
    }

    /** Text that must be there. */
    Line& required(const char* name, std::string_view value) {
        require(!value.empty(), name, "missing");
        return text(value);
    }

    Line& globalId(std::string_view value) { return value.empty() ? field("-") : text(value); }

    Line& whole(long long value) {
        appendWhole(nextField(), value);
        return *this;
    }
    Line& count(std::size_t value) {
        appendWhole(nextField(), value);
        return *this;
    }

    /** An object that was written already. */
    Line& object(std::size_t number, std::size_t smallest = 1) {
        require(number >= smallest && number <= writer_.objectCount_, "object", "there is no such object yet");
        return count(number);
    }

    template <typename Numbers>
    Line& numbers(const char* name, const Numbers& values) {
        std::string& text = nextField();
        const std::size_t begin = text.size();
        for (const double value : values) {
            require(std::isfinite(value), name, "a number is not finite");
            text.append(text.size() > begin ? " " : "");
            appendNumber(text, value);
        }
        return *this;
    }

    Line& identity(const char* name, const ExternalGUID& guid) {
        require(guid.getType() >= ExternalGUID::GUIDTypeSpatialHash &&
                    guid.getType() <= ExternalGUID::GUIDTypeHalvorneObi,
                name, "not an identity");
        unsigned int size = 0;
        const char* const bytes = guid.getBytes(&size);
        appendHex(nextField(), bytes, size);
        return *this;
    }

    Line& version(const ExternalVersion& version) {
        char bytes[CExternalVersion::MaximumStreamSize];
        const unsigned int size = version.toByteStream(sizeof bytes, bytes);
        require(size > 0 && version.getType() <= ImportCommon::ExternalVersionType_Geometry, "version",
                "not a version");
        appendHex(nextField(), bytes, size);
        return *this;
    }

    Line& field(std::string_view text) {
        nextField().append(text);
        return *this;
    }

    /** Begins a field, whose text is to be appended. */
    std::string& nextField() {
        if (isFirst_) {
            isFirst_ = false;
        } else {
            text_ += '\t';
        }
        return text_;
    }

    void require(bool isRight, const char* name, std::string_view fault) const {
        if (!isRight) {
            throw StreamError(streamNames[stream_].name, writer_.counts_[stream_] + 1,
                              std::string("field ").append(name).append(": ").append(fault));
        }
    }

    FILE* write() {
        ++writer_.counts_[stream_];
        FILE* const stream = writer_.env_.*streamNames[stream_].handle;
        text_ += '\n';
        if (stream != nullptr) {
            std::fwrite(text_.data() + begin_, 1, text_.size() - begin_, stream);
        }
        return stream;
    }

    /** The line, and bytes behind it. */
    void write(std::string_view bytes) {
        FILE* const stream = write();
        if (stream != nullptr) {
            std::fwrite(bytes.data(), 1, bytes.size(), stream);
            std::fputc('\n', stream);
        }
    }

private:
    StreamWriter& writer_;
    std::size_t stream_;
    std::string& text_; ///< of the writer; this line begins at begin_
    std::size_t begin_;
    bool isFirst_ = true;
};

namespace {

/** Positions in streamNames. */
constexpr std::size_t indexOf(FILE* ForeignObjectEnv_t::*handle) {
    std::size_t index = 0;
    while (streamNames[index].handle != handle) {
        ++index;
    }
    return index;
}

} // namespace

void StreamWriter::info(std::string_view key, std::string_view value) {
    Line(*this, indexOf(&ForeignObjectEnv_t::info)).required("key", key).text(value).write();
}

void StreamWriter::warning(std::string_view text) {
    Line(*this, indexOf(&ForeignObjectEnv_t::log)).field("warning").text(text).write();
}

void StreamWriter::error(std::string_view text) {
    Line(*this, indexOf(&ForeignObjectEnv_t::log)).field("error").text(text).write();
}

void StreamWriter::progress(double part, std::string_view what) {
    part = part >= 0.0 ? std::min(part, 1.0) : 0.0; // of a NaN as well
    if (part < shownProgress_ + 0.01 && (part < 1.0 || shownProgress_ >= 1.0)) {
        return;
    }
    shownProgress_ = part;
    Line line(*this, indexOf(&ForeignObjectEnv_t::progress));
    FILE* const stream = line.field(numberText(part)).text(what).write();
    if (stream != nullptr) {
        std::fflush(stream); // the host reads along
    }
}

std::uint32_t StreamWriter::material(const MaterialLine& material) {
    Line line(*this, indexOf(&ForeignObjectEnv_t::materials));
    for (const double part : material.colour) {
        line.require(part >= 0.0 && part <= 1.0, "colour", "a part is not between 0 and 1");
    }
    line.numbers("colour", material.colour).text(material.name).write();
    return static_cast<std::uint32_t>(materialCount_++);
}

void StreamWriter::layer(const LayerLine& layer) {
    Line line(*this, indexOf(&ForeignObjectEnv_t::layers));
    line.require(std::isfinite(layer.elevation), "elevation", "a number is not finite");
    appendRounded(line.globalId(layer.globalId).nextField(), layer.elevation);
    line.text(layer.name).write();
}

void StreamWriter::hierarchy(const HierarchyLine& place) {
    Line line(*this, indexOf(&ForeignObjectEnv_t::hierarchy));
    line.globalId(place.globalId).globalId(place.parentGlobalId).required("class", place.className);
    line.text(place.name).write();
}

std::size_t StreamWriter::object(const ObjectLine& object, const ForeignObjectLine& ids) {
    Line line(*this, indexOf(&ForeignObjectEnv_t::objects));
    line.identity("identity", object.identity).identity("spatial hash", object.spatialHash).version(object.version);
    line.required("class", object.className).numbers("position", object.position).text(object.name);
    if (!object.sourceId.empty()) {
        line.text(object.sourceId);
    }
    Line(*this, indexOf(&ForeignObjectEnv_t::foreignObjects))
        .whole(ids.identityId)
        .whole(ids.spatialHashId)
        .globalId(ids.globalId)
        .write();
    line.write();
    return ++objectCount_;
}

void StreamWriter::polygons(std::size_t object, const SolidSurface& surface) {
    Line line(*this, indexOf(&ForeignObjectEnv_t::polygons));
    const std::string fault = surface.fault();
    line.require(fault.empty(), "surface", fault);
    if (surface.vertices.empty()) {
        return; // a surface of nothing
    }
    line.object(object).count(surface.material);
    std::string& text = line.nextField();
    for (const std::array<double, 3>& vertex : surface.vertices) {
        for (const double coordinate : vertex) {
            appendRounded(text, coordinate);
            text += ' ';
        }
    }
    text.pop_back();
    const std::uint32_t* corner = surface.corners.data();
    for (const std::uint32_t size : surface.sizes) {
        if (size == 0) {
            continue;
        }
        line.count(*corner);
        for (std::uint32_t i = 1; i < size; ++i) {
            text += ' ';
            appendWhole(text, corner[i]);
        }
        corner += size;
    }
    line.write();
}

void StreamWriter::solid(std::size_t object, const std::vector<SolidSurface>& surfaces) {
    const Line line(*this, indexOf(&ForeignObjectEnv_t::solids));
    for (const SolidSurface& surface : surfaces) {
        const std::string fault = surface.fault();
        line.require(fault.empty(), "surface", fault);
    }
    solid({object, ForeignObjectSolid::Type_BoundaryRepresentation, solidBytes(surfaces)});
}

void StreamWriter::solid(const SolidLine& solid) {
    Line line(*this, indexOf(&ForeignObjectEnv_t::solids));
    line.object(solid.object).whole(solid.type).count(solid.bytes.size()).write(solid.bytes);
}

void StreamWriter::shape(const std::vector<SolidSurface>& surfaces) {
    for (const SolidSurface& surface : surfaces) {
        polygons(objectCount_, surface);
    }
    solid(objectCount_, surfaces);
}

void StreamWriter::texture(const TextureLine& texture) {
    Line line(*this, indexOf(&ForeignObjectEnv_t::textures));
    line.count(texture.bytes.size()).required("name", texture.name).write(texture.bytes);
}

void StreamWriter::set(const SetLine& set) {
    Line line(*this, indexOf(&ForeignObjectEnv_t::attributes));
    line.field("set").object(set.object, 0).globalId(set.globalId).required("form", set.form);
    line.globalId(set.setGlobalId).text(set.name).text(set.description);
    if (!set.nameInFile.empty()) {
        line.text(set.nameInFile);
    }
    line.write();
    isInSet_ = true;
    deepest_ = 0;
}

void StreamWriter::property(const PropertyLine& property) {
    Line line(*this, indexOf(&ForeignObjectEnv_t::attributes));
    const std::string fault = faultOf(property);
    line.require(isInSet_, "depth", "no set before it");
    if (property.depth > deepest_) {
        line.require(false, "depth", "too deep by " + std::to_string(property.depth - deepest_));
    }
    line.require(fault.empty(), "value", fault);
    line.require(std::isfinite(property.factor) && property.factor != 0.0, "factor", "not a factor");
    line.field("property").count(property.depth).text(property.name).text(property.description);
    line.field(property.type).text(property.value);
    if (!property.nameInFile.empty() || property.factor != 1.0) {
        line.text(property.nameInFile);
    }
    if (property.factor != 1.0) {
        line.field(numberText(property.factor));
    }
    line.write();
    deepest_ = property.depth + (property.type == "complex" ? 1 : 0);
}

void StreamWriter::end() {
    Line(*this, indexOf(&ForeignObjectEnv_t::objects)).field("end").count(objectCount_).write();
}

} // namespace PluginKit
