#include "session/OutputStreams.h"

#include "Failure.h"

#include <ImportCommon/StringOperations.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

using ImportCommon::FileStream;
using ImportCommon::StringOperations;

OutputStreams::OutputStreams(const std::string& folder) {
    for (const PluginKit::StreamName& name : PluginKit::streamNames) {
        const std::string fileName = folder + '/' + name.name;
        std::unique_ptr<FileStream> file(
            FileStream::createFileForWriting(StringOperations::ConvertFromCurrentLocale(fileName)));
        if (!file) {
            throw Failure(fileName, std::strerror(errno));
        }
        streams_.push_back({name, fileName, std::move(file)});
    }
}

void OutputStreams::handOver(ForeignObjectEnv_t& env) const {
    for (const Stream& stream : streams_) {
        env.*stream.name.handle = stream.file->getHandle();
    }
}

OutputStreams::~OutputStreams() {
    for (Stream& stream : streams_) {
        closeStream(stream);
    }
}

int OutputStreams::closeStream(Stream& stream) {
    if (!stream.file) {
        return 0;
    }
    // A stream is closed by its destructor, which has no result: whatever can fail happens here.
    const bool failedBefore = std::ferror(stream.file->getHandle()) != 0;
    errno = 0;
    const bool failedNow = std::fflush(stream.file->getHandle()) != 0;
    const int reason = errno;
    stream.file.reset();
    if (!failedBefore && !failedNow) {
        return 0;
    }
    return reason != 0 ? reason : EIO;
}

void OutputStreams::close() {
    std::string failedFile;
    int failure = 0;
    for (Stream& stream : streams_) {
        const int reason = closeStream(stream);
        if (failure == 0 && reason != 0) {
            failure = reason;
            failedFile = stream.fileName;
        }
    }
    if (failure != 0) {
        throw Failure(failedFile, std::strerror(failure));
    }
}
