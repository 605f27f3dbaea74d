/**
 * @file OutputStreams.h
 * The sixteen streams that a host opens for a plug-in.
 */
#pragma once

#include <ImportCommon/FileStream.h>

#include <PluginKit/StreamNames.h>

#include <memory>
#include <string>
#include <vector>

/** Files of a folder, one per stream. */
class OutputStreams {
public:
    /** Opens all files. Throws Failure. */
    explicit OutputStreams(const std::string& folder);

    /** Closes what is open. */
    ~OutputStreams();

    OutputStreams(const OutputStreams&) = delete;
    OutputStreams& operator=(const OutputStreams&) = delete;

    /** Puts the handles where the plug-in finds them; they are good until the streams are closed. */
    void handOver(ForeignObjectEnv_t& env) const;

    /** Closes all files. Throws Failure when something that was written to one did not reach it. */
    void close();

private:
    struct Stream {
        PluginKit::StreamName name;
        std::string fileName;
        std::unique_ptr<ImportCommon::FileStream> file;
    };

    /** Closes one stream. @return 0, or the error number of what went wrong with it since it was opened */
    static int closeStream(Stream& stream);

    std::vector<Stream> streams_;
};
