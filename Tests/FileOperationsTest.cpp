#include "Support/Stderr.h"
#include "Support/TemporaryFolder.h"

#include <ImportCommon/FileOperations.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <ctime>
#include <optional>
#include <utility>
#include <vector>

using ImportCommon::FileOperations;
using ImportCommon::SystemTime_s;

#ifdef __linux__
#include <sys/syscall.h>
#include <sys/vfs.h>

/** A made-up file system whose numbers differ; the library calls this one. */
extern "C" int statfs(const char* path, struct statfs* result) noexcept {
    if (path != std::string("made-up")) {
        return static_cast<int>(syscall(SYS_statfs, path, result));
    }
    *result = {};
    result->f_bsize = 512;
    result->f_frsize = 8192;
    result->f_blocks = 1000000;
    result->f_bfree = 16000000000;
    result->f_bavail = 7;
    return 0;
}
#endif

namespace fs = std::filesystem;

namespace {

constexpr unsigned long long epoch = 116444736000000000;
const std::wstring endless(70000, L'n'); // longer than any path that the system takes

class FileOperationsTest : public testing::Test {
protected:
    const TemporaryFolder folder_;
    const std::wstring here_ = folder_.widePath();
};

TEST_F(FileOperationsTest, kindsOfEntries) {
    const unsigned long long large = (5ull << 30) + 1;
    for (const char* name : {"file", "sparse", "caf\xC3\xA9 \xE4\xB8\xAD"}) {
        writeFile(name, "12345");
    }
    fs::resize_file("sparse", large);
    fs::create_directory("folder");
    fs::create_symlink("file", "link");
    fs::create_symlink("missing", "dangling");

    const struct {
        std::wstring path;
        bool exists, isFolder;
        std::optional<unsigned long long> size; // that of a folder is the file system's affair
    } cases[] = {
        {here_ + L"/file", true, false, 5}, {L"sparse", true, false, large}, {L"caf\u00E9 \u4E2D", true, false, 5},
        {L"folder", false, true, {}},       {L"link", true, false, 5},       {L"dangling", false, false, 0},
        {L"file/file", false, false, 0},    {L"", false, false, 0},          {L"/dev/null", false, false, 0},
        {endless, false, false, 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.path.substr(0, 100)));
        EXPECT_EQ(FileOperations::Exists(c.path), c.exists);
        EXPECT_EQ(FileOperations::IsDirectory(c.path), c.isFolder);
        EXPECT_TRUE(!c.size || FileOperations::GetFileSize(c.path) == *c.size);
    }
}

TEST_F(FileOperationsTest, makesAndRemoves) {
    EXPECT_TRUE(FileOperations::MakeDirectory(L"caf\u00E9"));
    EXPECT_FALSE(FileOperations::MakeDirectory(L"caf\u00E9"));
    writeFile("caf\xC3\xA9/file", "content");
    fs::create_symlink("caf\xC3\xA9/file", "link");
    fs::create_directory("empty");
    EXPECT_FALSE(FileOperations::DeleteDirectory(L"caf\u00E9"));
    EXPECT_FALSE(FileOperations::DeleteDirectory(L"caf\u00E9/file"));
    EXPECT_FALSE(FileOperations::Delete(L"empty"));
    EXPECT_FALSE(FileOperations::Delete(L"missing"));
    EXPECT_TRUE(FileOperations::Delete(L"link"));
    EXPECT_EQ(readFile("caf\xC3\xA9/file"), "content") << "a link was deleted, not its target";
    EXPECT_TRUE(FileOperations::Delete(L"caf\u00E9/file"));
    EXPECT_TRUE(FileOperations::DeleteDirectory(L"caf\u00E9"));
    EXPECT_FALSE(fs::exists("caf\xC3\xA9"));
}

