/**
 * @file Failure.h
 * What goes wrong with a file or folder.
 */
#pragma once

#include <new>
#include <stdexcept>
#include <string>

/** Ends the import; the text names the file and the reason. */
class Failure : public std::runtime_error {
public:
    Failure(const std::string& file, const std::string& reason) : Failure(file + ": " + reason) {}

    /** From a text that names both. */
    explicit Failure(const std::string& text) : std::runtime_error(text) {}

    /** The same failure with details. */
    Failure with(const std::string& details) const {
        Failure failure(what());
        failure.details_ = details;
        return failure;
    }

    /** What a plug-in had to say before it failed, of any content; shown behind the line. */
    const std::string& details() const { return details_; }

private:
    std::string details_;
};

/** The reason that an exception gives, in words; library types have only a name. */
inline std::string reasonOf(const std::exception& e) {
    if (dynamic_cast<const std::bad_alloc*>(&e) != nullptr || dynamic_cast<const std::length_error*>(&e) != nullptr) {
        return "not enough memory";
    }
    return e.what();
}
