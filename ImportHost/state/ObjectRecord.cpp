#include "state/ObjectRecord.h"

#include "Failure.h"
#include "state/Files.h"

#include <PluginKit/Text.h>

#include <cmath>
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
    return version;
}

std::string guidToHex(const ExternalGUID& guid) {
    unsigned int size = 0;
    const char* bytes = guid.getBytes(&size);
    return toHex(bytes, size);
}

} // namespace

std::string identityText(const ExternalGUID& identity) {
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

std::string recordToLine(const ObjectRecord& record) {
    char version[maxVersionSize];
    const unsigned int versionSize = record.version.toByteStream(maxVersionSize, version);
    return guidToHex(record.identity) + '\t' + guidToHex(record.spatialHash) + '\t' + toHex(version, versionSize) +
           '\t' + escaped(record.className) + '\t' + numberText(record.position[0]) + ' ' +
           numberText(record.position[1]) + ' ' + numberText(record.position[2]) + '\t' + escaped(record.name) + '\t' +
           footprintToText(record.footprint) + '\t' + propertyListToFields(record.properties);
}

ObjectRecord recordFromLine(std::string_view line) {
    const std::vector<std::string_view> fields = split(line, '\t');
    if (fields.size() < 6) {
        throw std::runtime_error("too few fields");
    }

    ObjectRecord record;
    record.identity = guidFromHex(fields[0]);
    record.spatialHash = guidFromHex(fields[1]);
    record.version = versionFromHex(fields[2]);
    record.className = unescaped(fields[3]);
    const std::vector<std::string_view> coordinates = split(fields[4], ' ');
    if (coordinates.size() != record.position.size()) {
        throw std::runtime_error("not a position");
    }
    for (std::size_t i = 0; i < coordinates.size(); ++i) {
        record.position[i] = toDouble(coordinates[i]);
        if (!std::isfinite(record.position[i])) {
            throw std::runtime_error("not a position");
        }
    }
    record.name = unescaped(fields[5]);
    if (fields.size() > 6) {
        record.footprint = footprintFromText(fields[6]);
    }
    if (fields.size() > 7) {
        record.properties =
            propertyListFromFields(line.substr(static_cast<std::size_t>(fields[7].data() - line.data())));
    }
    return record;
}

std::vector<ObjectRecord> readObjects(const std::string& folder, const std::string& plugin) {
    const std::string content = readFile(folder + "/objects");
    std::vector<ObjectRecord> records;
    bool complete = false;
    for (const std::string_view line : split(content, '\n')) {
        try {
            if (complete && !line.empty()) {
                throw std::runtime_error("text behind the closing line");
            }
            if (line.compare(0, 4, "end\t") == 0) {
                complete = line.substr(4) == std::to_string(records.size());
            } else if (!line.empty()) {
                records.push_back(recordFromLine(line));
            }
        } catch (const std::runtime_error& e) {
            throw Failure(plugin, "wrong objects stream, line " + std::to_string(records.size() + 1) + ": " + e.what());
        }
    }
    if (!complete) {
        throw Failure(plugin, "incomplete objects stream: no closing line with the number of objects");
    }

    const std::string polygons = readFile(folder + "/polygons");
    try {
        std::vector<Footprint> footprints = readFootprints(polygons, records.size());
        for (std::size_t i = 0; i < records.size(); ++i) {
            records[i].footprint = std::move(footprints[i]);
        }
    } catch (const std::runtime_error& e) {
        throw Failure(plugin, std::string("wrong polygons stream, ") + e.what());
    }
    const std::string attributes = readFile(folder + "/attributes");
    try {
        std::vector<PropertyList> properties = readPropertyLists(attributes, records.size());
        for (std::size_t i = 0; i < records.size(); ++i) {
            records[i].properties = std::move(properties[i]);
        }
    } catch (const std::runtime_error& e) {
        throw Failure(plugin, std::string("wrong attributes stream, ") + e.what());
    }
    return records;
}
