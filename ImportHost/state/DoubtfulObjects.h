/**
 * @file DoubtfulObjects.h
 * What a plug-in says of how well it could build the objects.
 */
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

/**
 * The number of objects whose shape could not be built in full or is open, out of an info stream. Nothing when the stream
 * does not tell it as a whole number: what a plug-in says beside the objects is no reason to refuse them.
 */
std::optional<std::size_t> doubtfulObjects(std::string_view infoStream);
