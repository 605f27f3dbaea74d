#include <PluginKit/Escapes.h>
#include <PluginKit/Hex.h>
#include <PluginKit/Number.h>
#include <PluginKit/StreamReader.h>

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <limits>
#include <utility>

using ImportCommon::CExternalVersion;
using ImportCommon::ExternalGUID;
using ImportCommon::ExternalVersion;

namespace PluginKit {

namespace {

std::vector<double> numbersOf(std::string_view text) {
    std::vector<double> numbers;
    for (const std::string_view part : split(text, ' ')) {
        numbers.push_back(toDouble(part));
        if (!std::isfinite(numbers.back())) {
            throw std::runtime_error("a number is not finite");
        }
    }
    return numbers;
}

template <typename Number>
Number countOf(std::string_view text) {
    const long value = toLong(text);
    if (value < 0 || static_cast<unsigned long>(value) > std::numeric_limits<Number>::max()) {
        throw std::runtime_error("'" + std::string(text) + "' is out of range");
    }
    return static_cast<Number>(value);
}

ExternalGUID identityOf(std::string_view text) {
    const std::string bytes = fromHex(text);
    ExternalGUID guid = ExternalGUID::fromByteStream(static_cast<unsigned int>(bytes.size()), bytes.data());
    if (bytes.size() != ExternalGUID::RecordSize || guid.getType() < ExternalGUID::GUIDTypeSpatialHash ||
        guid.getType() > ExternalGUID::GUIDTypeHalvorneObi) {
        throw std::runtime_error("not an identity");
    }
    return guid;
}

ExternalVersion versionOf(std::string_view text) {
    const std::string bytes = fromHex(text);
    ExternalVersion version;
    version.fromByteStream(static_cast<unsigned int>(bytes.size()), bytes.data());
    // Written back, a version has the size that its kind asks for: a stream of another size was not one.
    char written[CExternalVersion::MaximumStreamSize];
    if (bytes.empty() || version.getType() > ImportCommon::ExternalVersionType_Geometry ||
        version.toByteStream(sizeof written, written) != bytes.size()) {
        throw std::runtime_error("not a version");
    }
    return version;
}

} // namespace

/** The fields of one line, by name; a fault names the field. */
class StreamReader::Fields {
public:
    /** @param names  fields that must be there; throws std::runtime_error that says how many are, and which is missing */
    Fields(std::string_view line, std::initializer_list<const char*> names) : names_(names) {
        fields_ = split(line, '\t');
        if (fields_.size() < names_.size()) {
            throw std::runtime_error(std::to_string(fields_.size()) + " of " + std::to_string(names_.size()) +
                                     " fields, " + names_[fields_.size()] + " missing");
        }
    }

    std::string text(std::size_t i) const { return unescaped(fields_[i]); }
    std::string textOrNone(std::size_t i) const { return i < fields_.size() ? text(i) : std::string(); }
    std::string globalId(std::size_t i) const { return fields_[i] == "-" ? std::string() : text(i); }

    std::string required(std::size_t i) const {
        if (fields_[i].empty()) {
            fail(i, "missing");
        }
        return text(i);
    }

    /** A field as @p read makes it of its text. */
    template <typename Read>
    auto as(std::size_t i, Read read) const {
        try {
            return read(fields_[i]);
        } catch (const std::runtime_error& e) {
            fail(i, e.what());
        }
    }

    template <std::size_t N>
    std::array<double, N> numbers(std::size_t i) const {
        const std::vector<double> values = as(i, numbersOf);
        if (values.size() != N) {
            fail(i, std::to_string(values.size()) + " numbers instead of " + std::to_string(N));
        }
        std::array<double, N> result{};
        std::copy(values.begin(), values.end(), result.begin());
        return result;
    }

    std::string_view raw(std::size_t i) const { return fields_[i]; }
    std::size_t size() const { return fields_.size(); }