TEST_F(FileOperationsTest, timesAccessAndSpace) {
    writeFile("file", "");
    const std::pair<timespec, unsigned long long> cases[] = {
        {{0, 100}, epoch + 1},
        {{1717245296, 999999999}, epoch + 17172452969999999},
        {{-1, 999999999}, epoch - 1},
    };
    for (const auto& [time, ticks] : cases) {
        const timespec times[] = {{2, 0}, time};
        struct stat status;
        ASSERT_EQ(utimensat(AT_FDCWD, "file", times, 0), 0);
        ASSERT_EQ(stat("file", &status), 0);
        // Not every file system can store all of them.
        EXPECT_TRUE(status.st_mtime != time.tv_sec || FileOperations::GetFileLastWriteTime(L"file") == ticks) << ticks;
    }
    EXPECT_EQ(FileOperations::GetFileLastWriteTime(L"missing"), 0u);
    for (const unsigned int mode : {0400u, 0200u, 0177u}) {
        fs::permissions("file", fs::perms{mode});
        EXPECT_EQ(FileOperations::HasReadAccess(L"file"), (mode & 0400) != 0) << mode;
        EXPECT_EQ(FileOperations::HasWriteAccess(L"file"), (mode & 0200) != 0) << mode;
    }
    EXPECT_FALSE(FileOperations::HasReadAccess(L"missing"));
    EXPECT_GE(FileOperations::GetFreeBytesAvailable(here_), fs::space(".").available / 2);
    EXPECT_EQ(FileOperations::GetFreeBytesAvailable(L"missing"), 0u);
#ifdef __linux__
    EXPECT_EQ(FileOperations::GetFreeBytesAvailable(L"made-up"), 16000000000ull * 512);
#endif
}

TEST_F(FileOperationsTest, localTimes) {
    const char* const centralEurope = "CET-1CEST,M3.5.0,M10.5.0/3";
    const struct {
        const char* zone;
        unsigned long long time;
        std::vector<int> local;
    } cases[] = {
        {"UTC0", epoch + 9517824009999999, {100, 1, 29, 0, 0, 0}},
        {centralEurope, epoch + 17118467990000000, {124, 2, 31, 1, 59, 59}},
        {centralEurope, epoch + 17118468000000000, {124, 2, 31, 3, 0, 0}},
        // What lies before 1970 wraps around to the far future.
        {"UTC0", epoch - 1, {58525, 4, 28, 5, 36, 10}},
        {"UTC0", ULLONG_MAX, {58156, 4, 28, 5, 36, 10}},
    };
    for (const auto& c : cases) {
        setenv("TZ", c.zone, 1); // deliberately without tzset: the conversion has to notice by itself
        const SystemTime_s t = FileOperations::ConvertToSystemTime(c.time);
        EXPECT_EQ((std::vector<int>{t.year, t.month, t.day, t.hour, t.minute, t.second}), c.local)
            << c.zone << ' ' << c.time;
    }
    unsetenv("TZ");
    tzset();
}

TEST_F(FileOperationsTest, fullPathsAndFolders) {
    writeFile("file", "");
    fs::create_directories("folder/deeper");
    writeFile("folder/caf\xC3\xA9 \xE4\xB8\xAD", "");
    fs::create_symlink("folder/deeper", "link");
    const struct {
        std::wstring path, full, folder;
    } cases[] = {
        {L"file", here_ + L"/file", here_},
        {L"folder/caf\u00E9 \u4E2D", here_ + L"/folder/caf\u00E9 \u4E2D", here_ + L"/folder"},
        {L"link/", here_ + L"/folder/deeper", here_ + L"/folder"},
        // A name on its own need not exist; of a longer path, what was found so far is left.
        {L"\u00E9\u4E2D.ifc", here_ + L"/\u00E9\u4E2D.ifc", L""},
        {L"folder/missing/x", here_ + L"/folder/missing", L""},
        {L"", here_ + L"/", L""},
        {endless, L"", L""},
        // Absolute paths are not touched.
        {L"//missing/../\U0001F600/", L"//missing/../\U0001F600/", L"//missing/../\U0001F600/"},
        {here_ + L"/folder/../link", here_ + L"/folder/../link", here_ + L"/folder/../link"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.path.substr(0, 100)));
        EXPECT_EQ(FileOperations::GetFullPath(c.path), c.full);
        EXPECT_EQ(FileOperations::GetFullFolder(c.path), c.folder);
    }
}

