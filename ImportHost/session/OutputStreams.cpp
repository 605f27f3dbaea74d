#include "session/OutputStreams.h"

#include "Failure.h"

#include <ImportCommon/EnvironmentVariables.h>
#include <ImportCommon/StringOperations.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

using ImportCommon::EnvironmentVariables;
using ImportCommon::FileStream;
using ImportCommon::StringOperations;

namespace {

/** Keys are made of these names and a prefix, and the files are called by them. */
constexpr const char* streamNames[] = {"foreignobjects", "objects",   "materials",   "layers",  "tova", "polygons",
                                       "attributes",     "solids",    "xrefs",       "log",     "info", "hierarchy",
                                       "progress",       "instances", "definitions", "textures"};
static_assert(sizeof streamNames / sizeof streamNames[0] == 16, "the import environment has sixteen streams");

} // namespace

OutputStreams::OutputStreams(const std::string& folder) {
    for (const std::string name : streamNames) {
        const std::string fileName = std::string(folder).append("/").append(name);
        const std::wstring key = L"fo_handle_" + std::wstring(name.begin(), name.end());
        std::unique_ptr<FileStream> file(
            FileStream::createFileForWriting(StringOperations::ConvertFromCurrentLocale(fileName)));
        if (!file || EnvironmentVariables::SetFileStreamHandle(key, file->getHandle()) != 0) {
            throw Failure(fileName, std::strerror(errno));
        }
        streams_.push_back({key, fileName, std::move(file)});
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
    // Nobody may find a handle in the environment that is no longer open.
    EnvironmentVariables::SetFileStreamHandle(stream.key, nullptr);

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
