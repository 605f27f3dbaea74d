/**
 * @file StreamError.h
 * What is wrong with a line of a stream.
 */
#pragma once

#include <stdexcept>
#include <string>

namespace PluginKit {

/** Thrown by the writer and the reader; the text names the stream, the line, and the field if it is one field's fault. */
class StreamError : public std::runtime_error {
public:
    /**
     * @param stream  name of the stream
     * @param line    number of the line, from 1; 0 when the fault lies in no line
     * @param reason  what is wrong
     */
    StreamError(const std::string& stream, std::size_t line, const std::string& reason)
        : std::runtime_error(stream + " stream, " + (line == 0 ? "" : "line " + std::to_string(line) + ": ") + reason) {
    }
};

} // namespace PluginKit
