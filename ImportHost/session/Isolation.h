/**
 * @file Isolation.h
 * Work that may take its process down.
 */
#pragma once

#include "Failure.h"

#include <functional>
#include <string>

/** A failure of which the line says everything that the system's loader had to say. */
class LoadFailure : public Failure {
public:
    using Failure::Failure;
};

/**
 * Does the work in a child process, so that a plug-in that crashes leaves this one whole. Only files remain of what the
 * work does; a process that it leaves behind is not waited for, and holds none of this one's folders.
 *
 * Throws what the work throws as Failure; when the child ends in any other way, a Failure that blames @p file. What the
 * child writes to its standard streams is shown on the standard error stream when the work has succeeded, and otherwise
 * carried by the Failure; of much text the beginning and the end are kept.
 */
void runIsolated(const std::string& file, const std::function<void()>& work);
