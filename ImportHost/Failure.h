/**
 * @file Failure.h
 * What goes wrong with a file or folder.
 */
#pragma once

#include <stdexcept>
#include <string>

/** Ends the import; the text names the file and the reason. */
class Failure : public std::runtime_error {
public:
    Failure(const std::string& file, const std::string& reason) : Failure(file + ": " + reason) {}

    /** From a text that names both. */
    explicit Failure(const std::string& text) : std::runtime_error(text) {}
};
