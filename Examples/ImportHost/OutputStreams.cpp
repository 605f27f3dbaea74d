#include "OutputStreams.h"

#include "Failure.h"

#include <ImportCommon/EnvironmentVariables.h>

#include <cerrno>
#include <cstring>

using ImportCommon::EnvironmentVariables;

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
        FILE* file = std::fopen(fileName.c_str(), "wb");
        const std::wstring key = L"fo_handle_" + std::wstring(name.begin(), name.end());
        if (file == nullptr || EnvironmentVariables::SetFileStreamHandle(key, file) != 0) {
            const int reason = errno;
            if (file != nullptr)
                std::fclose(file);
            for (Stream& stream : streams_)
                closeStream(stream);
            throw Failure(fileName, std::strerror(reason));
        }
        streams_.push_back({key, fileName, file});
    }
}

OutputStreams::~OutputStreams() {
    for (Stream& stream : streams_)
        closeStream(stream);
}

int OutputStreams::closeStream(Stream& stream) {
    if (stream.file == nullptr)
        return 0;
    // Nobody may find a handle in the environment that is no longer open.
    EnvironmentVariables::SetFileStreamHandle(stream.key, nullptr);

    const bool failedBefore = std::ferror(stream.file) != 0;
    errno = 0;
    const bool failedNow = std::fclose(stream.file) != 0;
    const int reason = errno;
    stream.file = nullptr;
    if (!failedBefore && !failedNow)
        return 0;
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
    if (failure != 0)
        throw Failure(failedFile, std::strerror(failure));
}
