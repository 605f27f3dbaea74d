#include "FailingAllocator.h"
#include "TemporaryFolder.h"

#include <ImportCommon/FileStream.h>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <memory>
#include <vector>

using ImportCommon::FileStream;
namespace fs = std::filesystem;

#ifdef __linux__
namespace {
int foreseenCalls = 0;
int changesAfter = 0; // calls
} // namespace

/** Stands before the system's function, so that names of temporary files can be foreseen. */
extern "C" int getentropy(void* buffer, std::size_t size) {
    std::fill_n(static_cast<char*>(buffer), size, static_cast<char>(foreseenCalls++ < changesAfter ? 1 : 2));
    return 0;
}
#endif

namespace {

using Stream_t = std::unique_ptr<FileStream>;

class FileStreamTest : public testing::Test {
protected:
    const TemporaryFolder folder_;
};

std::string pathOf(const FileStream& stream) {
#ifdef __APPLE__
    char path[PATH_MAX] = {};
    fcntl(fileno(stream.getHandle()), F_GETPATH, path);
    return path;
#else
    return fs::read_symlink("/proc/self/fd/" + std::to_string(fileno(stream.getHandle()))).string();
#endif
}

bool isOpen(int descriptor) {
    return fcntl(descriptor, F_GETFD) != -1;
}

TEST_F(FileStreamTest, readsInBlocks) {
    writeFile("caf\xC3\xA9 \xE4\xB8\xAD", "0123456789");
    const Stream_t stream(FileStream::openFileForReading(L"caf\u00E9 \u4E2D"));
    ASSERT_NE(stream, nullptr);
    const struct {
        long offset; // negative: goes on where it is
        unsigned long size;
        std::string content;
    } cases[] = {
        {-1, 4, "0123"},
        {-1, 10, "456789"},
        {-1, 10, ""},
        {0, 10, "0123456789"},
        {7, 2, "78"},
        {-1, 0, ""},
        {-1, 1, "9"},
        {10, 1, ""},
        {100, 1, ""},
        // The low 32 bits of a size count, as a signed number.
        {3, 0x100000005, "34567"},
        {-1, 0x100000000, ""},
        {-1, 0x80000000, ""},
        {-1, 0xFFFFFFFF, ""},
        {-1, 0xFFFFFFFF00000001, "8"},
    };
    for (const auto& c : cases) {
        if (c.offset >= 0) {
            stream->seekToOffset(static_cast<unsigned long>(c.offset));
        }
        std::vector<char> content(7, '#');
        EXPECT_EQ(stream->read(c.size, content), !c.content.empty()) << c.offset << ' ' << c.size;
        EXPECT_EQ(std::string(content.begin(), content.end()), c.content) << c.offset << ' ' << c.size;
    }
    errno = 0;
    stream->seekToOffset(3);
    stream->seekToOffset(0x8000000000000000); // refused
    EXPECT_EQ(errno, 0);
    EXPECT_EQ(std::ftell(stream->getHandle()), 3);
    EXPECT_FALSE(stream->write(1, "x")) << "open for reading only";
}

TEST_F(FileStreamTest, writesAndReadsBack) {
    writeFile("file", "much longer than what follows");
    Stream_t stream(FileStream::createFileForWriting(L"file"));
    ASSERT_NE(stream, nullptr);
    EXPECT_TRUE(stream->write(6, "abcdef"));
    EXPECT_TRUE(stream->write(0, "x"));
    EXPECT_FALSE(stream->write(5, nullptr));
    stream->seekToOffset(2);
    EXPECT_TRUE(stream->write(3, "C\0E"));
    stream->seekToBegin();
    std::vector<char> content;
    EXPECT_TRUE(stream->read(100, content));
    EXPECT_EQ(std::string(content.begin(), content.end()), std::string("abC\0Ef", 6));
    stream.reset();
    EXPECT_EQ(readFile("file"), std::string("abC\0Ef", 6));

    const Stream_t full(FileStream::createFileForWriting(L"/dev/full"));
    if (full) {
        std::setvbuf(full->getHandle(), nullptr, _IONBF, 0);
        EXPECT_FALSE(full->write(3, "abc"));
    }
    EXPECT_EQ(FileStream::openFileForReading(L"missing"), nullptr);
    EXPECT_EQ(FileStream::createFileForWriting(L"missing/file"), nullptr);
    EXPECT_EQ(FileStream::createFileForWriting(L"."), nullptr);
}

TEST_F(FileStreamTest, closesWhatItOwns) {
    for (const bool owns : {true, false}) {
        FILE* const handle = std::fopen("file", "w");
        const int descriptor = fileno(handle);
        Stream_t stream(owns ? new FileStream(handle, true) : FileStream::createFromHandle(handle));
        EXPECT_EQ(stream->getHandle(), handle);
        EXPECT_TRUE(stream->write(1, "x"));
        stream.reset();
        EXPECT_EQ(isOpen(descriptor), !owns);
        if (!owns) {
            EXPECT_EQ(std::fputs("y", handle), 1);
            std::fclose(handle);
            EXPECT_EQ(readFile("file"), "xy");
        }
    }
}

TEST_F(FileStreamTest, nothingToReadOrWrite) {
    const Stream_t streams[] = {Stream_t(new FileStream), Stream_t(FileStream::createFromHandle(nullptr)),
                                Stream_t(new FileStream(nullptr, true))};
    for (const Stream_t& stream : streams) {
        std::vector<char> content(3, '#');
        EXPECT_EQ(stream->getHandle(), nullptr);
        stream->seekToBegin();
        stream->seekToOffset(3);
        EXPECT_FALSE(stream->read(1, content));
        EXPECT_EQ(content, std::vector<char>(3, '#'));
        EXPECT_FALSE(stream->write(1, "x"));
        EXPECT_FALSE(stream->write(0, "x"));
    }
}

TEST_F(FileStreamTest, countsWhatWasWrittenIn32Bits) {
#if defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "the sanitizer would keep books on every byte";
#endif
    const std::size_t size = 0x100000005;
    void* const zeros = mmap(nullptr, size, PROT_READ, MAP_PRIVATE | MAP_ANON | MAP_NORESERVE, -1, 0);
    ASSERT_NE(zeros, MAP_FAILED);
    const Stream_t stream(FileStream::createFileForWriting(L"/dev/null"));
    ASSERT_NE(stream, nullptr);
    EXPECT_TRUE(stream->write(0x7FFFFFFF, static_cast<const char*>(zeros)));
    EXPECT_FALSE(stream->write(0x80000000, static_cast<const char*>(zeros)));
    EXPECT_FALSE(stream->write(size, static_cast<const char*>(zeros)));
    munmap(zeros, size);
}

TEST_F(FileStreamTest, temporaryFiles) {
#ifdef __linux__
    foreseenCalls = 0;
    changesAfter = 1;
#endif
    std::string paths[2];
    for (std::string& path : paths) {
        Stream_t stream(FileStream::createTemporaryFile());
        ASSERT_NE(stream, nullptr);
        path = pathOf(*stream);
        EXPECT_TRUE(stream->write(3, "abc"));
        stream->seekToBegin();
        std::vector<char> content;
        EXPECT_TRUE(stream->read(10, content));
        EXPECT_EQ(content, (std::vector<char>{'a', 'b', 'c'}));
        stream.reset();
        EXPECT_EQ(readFile(path), "abc") << "it stays when it is closed";
        const std::size_t name = path.find("/tmp/QLM.");
        ASSERT_NE(name, std::string::npos) << path;
        EXPECT_EQ(path.size(), name + 17);
    }
    EXPECT_NE(paths[0], paths[1]);
    fs::remove(paths[0]);
    fs::remove(paths[1]);
}

#ifdef __linux__
TEST_F(FileStreamTest, temporaryFilesAreAlwaysNew) {
    const auto create = [](int calls) {
        foreseenCalls = 0;
        changesAfter = calls;
        return Stream_t(FileStream::createTemporaryFile());
    };
    Stream_t stream = create(1 << 30);
    if (foreseenCalls == 0) {
        GTEST_SKIP() << "the names can't be foreseen here";
    }
    ASSERT_NE(stream, nullptr);
    const std::string taken = pathOf(*stream);
    EXPECT_TRUE(stream->write(3, "old"));
    stream.reset();

    EXPECT_EQ(create(1 << 30), nullptr);
    stream = create(5);
    ASSERT_NE(stream, nullptr) << "the sixth name is free";
    const std::string other = pathOf(*stream);
    EXPECT_NE(other, taken);
    EXPECT_EQ(readFile(taken), "old");

    writeFile("target", "precious");
    for (const char* target : {"/target", "/missing"}) {
        fs::remove(taken);
        fs::create_symlink(folder_.path() + target, taken);
        EXPECT_EQ(create(1 << 30), nullptr) << target;
    }
    EXPECT_EQ(readFile("target"), "precious");
    EXPECT_FALSE(fs::exists("missing"));
    fs::remove(taken);
    fs::remove(other);
}
#endif

TEST_F(FileStreamTest, lackOfMemoryLeavesNothingOpen) {
    if (!FailingAllocator::isAvailable()) {
        GTEST_SKIP() << "allocations can't be made to fail here";
    }
    const int next = dup(0);
    close(next);
    bool failed = true;
    for (long which = 1; failed; ++which) {
        const std::wstring path = L"file";
        Stream_t stream;
        try {
            const FailingAllocator failing(which);
            stream.reset(FileStream::createFileForWriting(path));
            failed = FailingAllocator::hasFailed();
        } catch (const std::bad_alloc&) {
            failed = true;
        }
        EXPECT_EQ(stream == nullptr, failed) << which;
        EXPECT_EQ(isOpen(next), !failed) << which;
    }
}

} // namespace