    [[noreturn]] void fail(std::size_t i, const std::string& reason) const {
        throw std::runtime_error(std::string("field ") + (i < names_.size() ? names_[i] : std::to_string(i + 1)) +
                                 ": " + reason);
    }

private:
    std::vector<const char*> names_;
    std::vector<std::string_view> fields_;
};

bool StreamReader::nextLine() {
    while (!rest_.empty()) {
        line_ = nextLineNumber_++;
        const std::size_t end = rest_.find('\n');
        if (end == std::string_view::npos) {
            throw StreamError(stream_, line_, "not ended by a line break");
        }
        text_ = rest_.substr(0, end);
        rest_.remove_prefix(end + 1);
        if (!text_.empty()) {
            return true;
        }
    }
    return false;
}

std::string StreamReader::bytes(std::size_t size) {
    if (rest_.size() <= size || rest_[size] != '\n') {
        throw std::runtime_error("there are not as many bytes behind it as it says");
    }
    std::string result(rest_.substr(0, size));
    rest_.remove_prefix(size + 1);
    nextLineNumber_ += 1 + static_cast<std::size_t>(std::count(result.begin(), result.end(), '\n'));
    return result;
}

/** Reads the next line by @p function, whose faults get the place put in front. */
template <typename Function>
bool StreamReader::readLine(Function&& function) {
    if (!nextLine()) {
        return false;
    }
    try {
        function();
    } catch (const StreamError&) {
        throw;
    } catch (const std::runtime_error& e) {
        throw StreamError(stream_, line_, e.what());
    }
    return true;
}

bool StreamReader::read(ForeignObjectLine& line) {
    return readLine([&] {
        const Fields fields(text_, {"identity", "spatial hash", "GlobalId"});
        line.identityId = static_cast<int>(fields.as(0, toLong));
        line.spatialHashId = static_cast<int>(fields.as(1, toLong));
        line.globalId = fields.globalId(2);
    });
}

bool StreamReader::read(PolygonsLine& line) {
    return readLine([&] {
        const Fields fields(text_, {"object", "material", "vertices"});
        line.object = fields.as(0, countOf<std::size_t>);
        line.surface.material = fields.as(1, countOf<std::uint32_t>);
        const std::vector<double> coordinates = fields.as(2, numbersOf);
        if (coordinates.size() % 3 != 0) {
            fields.fail(2, "a vertex lacks a coordinate");
        }
        line.surface.vertices.resize(coordinates.size() / 3);
        for (std::size_t i = 0; i < coordinates.size(); ++i) {
            line.surface.vertices[i / 3][i % 3] = coordinates[i];
        }
        line.surface.sizes.clear();
        line.surface.corners.clear();
        for (std::size_t i = 3; i < fields.size(); ++i) {
            std::vector<std::uint32_t> polygon;
            for (const std::string_view vertex : split(fields.raw(i), ' ')) {
                polygon.push_back(countOf<std::uint32_t>(vertex));
            }
            line.surface.addPolygon(polygon);
        }
        const std::string fault = line.surface.fault();
        if (!fault.empty()) {
            throw std::runtime_error(fault);
        }
    });
}

bool StreamReader::read(MaterialLine& line) {
    return readLine([&] {
        const Fields fields(text_, {"colour", "name"});
        line.colour = fields.numbers<4>(0);
        line.name = fields.text(1);
    });
}

bool StreamReader::read(LayerLine& line) {
    return readLine([&] {
        const Fields fields(text_, {"GlobalId", "elevation", "name"});
        line.globalId = fields.globalId(0);
        line.elevation = fields.numbers<1>(1)[0];
        line.name = fields.text(2);
    });
}

bool StreamReader::read(HierarchyLine& line) {
    return readLine([&] {
        const Fields fields(text_, {"GlobalId", "parent", "class", "name"});
        line.globalId = fields.globalId(0);
        line.parentGlobalId = fields.globalId(1);
        line.className = fields.required(2);
        line.name = fields.text(3);
    });
}

bool StreamReader::read(LogLine& line) {
    return readLine([&] {
        const Fields fields(text_, {"kind", "text"});
        line.kind = fields.text(0);
        line.text = fields.text(1);
        if (line.kind != "warning" && line.kind != "error") {
            fields.fail(0, "neither warning nor error");
        }
    });
}

bool StreamReader::read(InfoLine& line) {
    return readLine([&] {
        const Fields fields(text_, {"key", "value"});
        line.key = fields.required(0);
        line.value = fields.text(1);
    });
}

bool StreamReader::read(ProgressLine& line) {
    return readLine([&] {
        const Fields fields(text_, {"part", "what"});
        line.part = fields.numbers<1>(0)[0];
        line.what = fields.text(1);
    });
}

bool StreamReader::read(SolidLine& line) {
    return readLine([&] {
        const Fields fields(text_, {"object", "type", "size"});
        line.object = fields.as(0, countOf<std::size_t>);
        line.type = fields.as(1, countOf<int>);
        line.bytes = bytes(fields.as(2, countOf<std::size_t>));
    });
}

bool StreamReader::read(TextureLine& line) {
    return readLine([&] {
        const Fields fields(text_, {"size", "name"});
        line.name = fields.required(1);
        line.bytes = bytes(fields.as(0, countOf<std::size_t>));
    });
}

ObjectLine StreamReader::objectOf(std::string_view text) {
    const Fields fields(text, {"identity", "spatial hash", "version", "class", "position", "name"});
    ObjectLine line;
    line.identity = fields.as(0, identityOf);
    line.spatialHash = fields.as(1, identityOf);
    line.version = fields.as(2, versionOf);
    line.className = fields.text(3);
    line.position = fields.numbers<3>(4);
    line.name = fields.text(5);
    line.sourceId = fields.textOrNone(6);
    return line;
}

bool StreamReader::read(std::variant<ObjectLine, EndLine>& line) {
    return readLine([&] {
        if (hasEnded_) {
            throw std::runtime_error("text behind the closing line");
        }
        if (text_.substr(0, 4) != "end\t") {
            line = objectOf(text_);
            ++objectCount_;
            return;
        }
        const Fields fields(text_, {"end", "number of objects"});
        const EndLine end = {fields.as(1, countOf<std::size_t>)};
        if (end.objectCount != objectCount_) {
            fields.fail(1, "there are " + std::to_string(objectCount_));
        }
        hasEnded_ = true;
        line = end;
    });
}

bool StreamReader::read(std::variant<SetLine, PropertyLine>& line) {
    return readLine([&] {
        if (text_.substr(0, 4) == "set\t") {
            line = setOf(text_);
            isInSet_ = true;
            deepest_ = 0;
            return;
        }
        if (text_.substr(0, 9) != "property\t") {
            throw std::runtime_error("neither a set nor a property");
        }
        PropertyLine property = propertyOf(text_);
        if (!isInSet_ || property.depth > deepest_) {
            throw std::runtime_error("a property of nothing");
        }
        deepest_ = property.depth + (property.type == "complex" ? 1 : 0);
        line = std::move(property);
    });
}

SetLine StreamReader::setOf(std::string_view text) {
    const Fields fields(text, {"set", "object", "GlobalId", "form", "GlobalId of the set", "name", "description"});
    SetLine line;
    line.object = fields.as(1, countOf<std::size_t>);
    line.globalId = fields.globalId(2);
    line.form = fields.required(3);
    line.setGlobalId = fields.globalId(4);
    line.name = fields.text(5);
    line.description = fields.text(6);
    line.nameInFile = fields.textOrNone(7);
    return line;
}

PropertyLine StreamReader::propertyOf(std::string_view text) {
    const Fields fields(text, {"property", "depth", "name", "description", "type", "value"});
    PropertyLine line;
    line.depth = fields.as(1, countOf<std::size_t>);
    line.name = fields.text(2);
    line.description = fields.text(3);
    line.type = fields.text(4);
    line.value = fields.text(5);
    line.nameInFile = fields.textOrNone(6);
    line.factor = fields.size() > 7 ? fields.numbers<1>(7)[0] : 1.0;
    const std::string fault = faultOf(line);
    if (!fault.empty()) {
        fields.fail(5, fault);
    }
    return line;
}

std::vector<ObjectLine> readObjectLines(std::string_view content) {
    StreamReader reader("objects", content);
    std::vector<ObjectLine> objects;
    for (std::variant<ObjectLine, EndLine> line; reader.read(line);) {
        if (std::holds_alternative<EndLine>(line)) {
            reader.read(line); // throws if something follows
            return objects;
        }
        objects.push_back(std::get<ObjectLine>(std::move(line)));
    }
    throw StreamError("objects", 0, "no closing line with the number of objects");
}

ObjectLine objectLineFrom(std::string_view line) {
    return StreamReader::objectOf(line);
}

} // namespace PluginKit