TEST_F(FileOperationsTest, componentsOfPaths) {
    const struct {
        std::wstring path, name, stem, withSlash;
    } cases[] = {
        {L"/a/b/archive.tar.gz", L"archive.tar.gz", L"archive.tar", L"/a/b/archive.tar.gz/"},
        {L"/a/b.c/", L"b.c", L"b", L"/a/b.c/"},
        {L".profile", L".profile", L"", L".profile/"},
        {L"", L".", L"", L""},
        {L"/", L"/", L"/", L"/"},
        {L"C:\\dir\\", L"C:\\dir\\", L"C:\\dir\\", L"C:\\dir\\"},
        {L"\u00E9/\u4E2D.\u00E9", L"\u4E2D.\u00E9", L"\u4E2D", L"\u00E9/\u4E2D.\u00E9/"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(FileOperations::GetFileWithoutPath(c.path), c.name);
        EXPECT_EQ(FileOperations::GetFileWithoutExtenstion(c.path), c.stem);
        EXPECT_EQ(FileOperations::InsertEndingDirectorySlash(c.path), c.withSlash);
    }
}

TEST_F(FileOperationsTest, scansFolders) {
    using Paths_t = std::vector<std::wstring>;
    const auto sortedScan = [](const std::wstring& folder) {
        Paths_t paths = FileOperations::ScanFilesInDirectory(folder);
        std::sort(paths.begin(), paths.end());
        return paths;
    };
    fs::create_directories("folder/deeper");
    fs::create_directory("empty");
    for (const char* name : {"b.ifc", ".hidden", "caf\xC3\xA9 \xE4\xB8\xAD", "deeper/not listed"}) {
        writeFile(std::string("folder/") + name, "");
    }
    fs::create_symlink("deeper", "folder/folderLink");
    fs::create_symlink("nowhere", "folder/dangling");

    const Paths_t expected = {L"folder/.hidden", L"folder/b.ifc", L"folder/caf\u00E9 \u4E2D", L"folder/dangling"};
    EXPECT_EQ(sortedScan(L"folder"), expected);
    writeFile("empty/\xFF", ""); // a name that can't be decoded stands for the folder itself
    stderrOf([&] {               // which the decoder reports
        for (const wchar_t* path : {L"empty", L"folder/b.ifc", L"missing", L""}) {
            EXPECT_EQ(sortedScan(path), Paths_t{}) << testing::PrintToString(path);
        }
    });
}

TEST_F(FileOperationsTest, matchesExtensions) {
    const struct {
        std::wstring file, list;
        bool matches;
    } cases[] = {
        {L"model.IFC", L"*.dwg|*.ifc", true},
        {L"model.ifczip", L"*.ifc|*.IfcXml", false},
        {L"model.ifc", L"", true},
        // An empty pattern ends the list.
        {L"model.ifc", L"*.dwg||*.ifc", false},
        // The first characters are never looked at, and a shorter name matches when it runs out.
        {L"fc", L"*.ifc", true},
        {L"xifc", L"*.ifc", true},
        {L"a.\u00C9", L"*.\u00E9", false}, // ASCII letters only
        {L"a.[@", L"*.{`", false},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(FileOperations::MatchExtension(c.file, c.list), c.matches)
            << testing::PrintToString(c.file) << ' ' << testing::PrintToString(c.list);
    }
    EXPECT_TRUE(FileOperations::MatchExtension(L"model.ifc", L"*.ifcxml", 5));
    EXPECT_EQ(FileOperations::ParseExtension(L"*.ifc|*.ifcxml"), 5u);
}

} // namespace
