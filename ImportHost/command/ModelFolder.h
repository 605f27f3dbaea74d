/**
 * @file ModelFolder.h
 * Which files of a folder are models.
 */
#pragma once

#include <string>
#include <vector>

/**
 * The files of a folder whose names match a pattern of the shell, capitals or not, in their order. What an import wrote
 * beside a model is none. Throws Failure when there are none.
 */
std::vector<std::string> modelsIn(const std::string& folder, const std::string& pattern);
