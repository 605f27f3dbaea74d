/**
 * @file FileStream.h
 * Whole blocks to and from a standard stream.
 */
#pragma once

#include <ImportCommon/Export.h>

#include <cstdio>
#include <string>
#include <vector>

namespace ImportCommon {

/**
 * A standard stream, owned or borrowed. The factories return an object that the caller deletes, or null on failure;
 * without memory they throw nothing and return null.
 */
class IMPORT_COMMON_API FileStream {
public:
    /** No stream: reads and writes fail. */
    FileStream();

    /**
     * A stream on @p handle, which is closed with this object if @p owns says so.
     *
     * REQUIRES: an open stream, or null; with @p owns nobody else closes it.
     *
     * @param handle  the stream; may be null
     * @param owns    whether to close it
     */
    FileStream(FILE* handle, bool owns);
    /** Closes the stream if this object owns it; whether that writes the last bytes is not told. */
    ~FileStream();

    /** Not copied: one object closes the stream. */
    FileStream(const FileStream&) = delete;
    /** Not copied: one object closes the stream. */
    FileStream& operator=(const FileStream&) = delete;

    /**
     * Creates and opens a new file "/tmp/QLM." with eight more characters, for reading and writing. It is not removed
     * when it is closed. Its mode is 0666 without the bits of the process's umask, so that with the usual one every
     * user may read it; set a umask of 077 for what others mustn't see.
     * @return the stream or null
     */
    static FileStream* createTemporaryFile();

    /**
     * Opens an existing file.
     * @param path  the file
     * @return the stream or null
     */
    static FileStream* openFileForReading(const std::wstring& path);

    /**
     * Creates a file, or empties an existing one, and opens it for writing and reading.
     * @param path  the file
     * @return the stream or null
     */
    static FileStream* createFileForWriting(const std::wstring& path);

    /**
     * A stream on a handle that stays open when the stream is deleted.
     * @param handle  the open stream; may be null
     * @return the stream or null
     */
    static FileStream* createFromHandle(FILE* handle);

    /** Goes to the start. */
    void seekToBegin();

    /**
     * Goes to a byte; a failure is not reported.
     * @param offset  from the start, in bytes
     */
    void seekToOffset(unsigned long offset);

    /**
     * Reads up to @p size bytes into @p out, which is resized to what was read. Only the low 32 bits of the size count,
     * as a signed number; a negative one reads nothing. Throws `std::bad_alloc` without memory.
     * @param size  number of bytes to read
     * @param out   receives what was read
     * @return whether anything was read; false without a handle, which leaves @p out as it is
     */
    bool read(unsigned long size, std::vector<char>& out);

    /**
     * Writes @p size bytes.
     *
     * REQUIRES: @p data points to as many bytes, or is null; a seek since the last read.
     *
     * @param size  number of bytes to write
     * @param data  the bytes
     * @return whether all were written, or taken into the stream's buffer; false without a handle or @p data, and
     *         always for 2 GiB and more, though they are written
     */
    bool write(unsigned long size, const char* data);

    /**
     * The stream's handle, owned as before; null without one.
     * @return the handle or null
     */
    FILE* getHandle() const;

private:
    FILE* handle_;
    bool owns_;
};

} // namespace ImportCommon
