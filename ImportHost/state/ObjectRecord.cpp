#include "state/ObjectRecord.h"

#include "state/Numbers.h"

#include <PluginKit/Text.h>

#include <cstring>
#include <stdexcept>

using namespace ImportCommon;

namespace {

constexpr unsigned int maxVersionSize = ImportCommon::CExternalVersion::MaximumStreamSize;

ExternalGUID guidFromHex(std::string_view text) {
    const std::string bytes = fromHex(text);
    const ExternalGUID guid = ExternalGUID::fromByteStream(static_cast<unsigned int>(bytes.size()), bytes.data());
    unsigned int size = 0;
    guid.getBytes(&size);
    if (bytes.size() != size || guid.getType() < ExternalGUID::GUIDTypeSpatialHash ||
        guid.getType() > ExternalGUID::GUIDTypeHalvorneObi) {
        throw std::runtime_error("not an identity");
    }
    return guid;
}

/** Throws unless all numbers of a version may be those of an object in the world. */
void checkRange(const ExternalVersion& version) {
    const auto check = [](double number, double low, double high) {
        if (!(number >= low && number <= high)) {
            throw std::runtime_error("a version's value is not finite or out of range");
        }
    };
    const bool isSolid = version.getType() == ExternalVersionType_Solid;
    Vector3 values{};
    version.getBoundingBox(&values[0], &values[1], &values[2]);
    for (const double size : values) {
        check(size, 0.0, 2.0 * farthest);
    }
    if (isSolid || version.getType() == ExternalVersionType_Geometry) {
        double distances[8] = {};
        version.getDistances(distances);
        for (const double distance : distances) {
            check(distance, 0.0, 4.0 * farthest);
        }
    }
    if (isSolid) {
        check(version.getVolume(), 0.0, 8.0 * farthest * farthest * farthest);
        version.getCenteroid(&values[0], &values[1], &values[2]);
        for (const double coordinate : values) {
            check(coordinate, -farthest, farthest);
        }
    }
}

ExternalVersion versionFromHex(std::string_view text) {
    const std::string bytes = fromHex(text);
    ExternalVersion version;
    version.fromByteStream(static_cast<unsigned int>(bytes.size()), bytes.data());
    // Written back, a version has the size that its kind asks for: a stream of another size was not one.
    char written[maxVersionSize];
    if (version.getType() > ExternalVersionType_Geometry ||
        version.toByteStream(maxVersionSize, written) != bytes.size() || bytes.empty()) {
        throw std::runtime_error("not a version");
    }
    checkRange(version);
    return version;
}

void appendGuid(std::string& text, const ExternalGUID& guid) {
    unsigned int size = 0;
    const char* bytes = guid.getBytes(&size);
    appendHex(text, bytes, size);
}

std::string guidText(const ExternalGUID& identity) {
    if (identity.getType() == ExternalGUID::GUIDTypeIFCGlobalID) {
        return identity.getIFCGlobalID();
    }
    if (identity.getType() == ExternalGUID::GUIDTypeHalvorneObi) {
        return std::to_string(identity.getHalvorneObi());
    }
    unsigned int size = 0;
    const char* bytes = identity.getBytes(&size);
    if (identity.getType() == ExternalGUID::GUIDTypePX) {
        return toHex(bytes + 8, sizeof(PXGUID_t));
    }
    return "spatial-hash-" + toHex(bytes + 8, size - 8);
}

/** The box around the position that the version tells. */
Box boxOfVersion(const ObjectRecord& record) {
    Vector3 size{};
    record.version.getBoundingBox(&size[0], &size[1], &size[2]);
    Box box;
    for (std::size_t k = 0; k < size.size(); ++k) {
        box.low[k] = record.position[k] - size[k] / 2.0;
        box.high[k] = record.position[k] + size[k] / 2.0;
    }
    return box;
}

Box boxFromText(std::string_view text) {
    const std::vector<std::string_view> fields = split(text, ' ');
    Box box;
    if (fields.size() != box.low.size() + box.high.size()) {
        throw std::runtime_error("not a box");
    }
    for (std::size_t k = 0; k < box.low.size(); ++k) {
        box.low[k] = toCoordinate(fields[k]);
        box.high[k] = toCoordinate(fields[k + box.low.size()]);
        if (box.low[k] > box.high[k]) {
            throw std::runtime_error("not a box");
        }
    }
    return box;
}

/** Their number, or a dash where they are not known, and the names and values. */
void appendAttributes(std::string& text, const std::optional<Attributes>& attributes) {
    if (!attributes) {
        text += '-';
        return;
    }
    text += std::to_string(attributes->size());
    for (const auto& [name, value] : *attributes) {
        appendEscaped(text += '\t', name);
        appendEscaped(text += '\t', value);
    }
}

/** Reads attributes from @p fields on; @p next is the field behind them. */
std::optional<Attributes> attributesFromFields(const std::vector<std::string_view>& fields, std::size_t& next) {
    const std::string_view head = fields[next++];
    if (head == "-") {
        return std::nullopt;
    }
    const long count = toLong(head);
    if (count < 0 || static_cast<unsigned long>(count) > (fields.size() - next) / 2) {
        throw std::runtime_error("attributes are missing");
    }
    Attributes attributes;
    for (long i = 0; i < count; ++i, next += 2) {
        attributes[unescaped(fields[next])] = unescaped(fields[next + 1]);
    }
    return attributes;
}

/** The fields that begin a line of the state as they begin a line of the stream. */
constexpr std::size_t commonFields = 6;

ObjectRecord readCommonFields(const std::vector<std::string_view>& fields) {
    if (fields.size() < commonFields) {
        throw std::runtime_error("too few fields");
    }
    ObjectRecord record;
    record.identity = guidFromHex(fields[0]);
    record.spatialHash = guidFromHex(fields[1]);
    record.version = versionFromHex(fields[2]);
    record.className = unescaped(fields[3]);
    record.position = toVector(fields[4]);
    record.name = unescaped(fields[5]);
    record.box = boxOfVersion(record);
    return record;
}

/** The properties of a line of the state, from a field on to the end. */
PropertyList readProperties(std::string_view line, std::string_view firstField) {
    return propertyListFromFields(line.substr(static_cast<std::size_t>(firstField.data() - line.data())));
}

/** What formats 1 and 2 have behind the common fields. */
void readOldFields(std::string_view line, const std::vector<std::string_view>& fields, ObjectRecord& record) {
    if (fields.size() > commonFields) {
        record.footprint = footprintFromText(fields[commonFields]);
    }
    if (fields.size() > commonFields + 1) {
        record.properties = readProperties(line, fields[commonFields + 1]);
        record.properties.areUnitsKnown = false;
    }
}

} // namespace

