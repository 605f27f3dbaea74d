#include "step/StepFile.h"

#include "IfcReader/IfcError.h"
#include "step/StepScanner.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

namespace IfcReader {

StepFile::StepFile(std::string text, const Progress& progress) : text_(std::move(text)) {
    StepScanner(*this, progress).scan();
}

StepInstance StepFile::operator[](std::size_t index) const {
    const Entry& entry = entries_[index];
    const std::string_view text = text_;
    return {entry.id, keywords_[entry.keyword], text.substr(static_cast<std::size_t>(entry.begin), entry.length)};
}

std::optional<std::size_t> StepFile::indexOf(std::uint64_t id) const {
    if (entries_.empty() || id < entries_.front().id) {
        return std::nullopt;
    }
    // Most files number without gaps.
    const std::size_t guess = static_cast<std::size_t>(std::min<std::uint64_t>(id - entries_.front().id, size() - 1));
    if (entries_[guess].id == id) {
        return guess;
    }
    const auto found = std::lower_bound(entries_.begin(), entries_.begin() + static_cast<std::ptrdiff_t>(guess), id,
                                        [](const Entry& entry, std::uint64_t wanted) { return entry.id < wanted; });
    return found->id == id ? std::optional<std::size_t>(found - entries_.begin()) : std::nullopt;
}

std::optional<StepInstance> StepFile::find(std::uint64_t id) const {
    const auto index = indexOf(id);
    return index ? std::optional<StepInstance>((*this)[*index]) : std::nullopt;
}

std::optional<StepInstance> StepFile::find(std::string_view argument) const {
    const auto id = stepReference(argument);
    return id ? find(*id) : std::nullopt;
}

std::string readFileText(const std::string& fileName, const StepFile::Progress& progress) {
    const std::unique_ptr<FILE, int (*)(FILE*)> file(std::fopen(fileName.c_str(), "rb"), std::fclose);
    struct stat status = {};
    if (!file || fstat(fileno(file.get()), &status) != 0) {
        throw IfcError(std::strerror(errno));
    }
    constexpr std::size_t block = std::size_t{1} << 20;
    const std::size_t expected = S_ISREG(status.st_mode) ? static_cast<std::size_t>(status.st_size) : 0;
    std::string text;
    text.reserve(expected + 1);
    for (std::size_t size = 0;;) {
        // One byte more than is expected, so that the end of the file shows without a larger buffer.
        const std::size_t wanted = size < expected ? std::min(block, expected - size) : size == expected ? 1 : block;
        text.resize(size + wanted);
        const std::size_t got = std::fread(&text[size], 1, wanted, file.get());
        size += got;
        if (got < wanted) {
            text.resize(size);
            break;
        }
        if (progress) {
            progress(expected == 0 ? 0.0 : std::min(1.0, static_cast<double>(size) / static_cast<double>(expected)));
        }
    }
    if (std::ferror(file.get()) != 0) {
        throw IfcError(std::strerror(errno));
    }
    return text;
}

} // namespace IfcReader
