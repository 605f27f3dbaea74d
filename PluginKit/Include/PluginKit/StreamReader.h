/**
 * @file StreamReader.h
 * Reads what a plug-in wrote.
 */
#pragma once

#include <PluginKit/StreamError.h>
#include <PluginKit/StreamLines.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace PluginKit {

/**
 * Goes through the lines of one stream; empty lines are passed over.
 *
 *     StreamReader reader("materials", bytes);
 *     for (MaterialLine material; reader.read(material);) { ... }
 *
 * Each read() takes the next line, and returns false at the end of the stream. It throws StreamError for a line that is
 * not what its stream holds, such as "materials stream, line 3: 1 of 2 fields, name missing". A last line without its
 * line break is one that was cut, and refused.
 */
class StreamReader {
public:
    /**
     * @param stream   name of the stream, for messages
     * @param content  its bytes, which must outlive the reader
     */
    StreamReader(std::string stream, std::string_view content) : stream_(std::move(stream)), rest_(content) {}

    /** @return whether there was another line; what it says is in @p line */
    bool read(ForeignObjectLine& line);
    bool read(PolygonsLine& line);
    bool read(MaterialLine& line);
    bool read(LayerLine& line);
    bool read(HierarchyLine& line);
    bool read(LogLine& line);
    bool read(InfoLine& line);
    bool read(ProgressLine& line);
    bool read(SolidLine& line);
    bool read(TextureLine& line);

    /** An object, or the closing line. Nothing may follow that, and its number must be that of the objects. */
    bool read(std::variant<ObjectLine, EndLine>& line);

    /** A set or a property, whose depth is at most one greater than that of the complex property around it. */
    bool read(std::variant<SetLine, PropertyLine>& line);

    /** Number of the line that was read last, from 1. */
    std::size_t line() const { return line_; }

private:
    friend ObjectLine objectLineFrom(std::string_view line);
    class Fields;

    template <typename Function>
    bool readLine(Function&& function);
    bool nextLine();
    static ObjectLine objectOf(std::string_view text);
    static SetLine setOf(std::string_view text);
    static PropertyLine propertyOf(std::string_view text);
    std::string bytes(std::size_t size);

    std::string stream_;
    std::string_view rest_;
    std::string_view text_; ///< the line that was read last
    std::size_t line_ = 0;
    std::size_t nextLineNumber_ = 1;
    std::size_t objectCount_ = 0;
    std::size_t deepest_ = 0;
    bool isInSet_ = false;
    bool hasEnded_ = false;
};

/** The objects of an "objects" stream. Throws StreamError, also when the closing line is missing. */
std::vector<ObjectLine> readObjectLines(std::string_view content);

/** A line of "objects". Throws std::runtime_error that names the field. */
ObjectLine objectLineFrom(std::string_view line);

} // namespace PluginKit
