/**
 * @file ObjectRecord.h
 * An imported object as a plug-in hands it over and as the state keeps it.
 */
#pragma once

#include "state/Box.h"
#include "state/Footprint.h"
#include "state/PropertyList.h"
#include "state/Shape.h"

#include <ImportCommon/ExternalGUID.h>
#include <ImportCommon/ExternalVersion.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

struct ObjectRecord {
    ImportCommon::ExternalGUID identity;
    ImportCommon::ExternalGUID spatialHash;
    ImportCommon::ExternalVersion version;
    std::string className;
    Vector3 position{};   ///< centre of the bounding box in the world, in metres
    std::string name;     ///< UTF-8 as the plug-in wrote it
    std::string sourceId; ///< of any length, as the source has it; empty when the plug-in hands over none
    Footprint footprint;
    Box box;                              ///< around the surface, or where there is none as the version tells it
    Shape shape;                          ///< of area 0 when it is not known
    std::optional<Attributes> attributes; ///< nothing when they are not known
    PropertyList properties;
};

/** What is enclosed, in cubic metres; nothing for an object that encloses nothing. */
std::optional<double> volumeOf(const ObjectRecord& record);

/** An attribute such as "Tag" or "Storey"; nothing when the object has none. */
std::optional<std::string> attributeOf(const ObjectRecord& record, std::string_view attribute);

/**
 * What an object is called by: its source's own id where there is one, else the GlobalId, or for an identity of another
 * kind a text that tells it from others.
 */
std::string identityText(const ObjectRecord& record);

/** Whether that is the same for both; where one has no id of its source, whether their identities are. */
bool haveSameIdentity(const ObjectRecord& a, const ObjectRecord& b);

/** The line of the state. */
std::string recordToLine(const ObjectRecord& record);

/** The format in which recordToLine writes; states of format 1 and later are read. */
constexpr int stateFormat = 3;

/** Reads a line of a state of some format. Throws std::runtime_error, also for values out of range. */
ObjectRecord recordFromLine(std::string_view line, int format = stateFormat);

/** Reads the objects' own line of an objects stream; what other streams say of it is left empty. Throws likewise. */
ObjectRecord recordFromStream(std::string_view line);
