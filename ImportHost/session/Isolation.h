/**
 * @file Isolation.h
 * Work that may take its process down.
 */
#pragma once

#include <functional>
#include <string>

/**
 * Does the work in a child process, so that a plug-in that crashes leaves this one whole. Only files remain of what the
 * work does.
 *
 * Throws what the work throws as Failure; when the child ends in any other way, a Failure that blames @p file. What it
 * writes to the standard error stream is shown at its end, unless it crashes.
 */
void runIsolated(const std::string& file, const std::function<void()>& work);
