#include "state/Files.h"

#include "Failure.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <utility>

namespace fs = std::filesystem;

namespace {

constexpr const char* temporaryPrefix = ".import-host.";

bool writeAll(int file, const NextPiece& next) {
    for (std::string_view piece = next(); !piece.empty(); piece = next()) {
        while (!piece.empty()) {
            const ssize_t size = ::write(file, piece.data(), piece.size());
            if (size < 0 && errno != EINTR) {
                return false;
            }
            piece.remove_prefix(size < 0 ? 0 : static_cast<std::size_t>(size));
        }
    }
    return true;
}

/** Writes everything and closes the file, whatever happens. */
bool writeAndClose(int file, const NextPiece& next, bool sync) {
    bool done = false;
    try {
        done = writeAll(file, next) && (!sync || ::fsync(file) == 0);
    } catch (...) {
        ::close(file);
        throw;
    }
    const int reason = errno;
    const bool closed = ::close(file) == 0;
    if (!done) {
        errno = reason;
    }
    return done && closed;
}

} // namespace

std::string readFile(const std::string& path, std::size_t limit) {
    const int handle = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    const std::unique_ptr<FILE, int (*)(FILE*)> file(handle < 0 ? nullptr : ::fdopen(handle, "rb"), std::fclose);
    struct stat status {};
    if (!file || ::fstat(handle, &status) != 0) {
        throw Failure(path, std::strerror(errno));
    }
    if (!S_ISREG(status.st_mode)) {
        throw Failure(path, "not a regular file");
    }
    const auto tooLarge = [&] { return Failure(path, "larger than " + std::to_string(limit >> 20) + " MiB"); };
    if (static_cast<std::uintmax_t>(status.st_size) > limit) {
        throw tooLarge();
    }
    std::string content;
    content.reserve(static_cast<std::size_t>(status.st_size));
    char block[65536];
    std::size_t size = 0;
    while ((size = std::fread(block, 1, sizeof block, file.get())) > 0) {
        if (size > limit - content.size()) {
            throw tooLarge();
        }
        content.append(block, size);
    }
    if (std::ferror(file.get()) != 0) {
        throw Failure(path, std::strerror(errno));
    }
    return content;
}

std::string placeOf(const std::string& path) {
    std::error_code error;
    fs::path place = fs::absolute(path, error);
    // The last part may be a link to nothing yet, which would count as not there.
    for (int links = 0; links < 40 && fs::is_symlink(fs::symlink_status(place, error)); ++links) {
        place = place.parent_path() / fs::read_symlink(place, error);
    }
    const fs::path whole = fs::weakly_canonical(place, error);
    return error ? place.lexically_normal().string() : whole.string();
}

bool isSameFile(const std::string& a, const std::string& b) {
    std::error_code error;
    return fs::equivalent(a, b, error) || placeOf(a) == placeOf(b);
}

bool isInside(const std::string& path, const std::string& folder) {
    const fs::path outer = placeOf(folder);
    std::error_code error;
    for (fs::path parent = placeOf(path); parent != parent.root_path(); parent = parent.parent_path()) {
        if (parent == outer || fs::equivalent(parent, outer, error)) {
            return true;
        }
    }
    return false;
}

bool PendingFile::isTemporary(const std::string& fileName) {
    return fileName.compare(0, std::strlen(temporaryPrefix), temporaryPrefix) == 0;
}

/** A device or pipe is written to, not replaced. */
void PendingFile::writeThrough(const NextPiece& next) const {
    // A pipe without a reader is an error here; with one, writing may wait for it.
    const int file = ::open(path_.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY);
    if (file < 0) {
        throw Failure(path_, errno == ENXIO ? "nobody reads from it" : std::strerror(errno));
    }
    ::fcntl(file, F_SETFL, ::fcntl(file, F_GETFL) & ~O_NONBLOCK);
    if (!writeAndClose(file, next, false)) {
        throw Failure(path_, std::strerror(errno));
    }
}

/** Creates a new file beside the target. @return its handle, or a negative number */
int PendingFile::createTemporary() {
    static std::atomic<unsigned int> counter{0};
    const fs::path folder = fs::path(target_).parent_path();
    for (int attempt = 0; attempt < 1000; ++attempt) {
        const auto now = std::chrono::steady_clock::now().time_since_epoch().count();
        temporary_ = (folder / (temporaryPrefix + std::to_string(::getpid()) + '.' + std::to_string(counter++) + '.' +
                                std::to_string(now % 1000000)))
                         .string();
        removal_.emplace(temporary_);
        const int file = ::open(temporary_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (file >= 0 || errno != EEXIST) {
            return file;
        }
    }
    return -1;
}

/** Throws Failure, and what next throws; then the file is gone. */
void PendingFile::writeTemporary(int file, const NextPiece& next) {
    try {
        if (!writeAndClose(file, next, true)) {
            throw Failure(path_, std::strerror(errno));
        }
    } catch (...) {
        ::unlink(temporary_.c_str());
        throw;
    }
}

PendingFile::PendingFile(const std::string& path, std::string_view content)
    : PendingFile(path, [&content] { return std::exchange(content, {}); }) {
}

PendingFile::PendingFile(const std::string& path, const NextPiece& next) : path_(path) {
    if (path.empty()) {
        return;
    }
    std::error_code error;
    if (fs::is_directory(path, error)) {
        throw Failure(path, std::strerror(EISDIR));
    }
    // By the given name: what a link such as /dev/stdout leads to may be a pipe, which has no other.
    struct stat old {};
    const bool exists = ::stat(path.c_str(), &old) == 0;
    if (exists && !S_ISREG(old.st_mode)) {
        writeThrough(next);
        return;
    }

    target_ = placeOf(path);
    const int file = createTemporary();
    if (file < 0) {
        temporary_.clear();
        throw Failure(path, std::strerror(errno));
    }
    if (exists) {
        ::fchmod(file, old.st_mode & 07777);
    }
    writeTemporary(file, next);
}

PendingFile::~PendingFile() {
    if (!temporary_.empty()) {
        ::unlink(temporary_.c_str());
    }
}

void PendingFile::commit() {
    if (temporary_.empty()) {
        return;
    }
    if (::rename(temporary_.c_str(), target_.c_str()) != 0) {
        throw Failure(path_, std::strerror(errno));
    }
    temporary_.clear();
    removal_.reset();
    syncFolder(fs::path(target_).parent_path().string());
}

void syncFolder(const std::string& folder) {
    const int handle = ::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_CLOEXEC);
    if (handle < 0) {
        return;
    }
    ::fsync(handle);
    ::close(handle);
}
