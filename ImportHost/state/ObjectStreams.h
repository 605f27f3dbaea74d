/**
 * @file ObjectStreams.h
 * The objects of an import, put together from the streams that a plug-in wrote.
 */
#pragma once

#include "state/ObjectRecord.h"

#include <string>
#include <vector>

/**
 * Reads the objects that a plug-in wrote to the streams in @p folder. Throws Failure for the plug-in, also when the
 * closing line of the objects stream is missing or tells another number.
 */
std::vector<ObjectRecord> readObjects(const std::string& folder, const std::string& plugin);
