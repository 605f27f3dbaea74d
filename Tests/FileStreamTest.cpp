#include "TemporaryFolder.h"

#include <ImportCommon/FileStream.h>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#ifdef __linux__
#include <sys/random.h>
#endif
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <memory>
#include <set>
#include <vector>

using ImportCommon::FileStream;
namespace fs = std::filesystem;

#ifdef __linux__
namespace {
int drawn = 0;   // times that random numbers were drawn since repeats was set
int repeats = 0; // of these, how many give the same numbers
} // namespace

/** Stands before the system's function, so that the names of temporary files can be made to repeat. */
extern "C" int getentropy(void* buffer, std::size_t size) {
    static char repeated[256];
    static const bool isFilled = getrandom(repeated, sizeof repeated, 0) == sizeof repeated;
    if (drawn++ < repeats && isFilled && size <= sizeof repeated) {
        std::copy_n(repeated, size, static_cast<char*>(buffer));
        return 0;
    }
    return getrandom(buffer, size, 0) == static_cast<ssize_t>(size) ? 0 : -1;
}
#endif

namespace {

#if defined(__has_feature)
constexpr bool underThreadSanitizer = __has_feature(thread_sanitizer);
#elif defined(__SANITIZE_THREAD__)
constexpr bool underThreadSanitizer = true;
#else
constexpr bool underThreadSanitizer = false;
#endif

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
    if (underThreadSanitizer) {
        GTEST_SKIP() << "the sanitizer would keep books on every byte";
    }
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
    std::set<std::string> paths;
    std::set<char> characters[8];
    for (int i = 0; i < 8; ++i) {
        Stream_t stream(FileStream::createTemporaryFile());
        ASSERT_NE(stream, nullptr);
        const std::string path = pathOf(*stream);
        EXPECT_TRUE(stream->write(3, "abc"));
        stream->seekToBegin();
        std::vector<char> content;
        EXPECT_TRUE(stream->read(10, content));
        EXPECT_EQ(content, (std::vector<char>{'a', 'b', 'c'}));
        stream.reset();
        EXPECT_EQ(readFile(path), "abc") << "it stays when it is closed";
        fs::remove(path);
        EXPECT_TRUE(paths.insert(path).second) << path;
        const std::size_t start = path.size() - 17; // some systems resolve /tmp itself
        ASSERT_EQ(path.find("/tmp/QLM."), start) << path;
        for (std::size_t k = 0; k < 8; ++k) {
            characters[k].insert(path[start + 9 + k]);
        }
    }
    for (const std::set<char>& atOnePlace : characters) {
        EXPECT_GT(atOnePlace.size(), 1u);
    }
}

#ifdef __linux__
TEST_F(FileStreamTest, temporaryFilesAreAlwaysNew) {
    const auto create = [](int sameNames) {
        drawn = 0;
        repeats = sameNames;
        return Stream_t(FileStream::createTemporaryFile());
    };
    constexpr int always = 1 << 30;
    Stream_t stream = create(always);
    if (drawn == 0) {
        GTEST_SKIP() << "the names can't be foreseen here";
    }
    ASSERT_NE(stream, nullptr);
    const std::string taken = pathOf(*stream);
    EXPECT_TRUE(stream->write(3, "old"));
    stream.reset();

    EXPECT_EQ(create(always), nullptr);
    stream = create(5);
    ASSERT_NE(stream, nullptr) << "the sixth name is free";
    EXPECT_NE(pathOf(*stream), taken);
    fs::remove(pathOf(*stream));
    EXPECT_EQ(readFile(taken), "old");

    writeFile("target", "precious");
    for (const char* target : {"/target", "/missing"}) {
        fs::remove(taken);
        fs::create_symlink(folder_.path() + target, taken);
        EXPECT_EQ(create(always), nullptr) << target;
    }
    fs::remove(taken);
    EXPECT_EQ(readFile("target"), "precious");
    EXPECT_FALSE(fs::exists("missing"));
}
#endif

} // namespace
