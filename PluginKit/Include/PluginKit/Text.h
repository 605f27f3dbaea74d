/**
 * @file Text.h
 * All text functions of the kit by their short names, for a program's own sources; a header includes the single ones.
 */
#pragma once

#include <PluginKit/Checksum.h>
#include <PluginKit/Escapes.h>
#include <PluginKit/Hex.h>
#include <PluginKit/Number.h>
#include <PluginKit/Utf8.h>

using namespace PluginKit; // NOLINT: that is its purpose
