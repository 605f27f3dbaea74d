#include <ImportCommon/FileStream.h>
#include <ImportCommon/StringOperations.h>

#include <unistd.h>

#include <cerrno>
#include <new>

#if defined(__APPLE__)
#include <sys/random.h>
#endif

namespace ImportCommon {

namespace {

constexpr int attempts = 100;

/** Fills a template's eight X's; false when the system has no random numbers. */
bool fillRandomly(char* begin, char* end) {
    static const char letters[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_";
    if (getentropy(begin, static_cast<std::size_t>(end - begin)) != 0) {
        return false;
    }
    for (char* c = begin; c != end; ++c) {
        *c = letters[static_cast<unsigned char>(*c) % (sizeof letters - 1)];
    }
    return true;
}

/** An owning stream on an open handle; null for a null handle. */
FileStream* streamOn(FILE* handle) {
    if (handle == nullptr) {
        return nullptr;
    }
    FileStream* stream = new (std::nothrow) FileStream(handle, true);
    if (stream == nullptr) {
        std::fclose(handle);
    }
    return stream;
}

FileStream* open(const std::wstring& path, const char* mode) try {
    return streamOn(std::fopen(StringOperations::ConvertToCurrentLocale(path).c_str(), mode));
} catch (const std::bad_alloc&) {
    return nullptr;
}

/** A size as the streams count it: its low 32 bits, as a signed number. */
long countedSize(unsigned long size) {
    return static_cast<int>(static_cast<unsigned int>(size));
}

} // namespace

FileStream::FileStream() : FileStream(nullptr, false) {
}

FileStream::FileStream(FILE* handle, bool owns) : handle_(handle), owns_(owns) {
}

FileStream::~FileStream() {
    if (handle_ != nullptr && owns_) {
        std::fclose(handle_);
    }
}

FileStream* FileStream::createTemporaryFile() {
    char name[] = "/tmp/QLM.XXXXXXXX";
    char* end = name + sizeof name - 1;
    for (int i = 0; i < attempts && fillRandomly(end - 8, end); ++i) {
        // Exclusively: a file or link that somebody else put there is never opened.
        FILE* handle = std::fopen(name, "w+x");
        if (handle != nullptr || errno != EEXIST) {
            FileStream* stream = streamOn(handle);
            if (handle != nullptr && stream == nullptr) {
                unlink(name); // nobody would know of it
            }
            return stream;
        }
    }
    return nullptr;
}

FileStream* FileStream::openFileForReading(const std::wstring& path) {
    return open(path, "r");
}

FileStream* FileStream::createFileForWriting(const std::wstring& path) {
    return open(path, "w+");
}

FileStream* FileStream::createFromHandle(FILE* handle) {
    return new (std::nothrow) FileStream(handle, false);
}

void FileStream::seekToBegin() {
    seekToOffset(0);
}

void FileStream::seekToOffset(unsigned long offset) {
    if (handle_ != nullptr) {
        const int error = errno;
        std::fseek(handle_, static_cast<long>(offset), SEEK_SET);
        errno = error;
    }
}

bool FileStream::read(unsigned long size, std::vector<char>& out) {
    if (handle_ == nullptr) {
        return false;
    }
    const long count = countedSize(size);
    out.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
    out.resize(std::fread(out.data(), 1, out.size(), handle_));
    return !out.empty();
}

bool FileStream::write(unsigned long size, const char* data) {
    if (handle_ == nullptr || data == nullptr) {
        return false;
    }
    const unsigned long written = std::fwrite(data, 1, size, handle_);
    return static_cast<unsigned long>(countedSize(written)) == size;
}

FILE* FileStream::getHandle() const {
    return handle_;
}

} // namespace ImportCommon
