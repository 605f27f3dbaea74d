#include "Support/FailingAllocator.h"
#include "Support/TemporaryFolder.h"

#include <ImportCommon/FileStream.h>

#include <fcntl.h>
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
int repeats = 0; // how many of the next random numbers are the same
} // namespace

/** Stands before the system's function, so that the names of temporary files can be made to repeat. */
extern "C" int getentropy(void* buffer, std::size_t size) {
    static char repeated[256];
    static const bool isFilled = getrandom(repeated, sizeof repeated, 0) == sizeof repeated;
    if (repeats-- > 0 && isFilled && size <= sizeof repeated) {
        std::copy_n(repeated, size, static_cast<char*>(buffer));
        return 0;
    }
    return getrandom(buffer, size, 0) == static_cast<ssize_t>(size) ? 0 : -1;
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
        {7, 2, "78"},
        {100, 1, ""},
        // The low 32 bits of a size count, as a signed number.
        {3, 0x100000005, "34567"},
        {-1, 0x80000000, ""},
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

    EXPECT_EQ(FileStream::openFileForReading(L"missing"), nullptr);
    EXPECT_EQ(FileStream::createFileForWriting(L"missing/file"), nullptr);
}

TEST_F(FileStreamTest, closesWhatItOwns) {
    for (const bool owns : {true, false}) {
        FILE* const handle = std::fopen("file", "w");
        const int descriptor = fileno(handle);
        delete (owns ? new FileStream(handle, true) : FileStream::createFromHandle(handle));
        EXPECT_EQ(fcntl(descriptor, F_GETFD) != -1, !owns);
        if (!owns) {
            std::fclose(handle);
        }
    }
}

TEST_F(FileStreamTest, nothingToReadOrWrite) {
    FileStream none;
    std::vector<char> content(3, '#');
    none.seekToBegin();
    EXPECT_FALSE(none.read(1, content));
    EXPECT_EQ(content, std::vector<char>(3, '#'));
    EXPECT_FALSE(none.write(0, "x"));
}

TEST_F(FileStreamTest, temporaryFiles) {
    std::set<char> lastLetters;
    for (int i = 0; i < 8; ++i) {
        Stream_t stream(FileStream::createTemporaryFile());
        ASSERT_NE(stream, nullptr);
        const std::string path = pathOf(*stream);
        EXPECT_TRUE(stream->write(3, "abc"));
        stream.reset();
        EXPECT_EQ(readFile(path), "abc") << "it stays when it is closed";
        fs::remove(path);
        EXPECT_EQ(path.find("/tmp/QLM."), path.size() - 17) << path; // some systems resolve /tmp itself
        lastLetters.insert(path.back());
    }
    EXPECT_GT(lastLetters.size(), 1u);
}

#ifdef __linux__
Stream_t createTemporary(int sameNames) {
    repeats = sameNames;
    return Stream_t(FileStream::createTemporaryFile());
}

TEST_F(FileStreamTest, temporaryFilesAreAlwaysNew) {
    constexpr int always = INT_MAX;
    Stream_t stream = createTemporary(always);
    ASSERT_NE(stream, nullptr);
    const std::string taken = pathOf(*stream);
    EXPECT_EQ(createTemporary(always), nullptr);
    stream = createTemporary(5);
    ASSERT_NE(stream, nullptr) << "the sixth name is free";
    EXPECT_NE(pathOf(*stream), taken);
    fs::remove(pathOf(*stream));
    fs::remove(taken);
    fs::create_symlink(folder_.path() + "/missing", taken);
    EXPECT_EQ(createTemporary(always), nullptr);
    EXPECT_FALSE(fs::exists("missing"));
    fs::remove(taken);
}

TEST_F(AllocationFailureTest, leavesNoTemporaryFile) {
    const std::string path = pathOf(*createTemporary(1));
    fs::remove(path);
    forEachFailure([&path](const Failure& failure) {
        Stream_t stream;
        const bool failed = failure.during([&stream] { stream = createTemporary(1); });
        EXPECT_EQ(stream == nullptr, failed);
        EXPECT_EQ(fs::remove(path), !failed) << "a file that nobody knows of";
        return failed;
    });
}
#endif

} // namespace
