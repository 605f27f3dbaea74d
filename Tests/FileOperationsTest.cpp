#include "TemporaryFolder.h"

#include <ImportCommon/FileOperations.h>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <ctime>
#include <iostream>
#include <optional>
#include <random>
#include <utility>
#include <vector>

using ImportCommon::FileOperations;
using ImportCommon::SystemTime_s;
namespace fs = std::filesystem;

namespace {

constexpr unsigned long long epoch = 116444736000000000;

class FileOperationsTest : public testing::Test {
protected:
    const TemporaryFolder folder_;
    const std::wstring here_ = folder_.widePath();
};

void makeSocket(const std::string& name) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    name.copy(address.sun_path, sizeof address.sun_path - 1);
    const int handle = socket(AF_UNIX, SOCK_STREAM, 0);
    EXPECT_EQ(bind(handle, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    close(handle);
}

using Paths_t = std::vector<std::wstring>;

Paths_t sortedScan(const std::wstring& folder) {
    Paths_t paths = FileOperations::ScanFilesInDirectory(folder);
    std::sort(paths.begin(), paths.end());
    return paths;
}

/** A path of the file "f" or "ff" in the current folder with as many characters as wanted. */
std::wstring longPath(std::size_t length) {
    std::wstring path;
    while (path.size() + 2 < length) {
        path += L"./";
    }
    return path.append(length - path.size(), L'f');
}

TEST_F(FileOperationsTest, kindsOfEntries) {
    const unsigned long long large = (5ull << 30) + 1;
    for (const char* name : {"file", "sparse", "caf\xC3\xA9 \xE4\xB8\xAD", "f", "ff"}) {
        writeFile(name, "12345");
    }
    fs::resize_file("sparse", large);
    fs::create_directory("folder");
    for (const auto& [target, link] : {std::pair("file", "link"),
                                       {"link", "linkToLink"},
                                       {"folder", "folderLink"},
                                       {"missing", "dangling"},
                                       {"loop", "loop"}}) {
        fs::create_symlink(target, link);
    }
    ASSERT_EQ(mkfifo("pipe", 0600), 0);
    makeSocket("socket");

    const struct {
        std::wstring path;
        bool exists, isFolder;
        std::optional<unsigned long long> size; // that of a folder is the file system's affair
    } cases[] = {
        {L"file", true, false, 5},
        {here_ + L"/file", true, false, 5},
        {L"sparse", true, false, large},
        {L"caf\u00E9 \u4E2D", true, false, 5},
        {L"caf\u00E8 \u4E2D", false, false, 0},
        {L"folder", false, true, {}},
        {L"folder/", false, true, {}},
        {L"linkToLink", true, false, 5},
        {L"folderLink", false, true, {}},
        {L"dangling", false, false, 0},
        {L"loop", false, false, 0},
        {L"file/file", false, false, 0},
        {L"missing/file", false, false, 0},
        {L"", false, false, 0},
        // One bit of the mode is looked at, and a socket has it in common with files as well as with folders.
        {L"socket", true, true, 0},
        {L"pipe", false, false, 0},
        {L"/dev/null", false, false, 0},
        // The longest path that the system takes, one that is too long, and one that is cut on the way to the system
        {longPath(PATH_MAX - 1), true, false, 5},
        {longPath(PATH_MAX), false, false, 0},
        {longPath(70000), false, false, 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.path.substr(0, 100)));
        EXPECT_EQ(FileOperations::Exists(c.path), c.exists);
        EXPECT_EQ(FileOperations::IsDirectory(c.path), c.isFolder);
        EXPECT_TRUE(!c.size || FileOperations::GetFileSize(c.path) == *c.size);
    }
}

TEST_F(FileOperationsTest, makesAndRemoves) {
    const mode_t mask = umask(0);
    EXPECT_TRUE(FileOperations::MakeDirectory(L"caf\u00E9"));
    umask(mask);
    EXPECT_EQ(fs::status("caf\xC3\xA9").permissions(), fs::perms{0755});
    EXPECT_FALSE(FileOperations::MakeDirectory(L"caf\u00E9"));
    EXPECT_FALSE(FileOperations::MakeDirectory(L"missing/folder"));

    writeFile("caf\xC3\xA9/file", "content");
    fs::create_symlink("caf\xC3\xA9/file", "link");
    fs::create_symlink("caf\xC3\xA9", "folderLink");
    for (const wchar_t* path : {L"caf\u00E9", L"caf\u00E9/file", L"folderLink", L"missing", L""}) {
        EXPECT_FALSE(FileOperations::DeleteDirectory(path)) << testing::PrintToString(path);
    }
    fs::create_directory("empty");
    for (const wchar_t* path : {L"caf\u00E9", L"empty", L"missing", L""}) {
        EXPECT_FALSE(FileOperations::Delete(path)) << testing::PrintToString(path);
    }
    EXPECT_TRUE(FileOperations::Delete(L"link"));
    EXPECT_EQ(readFile("caf\xC3\xA9/file"), "content") << "a link was deleted, not its target";
    EXPECT_TRUE(FileOperations::Delete(L"caf\u00E9/file"));
    EXPECT_TRUE(FileOperations::DeleteDirectory(L"caf\u00E9"));
    EXPECT_FALSE(fs::exists("caf\xC3\xA9"));
}

TEST_F(FileOperationsTest, accessIsWhatTheOwnerMay) {
    writeFile("file", "");
    fs::create_symlink("file", "link");
    for (const unsigned int mode : {0400u, 0200u, 0600u, 0177u, 0u}) {
        fs::permissions("file", fs::perms{mode});
        EXPECT_EQ(FileOperations::HasReadAccess(L"link"), (mode & 0400) != 0) << mode;
        EXPECT_EQ(FileOperations::HasWriteAccess(L"link"), (mode & 0200) != 0) << mode;
    }
    EXPECT_FALSE(FileOperations::HasReadAccess(L"missing"));
    EXPECT_FALSE(FileOperations::HasWriteAccess(L"missing"));
}

TEST_F(FileOperationsTest, missingPermissions) {
    fs::permissions(".", fs::perms{0755});
    for (const auto& [folder, mode] : {std::pair("closed", 0u), std::pair("listable", 0444u)}) {
        fs::create_directory(folder);
        writeFile(std::string(folder) + "/file", "12345");
        fs::permissions(folder, fs::perms{mode});
    }
    const uid_t user = geteuid();
    if (user == 0 && seteuid(65534) != 0) {
        GTEST_SKIP() << "the superuser is refused nothing";
    }
    for (const std::wstring folder : {L"closed", L"listable"}) {
        const std::wstring file = folder + L"/file";
        EXPECT_FALSE(FileOperations::Exists(file));
        EXPECT_FALSE(FileOperations::HasReadAccess(file));
        EXPECT_EQ(FileOperations::GetFileSize(file), 0u);
        EXPECT_EQ(FileOperations::GetFileLastWriteTime(file), 0u);
        EXPECT_EQ(FileOperations::GetFreeBytesAvailable(file), 0u);
        EXPECT_EQ(FileOperations::GetFullFolder(file), L"");
        EXPECT_FALSE(FileOperations::Delete(file));
        EXPECT_FALSE(FileOperations::MakeDirectory(folder + L"/folder"));
    }
    EXPECT_EQ(sortedScan(L"closed"), Paths_t{});
    // Names that can be read, but not what they stand for, count as files.
    EXPECT_EQ(sortedScan(L"listable"), (Paths_t{L"listable/.", L"listable/..", L"listable/file"}));
    EXPECT_EQ(seteuid(user), 0);
    fs::permissions("closed", fs::perms{0700});
    fs::permissions("listable", fs::perms{0700});
}

TEST_F(FileOperationsTest, timesOfLastChange) {
    writeFile("file", "");
    fs::create_symlink("file", "link");
    const std::pair<timespec, unsigned long long> cases[] = {
        {{0, 99}, epoch},
        {{0, 100}, epoch + 1},
        {{1717245296, 123456789}, epoch + 17172452961234567},
        {{1717245296, 999999999}, epoch + 17172452969999999},
        {{-1, 999999999}, epoch - 1},
        {{4294967296, 1000}, epoch + 42949672960000010},
    };
    for (const auto& [time, ticks] : cases) {
        const timespec times[] = {{2, 0}, time};
        struct stat status;
        ASSERT_EQ(utimensat(AT_FDCWD, "file", times, 0), 0);
        ASSERT_EQ(stat("file", &status), 0);
        if (status.st_mtime == time.tv_sec) { // not every file system can store all of them
            EXPECT_EQ(FileOperations::GetFileLastWriteTime(L"file"), ticks);
            EXPECT_EQ(FileOperations::GetFileLastWriteTime(L"link"), ticks);
        }
    }
    EXPECT_EQ(FileOperations::GetFileLastWriteTime(L"missing"), 0u);
}

TEST_F(FileOperationsTest, freeSpaceIncludesWhatIsReserved) {
    struct statvfs before, after;
    unsigned long long available = 0;
    int attempts = 1000;
    do { // until nobody else writes in between
        ASSERT_EQ(statvfs(".", &before), 0);
        available = FileOperations::GetFreeBytesAvailable(here_);
        ASSERT_EQ(statvfs(".", &after), 0);
    } while (before.f_bfree != after.f_bfree && --attempts > 0);
    EXPECT_EQ(available, 1ull * before.f_bsize * before.f_bfree);
    EXPECT_EQ(FileOperations::GetFreeBytesAvailable(L"missing"), 0u);
}

TEST(FileOperations, localTimes) {
    const char* const centralEurope = "CET-1CEST,M3.5.0,M10.5.0/3";
    const struct {
        const char* zone;
        unsigned long long time;
        std::vector<int> local;
    } cases[] = {
        {"UTC0", epoch, {70, 0, 1, 0, 0, 0}},
        {"UTC0", epoch + 9517824009999999, {100, 1, 29, 0, 0, 0}},
        {centralEurope, epoch + 17118467990000000, {124, 2, 31, 1, 59, 59}},
        {centralEurope, epoch + 17118468000000000, {124, 2, 31, 3, 0, 0}},
        {"XXX5:45", epoch, {69, 11, 31, 18, 15, 0}},
        // What lies before 1970 wraps around to the far future.
        {"UTC0", epoch - 1, {58525, 4, 28, 5, 36, 10}},
        {"UTC0", 0, {58156, 4, 28, 5, 36, 10}},
        {"UTC0", ULLONG_MAX, {58156, 4, 28, 5, 36, 10}},
        {"UTC0", ULLONG_MAX / 2 + 1, {28928, 8, 14, 2, 48, 5}},
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

/** What realpath leaves in an empty buffer when it fails. */
std::wstring leftByRealpath(const std::string& path) {
    char buffer[PATH_MAX + 1] = {};
    EXPECT_EQ(realpath(path.c_str(), buffer), nullptr);
    const std::string left = buffer;
    return {left.begin(), left.end()};
}

TEST_F(FileOperationsTest, fullPathsAndFolders) {
    writeFile("file", "");
    fs::create_directories("folder/deeper");
    writeFile("folder/caf\xC3\xA9 \xE4\xB8\xAD", "");
    fs::create_symlink("folder/deeper", "link");
    fs::create_symlink("nowhere/else", "dangling");
    fs::create_symlink("loop", "loop");
    const struct {
        std::wstring path, full, folder;
    } cases[] = {
        {L"file", here_ + L"/file", here_},
        {L"./folder/../file", here_ + L"/file", here_},
        {L"folder/caf\u00E9 \u4E2D", here_ + L"/folder/caf\u00E9 \u4E2D", here_ + L"/folder"},
        {L".", here_, here_.substr(0, here_.rfind(L'/'))},
        {L"folder/", here_ + L"/folder", here_},
        {L"link", here_ + L"/folder/deeper", here_ + L"/folder"},
        {L"link/..", here_ + L"/folder", here_},
        // A name on its own need not exist.
        {L"\u00E9\u4E2D.ifc", here_ + L"/\u00E9\u4E2D.ifc", L""},
        {L"dangling", here_ + L"/dangling", L""},
        {L"loop", here_ + L"/loop", L""},
        {L"", here_ + L"/", L""},
        // Absolute paths are not touched.
        {L"/abs/dir/file.txt", L"/abs/dir/file.txt", L"/abs/dir/file.txt"},
        {L"//missing/../\U0001F600/", L"//missing/../\U0001F600/", L"//missing/../\U0001F600/"},
        {here_ + L"/folder/../link", here_ + L"/folder/../link", here_ + L"/folder/../link"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(FileOperations::GetFullPath(c.path), c.full) << testing::PrintToString(c.path);
        EXPECT_EQ(FileOperations::GetFullFolder(c.path), c.folder) << testing::PrintToString(c.path);
    }
    for (const std::string path : {"missing/x", "folder/missing/x", "file/x", "./dangling", "loop/x", "missing/"}) {
        const std::wstring wide(path.begin(), path.end());
        EXPECT_EQ(FileOperations::GetFullPath(wide), leftByRealpath(path)) << path;
        EXPECT_EQ(FileOperations::GetFullFolder(wide), L"") << path;
    }

    fs::create_directory("removed");
    fs::current_path("removed");
    fs::remove(folder_.path() + "/removed");
    EXPECT_EQ(FileOperations::GetFullPath(L"name"), L"") << "there is no current folder";
    EXPECT_EQ(FileOperations::GetFullFolder(L"."), L"");
}

TEST_F(FileOperationsTest, longestPaths) {
    std::string deep = folder_.path();
    while (deep.size() < PATH_MAX - 300) {
        deep += '/' + std::string(100, 'd');
    }
    fs::create_directories(deep + "/folder");
    fs::current_path(deep);
    const std::wstring here(deep.begin(), deep.end());
    const std::wstring fitting(PATH_MAX - 1 - here.size() - 1, L'n');
    EXPECT_EQ(FileOperations::GetFullPath(fitting), here + L"/" + fitting);
    EXPECT_EQ(FileOperations::GetFullPath(fitting + L"n"), L"");
    EXPECT_EQ(FileOperations::GetFullPath(std::wstring(70000, L'n')), L"");

    const std::string name = "folder/" + std::string(fitting.size() - 7, 'n');
    for (const auto& [path, folder] : {std::pair(name, here + L"/folder"), std::pair(name + 'n', std::wstring())}) {
        const std::wstring wide(path.begin(), path.end());
        writeFile(path, "");
        EXPECT_TRUE(FileOperations::Exists(wide));
        EXPECT_EQ(FileOperations::GetFullFolder(wide), folder);
        EXPECT_TRUE(folder.empty() || FileOperations::GetFullPath(wide) == here + L"/" + wide);
        EXPECT_TRUE(FileOperations::Delete(wide));
    }
}

TEST(FileOperations, componentsOfPaths) {
    const struct {
        std::wstring path, name, stem, withSlash;
    } cases[] = {
        {L"/a/b/archive.tar.gz", L"archive.tar.gz", L"archive.tar", L"/a/b/archive.tar.gz/"},
        {L"a.b/name", L"name", L"name", L"a.b/name/"},
        {L"/a/b.c/", L"b.c", L"b", L"/a/b.c/"},
        {L".profile", L".profile", L"", L".profile/"},
        {L"", L".", L"", L""},
        {L"a/..", L"..", L".", L"a/../"},
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
    fs::create_directories("folder/deeper/deepest");
    fs::create_directory("empty");
    for (const char* name : {"b.ifc", "a", ".hidden", "caf\xC3\xA9 \xE4\xB8\xAD", "deeper/not listed"}) {
        writeFile(std::string("folder/") + name, "");
    }
    fs::create_symlink("a", "folder/link");
    fs::create_symlink("deeper", "folder/folderLink");
    fs::create_symlink("nowhere", "folder/dangling");
    makeSocket("folder/socket"); // counts as a folder

    const Paths_t expected = {L"folder/.hidden",          L"folder/a",        L"folder/b.ifc",
                              L"folder/caf\u00E9 \u4E2D", L"folder/dangling", L"folder/link"};
    EXPECT_EQ(sortedScan(L"folder"), expected);
    EXPECT_EQ(sortedScan(L"folder/"), expected);

    testing::internal::CaptureStderr();
    writeFile("empty/\xFF", ""); // a name that can't be decoded stands for the folder itself
    for (const wchar_t* path : {L"empty", L"folder/a", L"missing", L""}) {
        EXPECT_EQ(sortedScan(path), Paths_t{}) << testing::PrintToString(path);
    }
    testing::internal::GetCapturedStderr();
}

std::wstring upper(std::wstring text) {
    for (wchar_t& c : text) {
        c = c >= L'a' && c <= L'z' ? c - 32 : c;
    }
    return text;
}

bool modelMatch(const std::wstring& file, const std::wstring& pattern) {
    const std::size_t compared = std::min(file.size(), pattern.size()) - 1;
    return upper(file.substr(file.size() - compared)) == upper(pattern.substr(pattern.size() - compared));
}

bool modelMatchList(const std::wstring& file, const std::wstring& list) {
    bool matches = list.empty();
    for (std::size_t begin = 0; !matches && begin < list.size() && list[begin] != L'|';) {
        const std::size_t end = std::min(list.find(L'|', begin), list.size());
        matches = modelMatch(file, list.substr(begin, end - begin));
        begin = end + 1;
    }
    return matches;
}

TEST(FileOperations, matchesExtensions) {
    const struct {
        std::wstring file, list;
        bool matches;
    } cases[] = {
        {L"model.IFC", L"*.ifc|*.ifcxml", true},
        {L"model.ifcxml", L"*.ifc|*.IfcXml", true},
        {L"model.ifczip", L"*.ifc|*.ifcxml", false},
        {L"model.ifc", L"", true},
        // An empty pattern ends the list.
        {L"model.ifc", L"|*.ifc", false},
        {L"model.ifc", L"*.dwg||*.ifc", false},
        {L"model.dwg", L"*.dwg||*.ifc", true},
        // The first characters are never looked at, and a shorter name matches when it runs out.
        {L"model.ifc", L"x", true},
        {L"fc", L"*.ifc", true},
        {L"fd", L"*.ifc", false},
        {L"xifc", L"*.ifc", true},
        {L"a.\u00C9", L"*.\u00E9", false}, // ASCII letters only
    };
    for (const auto& c : cases) {
        EXPECT_EQ(FileOperations::MatchExtension(c.file, c.list), c.matches)
            << testing::PrintToString(c.file) << ' ' << testing::PrintToString(c.list);
    }
    EXPECT_TRUE(FileOperations::MatchExtension(L"model.ifc", L"*.ifcxml", 5));
    EXPECT_EQ(FileOperations::ParseExtension(L"*.ifc|*.ifcxml"), 5u);
    EXPECT_EQ(FileOperations::ParseExtension(L"*.ifcxml"), 8u);
    EXPECT_EQ(FileOperations::ParseExtension(L"|*.ifc"), 0u);
    for (int c = -300; c < 70000; ++c) {
        EXPECT_EQ(FileOperations::MyToUpper(c), c >= 'a' && c <= 'z' ? c - 32 : c);
    }
}

TEST(FileOperations, matchingAgreesWithThePlainModel) {
    constexpr unsigned int seed = 20240613;
    std::cout << "seed " << seed << std::endl;
    std::mt19937 random(seed);
    const auto text = [&random](const std::wstring& letters, std::size_t least, std::size_t most) {
        std::wstring result(least + random() % (most - least + 1), 0);
        std::generate(result.begin(), result.end(), [&] { return letters[random() % letters.size()]; });
        return result;
    };
    int matches = 0;
    for (int round = 0; round < 50000 && !testing::Test::HasFailure(); ++round) {
        const std::wstring file = text(L"aAbB.\u00E9", 1, 6);
        const std::wstring list = text(L"aAbB.||\u00E9", 0, 12);
        const std::wstring pattern = text(L"aAb|", 1, 6);
        const bool expected = modelMatchList(file, list);
        EXPECT_EQ(FileOperations::MatchExtension(file, list), expected) << "round " << round;
        EXPECT_EQ(FileOperations::MatchExtension(file, pattern.c_str(), static_cast<unsigned int>(pattern.size())),
                  modelMatch(file, pattern))
            << "round " << round;
        matches += expected ? 1 : 0;
    }
    EXPECT_TRUE(matches > 5000 && matches < 45000) << matches;
}

TEST(FileOperations, unavailableHere) {
    unsigned int version[] = {1, 2, 3, 4};
    EXPECT_TRUE(FileOperations::GetProductVersion(L"x", &version[0], &version[1], &version[2], &version[3]));
    EXPECT_EQ(std::count(version, version + 4, 0u), 4);
    bool readable = true;
    bool writable = false;
    FileOperations::oe_file_access_core(L"/", &readable, &writable);
    EXPECT_TRUE(readable && !writable);
    EXPECT_EQ(FileOperations::GetModuleByAddress(&version), L"");
    EXPECT_EQ(FileOperations::ConvertSystemTimeToTimeString({}), L"no time on OSX");
    EXPECT_EQ(FileOperations::ConvertSystemTimeToDateString({}), L"no time on OSX");
}

} // namespace
