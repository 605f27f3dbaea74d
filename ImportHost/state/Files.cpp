#include "state/Files.h"

#include "Failure.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>

namespace fs = std::filesystem;

namespace {

/** Writes everything and closes the file, whatever happens. */
bool writeAndClose(int file, const std::string& content, bool sync) {
    std::size_t written = 0;
    while (written < content.size()) {
        const ssize_t size = ::write(file, content.data() + written, content.size() - written);
        if (size < 0 && errno == EINTR) {
            continue;
        }
        if (size < 0) {
            const int reason = errno;
            ::close(file);
            errno = reason;
            return false;
        }
        written += static_cast<std::size_t>(size);
    }
    const bool synced = !sync || ::fsync(file) == 0;
    const int reason = errno;
    const bool closed = ::close(file) == 0;
    if (!synced) {
        errno = reason;
    }
    return synced && closed;
}

} // namespace

std::string readFile(const std::string& path) {
    const std::unique_ptr<FILE, int (*)(FILE*)> file(std::fopen(path.c_str(), "rb"), std::fclose);
    if (!file) {
        throw Failure(path, std::strerror(errno));
    }
    std::string content;
    std::error_code error;
    const std::uintmax_t expected = fs::file_size(path, error);
    if (!error) {
        content.reserve(static_cast<std::size_t>(expected));
    }
    char block[65536];
    std::size_t size = 0;
    while ((size = std::fread(block, 1, sizeof block, file.get())) > 0) {
        content.append(block, size);
    }
    if (std::ferror(file.get()) != 0) {
        throw Failure(path, std::strerror(errno));
    }
    return content;
}

PendingFile::PendingFile(const std::string& path, const std::string& content) : path_(path) {
    if (path.empty()) {
        return;
    }
    std::error_code error;
    if (fs::is_directory(path, error)) {
        throw Failure(path, std::strerror(EISDIR));
    }
    if (fs::exists(path, error) && !fs::is_regular_file(path, error)) {
        // A device or pipe is written to, not replaced.
        const int file = ::open(path.c_str(), O_WRONLY | O_CLOEXEC);
        if (file < 0 || !writeAndClose(file, content, false)) {
            throw Failure(path, std::strerror(errno));
        }
        return;
    }

    target_ = fs::exists(path, error) ? fs::canonical(path, error).string() : path;
    // Always the same name: what a killed process leaves is replaced by the next, and never written to, since it could be
    // a link that somebody else put there.
    temporary_ = target_ + ".new";
    ::unlink(temporary_.c_str());
    const int file = ::open(temporary_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (file < 0) {
        temporary_.clear();
        throw Failure(path, std::strerror(errno));
    }
    if (!writeAndClose(file, content, true)) {
        const int reason = errno;
        ::unlink(temporary_.c_str());
        throw Failure(path, std::strerror(reason));
    }
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
