/**
 * @file PluginFolder.h
 * Where plug-ins are found.
 */
#pragma once

#include <string>

/** The IFC plug-in beside the program or, when that is installed, in the folder of its plug-ins. */
std::string defaultPlugin(const char* calledAs);
