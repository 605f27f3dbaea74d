#include "Streams.h"

#include <assimp/material.h>

#include <charconv>
#include <cmath>
#include <cstdio>

using namespace ImportCommon;

namespace {

/** One line of tab-separated fields. */
class Line {
public:
    /** Text as it stands. */
    Line& field(std::string_view text) {
        next().append(text);
        return *this;
    }

    /** Text that may hold anything: control characters and percent signs become %XX. */
    Line& escaped(std::string_view text) {
        constexpr char digits[] = "0123456789ABCDEF";
        next();
        for (const char c : text) {
            const auto byte = static_cast<unsigned char>(c);
            if (byte < 0x20 || byte == 0x7F || byte == '%') {
                text_.append({'%', digits[byte >> 4], digits[byte & 15]});
            } else {
                text_ += c;
            }
        }
        return *this;
    }

    Line& hex(const char* bytes, std::size_t size) {
        constexpr char digits[] = "0123456789abcdef";
        next();
        for (std::size_t i = 0; i < size; ++i) {
            const auto byte = static_cast<unsigned char>(bytes[i]);
            text_.append({digits[byte >> 4], digits[byte & 15]});
        }
        return *this;
    }

    Line& number(long long value) {
        next();
        return append(value);
    }

    /** Coordinates that read back as the same doubles. */
    Line& vector(const Vector& v) {
        next();
        return append(v.x).space().append(v.y).space().append(v.z);
    }

    template <typename Number>
    Line& append(Number value) {
        char buffer[32];
        text_.append(buffer, std::to_chars(buffer, buffer + sizeof buffer, value).ptr);
        return *this;
    }

    Line& space() {
        text_ += ' ';
        return *this;
    }

    std::string& next() {
        if (!first_) {
            text_ += '\t';
        }
        first_ = false;
        return text_;
    }

    void writeTo(FILE* stream) {
        text_ += '\n';
        if (stream != nullptr) {
            std::fwrite(text_.data(), 1, text_.size(), stream);
        }
    }

private:
    std::string text_;
    bool first_ = true;
};

/** Hundredths of a millimetre are enough for polygons, which are shown and not compared. */
double rounded(double metres) {
    return std::round(metres * 1e5) / 1e5 + 0.0;
}

void writeGuid(Line& line, const ExternalGUID& guid) {
    unsigned int size = 0;
    const char* bytes = guid.getBytes(&size);
    line.hex(bytes, size);
}

std::string_view idOrDash(const Product* product) {
    return product == nullptr || product->globalId.empty() ? std::string_view("-") : product->globalId;
}

/** Bytes behind the line that tells their number. */
void writeBytes(const char* bytes, std::size_t size, FILE* stream) {
    if (stream == nullptr) {
        return;
    }
    std::fwrite(bytes, 1, size, stream);
    std::fputc('\n', stream);
}

/** Type and value; @p text is all of a text that the value may hold only the beginning of. */
void writeValue(Line& line, const IFC2X3PropertySingleValue& value, std::string_view text) {
    using Value = IFC2X3PropertySingleValue;
    const auto real = [&](std::string_view type) {
        line.field(type).next();
        line.append(value.getRealValue());
    };
    switch (value.getValueType()) {
    case Value::ValueType_String:
        line.field("text").escaped(text);
        break;
    case Value::ValueType_Boolean:
        line.field("boolean").field(value.getBooleanValue() ? "true" : "false");
        break;
    case Value::ValueType_Logical:
        line.field("logical").field(value.getLogicalValue() == Value::Logical_True    ? "true"
                                    : value.getLogicalValue() == Value::Logical_False ? "false"
                                                                                      : "unknown");
        break;
    case Value::ValueType_Integer:
        line.field("integer").number(value.getIntValue());
        break;
    case Value::ValueType_Integer64:
        line.field("integer").number(value.getInt64Value());
        break;
    case Value::ValueType_Length:
        real("length");
        break;
    case Value::ValueType_PlaneAngle:
        real("angle");
        break;
    default:
        real("real");
    }
}

} // namespace

void Streams::info(std::string_view key, std::string_view value) {
    Line().field(key).escaped(value).writeTo(env_.info);
}

void Streams::warning(std::string_view text) {
    Line().field("warning").escaped(text).writeTo(env_.log);
}

void Streams::error(std::string_view text) {
    Line().field("error").escaped(text).writeTo(env_.log);
}

void Streams::progress(double part, std::string_view what) {
    if (part < shownProgress_ + 0.01 && part < 1.0) {
        return;
    }
    shownProgress_ = part;
    Line line;
    line.next();
    line.append(part).field(what).writeTo(env_.progress);
    if (env_.progress != nullptr) {
        std::fflush(env_.progress); // the host reads along
    }
}

