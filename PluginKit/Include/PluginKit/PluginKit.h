/**
 * @file PluginKit.h
 * All that a plug-in needs of the kit.
 */
#pragma once

#include <PluginKit/Escapes.h>
#include <PluginKit/Import.h>
#include <PluginKit/Measure.h>
#include <PluginKit/Number.h>
#include <PluginKit/Polygons.h>
#include <PluginKit/SourceId.h>
#include <PluginKit/StreamWriter.h>
#include <PluginKit/Utf8.h>
