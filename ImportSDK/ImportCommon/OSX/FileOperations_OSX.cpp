#include <ImportCommon/FileOperations.h>
#include <ImportCommon/StringOperations.h>

#include <dirent.h>
#include <libgen.h>
#include <sys/stat.h>
#include <unistd.h>

#include <climits>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <memory>

#if defined(__APPLE__)
#include <sys/mount.h>
#include <sys/param.h>
#else
#include <sys/vfs.h>
#endif

namespace ImportCommon {

namespace {

constexpr unsigned int regularFileBit = 0x8000;
constexpr unsigned int folderBit = 0x4000;
constexpr unsigned int ownerReadBit = 0x100;
constexpr unsigned int ownerWriteBit = 0x80;
constexpr unsigned long long ticksPerSecond = 10000000; // of 100 nanoseconds
constexpr unsigned long long ticksFrom1601To1970 = 116444736000000000;

std::string narrow(const std::wstring& path) {
    return StringOperations::ConvertToCurrentLocale(path);
}

std::wstring decode(const char* text) {
    return StringOperations::ConvertFromUTF8(reinterpret_cast<const unsigned char*>(text));
}

bool examine(const std::wstring& path, struct stat& status) {
    return stat(narrow(path).c_str(), &status) == 0;
}

bool hasModeBit(const std::wstring& path, unsigned int bit) {
    struct stat status;
    return examine(path, status) && (status.st_mode & bit) != 0;
}

bool isAbsolute(const std::string& path) {
    return !path.empty() && path[0] == '/';
}

/** The last component of a path, as the system takes it apart; an empty result when it can't. */
std::string lastComponent(const std::wstring& path) {
    std::string text = narrow(path); // the system may change what it takes apart
    const char* component = basename(text.data());
    return component != nullptr ? component : "";
}

} // namespace

bool FileOperations::Exists(const std::wstring& path) {
    return hasModeBit(path, regularFileBit);
}

bool FileOperations::IsDirectory(const std::wstring& path) {
    return hasModeBit(path, folderBit);
}

bool FileOperations::Delete(const std::wstring& path) {
    return unlink(narrow(path).c_str()) == 0;
}

bool FileOperations::MakeDirectory(const std::wstring& path) {
    return mkdir(narrow(path).c_str(), 0755) == 0;
}

bool FileOperations::DeleteDirectory(std::wstring path) {
    return rmdir(narrow(path).c_str()) == 0;
}

bool FileOperations::HasReadAccess(const std::wstring& path) {
    return hasModeBit(path, ownerReadBit);
}

bool FileOperations::HasWriteAccess(const std::wstring& path) {
    return hasModeBit(path, ownerWriteBit);
}

unsigned long long FileOperations::GetFileSize(const std::wstring& path) {
    struct stat status;
    return examine(path, status) ? static_cast<unsigned long long>(status.st_size) : 0;
}

unsigned long long FileOperations::GetFreeBytesAvailable(const std::wstring& path) {
    struct statfs status;
    if (statfs(narrow(path).c_str(), &status) != 0) {
        return 0;
    }
    return static_cast<unsigned long long>(status.f_bsize) * status.f_bfree;
}

unsigned long long FileOperations::GetFileLastWriteTime(const std::wstring& path) {
    struct stat status;
    if (!examine(path, status)) {
        return 0;
    }
#if defined(__APPLE__)
    const timespec& time = status.st_mtimespec;
#else
    const timespec& time = status.st_mtim;
#endif
    return static_cast<unsigned long long>(time.tv_sec) * ticksPerSecond +
           static_cast<unsigned long long>(time.tv_nsec) / 100 + ticksFrom1601To1970;
}

SystemTime_s FileOperations::ConvertToSystemTime(unsigned long long time) {
    const std::time_t seconds = static_cast<std::time_t>((time - ticksFrom1601To1970) / ticksPerSecond);
    tzset(); // the re-entrant function does not look whether the time zone has changed
    std::tm local = {};
    if (localtime_r(&seconds, &local) == nullptr) {
        return {};
    }
    const auto cut = [](int value) { return static_cast<unsigned short>(value); };
    return {cut(local.tm_year), cut(local.tm_mon), cut(local.tm_mday),
            cut(local.tm_hour), cut(local.tm_min), cut(local.tm_sec)};
}

std::wstring FileOperations::ConvertSystemTimeToTimeString(const SystemTime_s&) {
    return L"no time on OSX";
}

std::wstring FileOperations::ConvertSystemTimeToDateString(const SystemTime_s&) {
    return L"no time on OSX";
}

std::wstring FileOperations::GetFullPath(const std::wstring& path) {
    const std::string text = narrow(path);
    if (isAbsolute(text)) {
        return path;
    }
    char buffer[PATH_MAX] = {};
    if (realpath(text.c_str(), buffer) != nullptr || text.find('/') != std::string::npos) {
        buffer[PATH_MAX - 1] = 0;
        return decode(buffer); // after a failure, what the system left there
    }
    if (realpath(".", buffer) == nullptr) {
        return std::wstring();
    }
    const std::string joined = std::string(buffer) + "/" + text;
    return joined.size() < PATH_MAX ? decode(joined.c_str()) : std::wstring();
}

std::wstring FileOperations::GetFileWithoutPath(const std::wstring& path) {
    return decode(lastComponent(path).c_str());
}

std::wstring FileOperations::GetFileWithoutExtenstion(const std::wstring& path) {
    const std::string component = lastComponent(path);
    return decode(component.substr(0, component.rfind('.')).c_str());
}

std::wstring FileOperations::GetFullFolder(const std::wstring& path) {
    const std::string text = narrow(path);
    if (isAbsolute(text)) {
        return path;
    }
    char buffer[PATH_MAX] = {};
    char* slash = realpath(text.c_str(), buffer) != nullptr ? std::strrchr(buffer, '/') : nullptr;
    if (slash == nullptr) {
        return std::wstring();
    }
    *slash = 0;
    return decode(buffer);
}

std::wstring FileOperations::GetModuleByAddress(const void*) {
    return std::wstring();
}

bool FileOperations::MatchExtension(const std::wstring& file, const std::wstring& extensions) {
    if (extensions.empty()) {
        return true;
    }
    const wchar_t* pattern = extensions.c_str();
    while (const unsigned int length = ParseExtension(pattern)) {
        if (MatchExtension(file, pattern, length)) {
            return true;
        }
        pattern += length;
        if (*pattern == L'|') {
            ++pattern;
        }
    }
    return false;
}

unsigned int FileOperations::ParseExtension(const wchar_t* extensions) {
    unsigned int length = 0;
    while (extensions[length] != L'|' && extensions[length] != 0) {
        ++length;
    }
    return length;
}

bool FileOperations::MatchExtension(const std::wstring& file, const wchar_t* pattern, unsigned int length) {
    if (file.empty() || length == 0) {
        return true; // nothing to compare
    }
    unsigned int i = length - 1;
    unsigned int j = static_cast<unsigned int>(file.size() - 1);
    for (; i != 0 && j != 0; --i, --j) {
        if (MyToUpper(file[j]) != MyToUpper(pattern[i])) {
            return false;
        }
    }
    return true;
}

std::wstring FileOperations::InsertEndingDirectorySlash(const std::wstring& path) {
    const bool complete = path.empty() || path.back() == L'/' || path.back() == L'\\';
    return complete ? path : path + L"/";
}

std::vector<std::wstring> FileOperations::ScanFilesInDirectory(const std::wstring& directory) {
    std::vector<std::wstring> files;
    const std::unique_ptr<DIR, int (*)(DIR*)> folder(opendir(narrow(directory).c_str()), closedir);
    while (const dirent* entry = folder ? readdir(folder.get()) : nullptr) {
        const std::wstring path = InsertEndingDirectorySlash(directory) + decode(entry->d_name);
        if (!IsDirectory(path)) {
            files.push_back(path);
        }
    }
    return files;
}

bool FileOperations::GetProductVersion(const std::wstring&, unsigned int* major, unsigned int* minor,
                                       unsigned int* revision, unsigned int* build) {
    *major = *minor = *revision = *build = 0;
    return true;
}

void FileOperations::oe_file_access_core(const std::wstring&, bool*, bool*) {
}

int FileOperations::MyToUpper(int character) {
    return character >= 'a' && character <= 'z' ? character - 'a' + 'A' : character;
}

} // namespace ImportCommon