void Streams::material(const aiMaterial& material) {
    aiString name;
    material.Get(AI_MATKEY_NAME, name);
    aiColor3D colour(0.6f, 0.6f, 0.6f);
    material.Get(AI_MATKEY_COLOR_DIFFUSE, colour);
    float opacity = 1.0f;
    material.Get(AI_MATKEY_OPACITY, opacity);

    Line line;
    line.next();
    line.append(colour.r).space().append(colour.g).space().append(colour.b).space().append(opacity);
    line.escaped(name.C_Str()).writeTo(env_.materials);
}

void Streams::hierarchy(const Product& product, const Product* parent) {
    Line line;
    line.field(idOrDash(&product)).field(idOrDash(parent)).escaped(product.className).escaped(product.name);
    line.writeTo(env_.hierarchy);
}

void Streams::storey(const Product& storey) {
    Line line;
    line.field(idOrDash(&storey)).next();
    line.append(rounded(storey.origin.z)).escaped(storey.name).writeTo(env_.layers);
}

void Streams::object(const ExternalGUID& identity, ExternalGUIDRuntimeID_e identityId, const ExternalGUID& hash,
                     ExternalGUIDRuntimeID_e hashId, const ExternalVersion& version, const Vector& position,
                     const Product& product) {
    ++objectCount_;
    Line().number(identityId).number(hashId).field(idOrDash(&product)).writeTo(env_.foreignObjects);

    char bytes[CExternalVersion::MaximumStreamSize];
    const unsigned int size = version.toByteStream(sizeof bytes, bytes);
    Line line;
    writeGuid(line, identity);
    writeGuid(line, hash);
    line.hex(bytes, size).escaped(product.className).vector(position).escaped(product.name).writeTo(env_.objects);
}

void Streams::polygons(const Surface& surface, const Vector& origin) {
    Line line;
    line.number(static_cast<long>(objectCount_)).number(static_cast<long>(surface.material)).next();
    for (std::size_t i = 0; i < surface.vertices.size(); ++i) {
        const Vector v = surface.vertices[i] + origin;
        if (i > 0) {
            line.space();
        }
        line.append(rounded(v.x)).space().append(rounded(v.y)).space().append(rounded(v.z));
    }
    for (const Surface::Polygon& polygon : surface.polygons) {
        line.next();
        for (std::size_t i = 0; i < polygon.size(); ++i) {
            if (i > 0) {
                line.space();
            }
            line.append(polygon[i]);
        }
    }
    line.writeTo(env_.polygons);
}

void Streams::solid(const ForeignObjectSolid& solid) {
    unsigned int size = 0;
    const char* bytes = solid.getBytes(&size);
    Line line;
    line.number(static_cast<long>(objectCount_)).number(solid.getType()).number(static_cast<long>(size));
    line.writeTo(env_.solids);
    writeBytes(bytes, size, env_.solids);
}

void Streams::texture(const PngTexture& texture, std::string_view name) {
    const std::vector<char>& data = texture.getData();
    Line().number(static_cast<long>(data.size())).escaped(name).writeTo(env_.textures);
    writeBytes(data.data(), data.size(), env_.textures);
}

void Streams::propertySet(const Product& product, bool isObject, std::string_view form, const IFC2X3_PSet_Custom_s& set,
                          const IfcPropertySet& source, std::string_view name) {
    Line line;
    line.field("set").number(isObject ? static_cast<long>(objectCount_) : 0).field(idOrDash(&product)).field(form);
    line.field(std::string_view(set.globalId, sizeof set.globalId)).escaped(name).escaped(source.description);
    if (name != source.name) {
        line.escaped(source.name);
    }
    line.writeTo(env_.attributes);
}

void Streams::property(const IFC2X3Property& property, const IfcProperty& source, std::string_view name, int depth) {
    Line line;
    line.field("property").number(depth).escaped(name).escaped(source.description);
    const IFC2X3PropertySet& nested = property.getPropertyComplex().getPropertySet();
    if (property.getType() == IFC2X3Property::Type_Complex) {
        line.field("complex").escaped(source.usageName);
    } else {
        writeValue(line, property.getPropertySingleValue(), source.value.text);
    }
    if (name != source.name) {
        line.escaped(source.name);
    }
    line.writeTo(env_.attributes);
    for (unsigned int i = 0; i < nested.getCount() && i < source.nested.size(); ++i) {
        this->property(nested.getProperty(i), source.nested[i], source.nested[i].name, depth + 1);
    }
}

void Streams::end() {
    Line().field("end").number(static_cast<long>(objectCount_)).writeTo(env_.objects);
}