std::optional<double> volumeOf(const ObjectRecord& record) {
    if (record.version.getType() != ExternalVersionType_Solid) {
        return std::nullopt;
    }
    return record.version.getVolume();
}

std::optional<std::string> attributeOf(const ObjectRecord& record, std::string_view attribute) {
    if (!record.attributes) {
        return std::nullopt;
    }
    const auto found = record.attributes->find(attribute);
    return found == record.attributes->end() ? std::nullopt : std::optional<std::string>(found->second);
}

std::string identityText(const ObjectRecord& record) {
    return record.sourceId.empty() ? guidText(record.identity) : record.sourceId;
}

bool haveSameIdentity(const ObjectRecord& a, const ObjectRecord& b) {
    if (!a.sourceId.empty() && !b.sourceId.empty()) {
        return a.sourceId == b.sourceId;
    }
    unsigned int size = 0;
    const char* const bytes = a.identity.getBytes(&size);
    return std::memcmp(bytes, b.identity.getBytes(&size), size) == 0;
}

std::string recordToLine(const ObjectRecord& record) {
    std::string text;
    char version[maxVersionSize];
    const unsigned int versionSize = record.version.toByteStream(maxVersionSize, version);
    appendGuid(text, record.identity);
    appendGuid(text += '\t', record.spatialHash);
    appendHex(text += '\t', version, versionSize);
    appendEscaped(text += '\t', record.className);
    appendVector(text += '\t', record.position);
    appendEscaped(text += '\t', record.name);
    appendEscaped(text += '\t', record.sourceId);
    appendFootprint(text += '\t', record.footprint);
    appendVector(text += '\t', record.box.low);
    appendVector(text += ' ', record.box.high);
    appendShape(text += '\t', record.shape);
    appendAttributes(text += '\t', record.attributes);
    appendPropertyList(text += '\t', record.properties);
    return text;
}

ObjectRecord recordFromLine(std::string_view line, int format) {
    const std::vector<std::string_view> fields = split(line, '\t');
    ObjectRecord record = readCommonFields(fields);
    if (format < 3) {
        readOldFields(line, fields, record);
        return record;
    }
    std::size_t next = commonFields;
    if (fields.size() < next + 6) {
        throw std::runtime_error("too few fields");
    }
    record.sourceId = unescaped(fields[next++]);
    record.footprint = footprintFromText(fields[next++]);
    record.box = boxFromText(fields[next++]);
    record.shape = shapeFromText(fields[next++]);
    record.attributes = attributesFromFields(fields, next);
    if (next >= fields.size()) {
        throw std::runtime_error("too few fields");
    }
    record.properties = readProperties(line, fields[next]);
    return record;
}

ObjectRecord recordFromStream(std::string_view line) {
    const std::vector<std::string_view> fields = split(line, '\t');
    ObjectRecord record = readCommonFields(fields);
    if (fields.size() > commonFields) {
        record.sourceId = unescaped(fields[commonFields]);
    }
    return record;
}
