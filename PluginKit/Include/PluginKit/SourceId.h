/**
 * @file SourceId.h
 * An object's own id, of any length, as an identity.
 */
#pragma once

#include <ImportCommon/ExternalGUID.h>

#include <string_view>

namespace PluginKit {

/**
 * The identity of an object that its source knows by a text of any length: a 128-bit hash of the text in the form of a
 * PX GUID, the same on every system and in every version.
 *
 * With fewer than some 2^60 ids no two have the same hash, unless somebody makes them so on purpose. Keep the id
 * itself beside the object (ObjectLine::sourceId), for whoever reads the report. An id of exactly 22 characters that
 * is an IFC GlobalId is better given to ExternalGUID::fromIFCGlobalID, which cuts longer ones.
 *
 * @param id  the id, as bytes; an empty one gives the kind GUIDTypeNone
 */
ImportCommon::ExternalGUID identityFromSourceId(std::string_view id);

} // namespace PluginKit
