/**
 * @file ObjectRecord.h
 * An imported object as a plug-in hands it over and as the state keeps it.
 */
#pragma once

#include "state/Footprint.h"
#include "state/PropertyList.h"

#include <ImportCommon/ExternalGUID.h>
#include <ImportCommon/ExternalVersion.h>

#include <array>
#include <string>
#include <string_view>
#include <vector>

struct ObjectRecord {
    ImportCommon::ExternalGUID identity;
    ImportCommon::ExternalGUID spatialHash;
    ImportCommon::ExternalVersion version;
    std::string className;
    std::array<double, 3> position{}; ///< centre of the bounding box in the world, in metres
    std::string name;                 ///< UTF-8 as the plug-in wrote it
    Footprint footprint;
    PropertyList properties;
};

/** A GlobalId, or for an identity of another kind a text that tells it from others. */
std::string identityText(const ImportCommon::ExternalGUID& identity);

/** The line of an objects stream with the footprint and the properties behind it. */
std::string recordToLine(const ObjectRecord& record);

/** Reads a line of an objects stream or of the state. Throws std::runtime_error. */
ObjectRecord recordFromLine(std::string_view line);

/**
 * Reads the objects that a plug-in wrote to the streams in @p folder. Throws Failure for the plug-in, also when the
 * closing line of the objects stream is missing or tells another number.
 */
std::vector<ObjectRecord> readObjects(const std::string& folder, const std::string& plugin);
