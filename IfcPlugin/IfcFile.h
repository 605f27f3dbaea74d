/**
 * @file IfcFile.h
 * Reads a file and makes sure that it is a whole IFC 2x3 model before the reader sees it.
 */
#pragma once

#include <string>

/** The text of a file. Throws ModelError when it can't be read, is no IFC 2x3 model or ends too early. */
std::string readIfcFile(const std::string& fileName);
