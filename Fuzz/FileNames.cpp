/**
 * @file FileNames.cpp
 * Extension matching and the functions that take paths apart, on any text.
 */
#include "FuzzInput.h"
#include "Models/Utf8Reference.h"

#include <ImportCommon/FileOperations.h>

#include <ctime>

using ImportCommon::FileOperations;
using ImportCommon::SystemTime_s;

namespace {

wchar_t upper(wchar_t c) {
    return c >= L'a' && c <= L'z' ? static_cast<wchar_t>(c - L'a' + L'A') : c;
}

/** Ends are compared without their first characters, as far as the shorter one goes. */
bool matches(const std::wstring& file, const std::wstring& pattern) {
    const std::size_t compared = std::min(file.size(), pattern.size());
    for (std::size_t i = 1; i < compared; ++i) {
        if (upper(file[file.size() - i]) != upper(pattern[pattern.size() - i])) {
            return false;
        }
    }
    return true;
}

bool matchesAny(const std::wstring& file, const std::wstring& list) {
    const std::wstring text = list.c_str();
    std::size_t begin = 0;
    while (begin < text.size()) {
        const std::size_t end = std::min(text.find(L'|', begin), text.size());
        if (end == begin) {
            return false;
        }
        if (matches(file, text.substr(begin, end - begin))) {
            return true;
        }
        begin = end + 1;
    }
    return list.empty();
}

std::wstring decoded(const std::string& text) {
    std::wstring wide;
    const auto* const bytes = reinterpret_cast<const unsigned char*>(text.c_str());
    const std::size_t length = Utf8Reference::count(bytes, SIZE_MAX);
    Utf8Reference::decode(bytes, SIZE_MAX, length, wide);
    return wide;
}

std::string lastComponent(std::string path) {
    if (path.empty()) {
        return ".";
    }
    while (path.size() > 1 && path.back() == '/') {
        path.pop_back();
    }
    return path == "/" ? path : path.substr(path.rfind('/') + 1);
}

void checkExtensions(const std::wstring& file, const std::wstring& list) {
    require(FileOperations::MatchExtension(file, list) == matchesAny(file, list), "match with a list");
    const std::size_t first = std::min(list.find(L'|'), std::wstring(list.c_str()).size());
    require(FileOperations::ParseExtension(list.c_str()) == first, "length of an extension");
    const ExactArray<wchar_t> pattern(list.data(), list.size());
    require(FileOperations::MatchExtension(file, pattern.get(), static_cast<unsigned int>(list.size())) ==
                matches(file, list),
            "match with a pattern");
}

void checkPath(const std::wstring& path) {
    const std::string narrow = Utf8Reference::encode(path, 65536).c_str();
    const std::string component = lastComponent(narrow);
    require(FileOperations::GetFileWithoutPath(path) == decoded(component), "name without the path");
    require(FileOperations::GetFileWithoutExtenstion(path) == decoded(component.substr(0, component.rfind('.'))),
            "name without the extension");
    const bool complete = path.empty() || path.back() == L'/' || path.back() == L'\\';
    require(FileOperations::InsertEndingDirectorySlash(path) == path + (complete ? L"" : L"/"), "ending slash");

    const std::wstring full = FileOperations::GetFullPath(path);
    const std::wstring folder = FileOperations::GetFullFolder(path);
    if (!narrow.empty() && narrow[0] == '/') {
        require(full == path && folder == path, "absolute path");
    } else {
        require(full.empty() || full[0] == L'/' || narrow.find('/') != std::string::npos, "full path");
        require(folder.empty() || folder[0] == L'/', "full folder");
    }
    const bool exists = FileOperations::Exists(path);
    require(exists || FileOperations::IsDirectory(path) || FileOperations::GetFileSize(path) == 0 ||
                FileOperations::HasReadAccess(path) || FileOperations::GetFileLastWriteTime(path) != 0,
            "size of a file that is not there");
    FileOperations::HasWriteAccess(path);
    FileOperations::GetFreeBytesAvailable(path);
}

void checkTime(unsigned long long time) {
    const auto seconds = static_cast<std::time_t>((time - 116444736000000000ULL) / 10000000);
    std::tm local = {};
    const bool valid = localtime_r(&seconds, &local) != nullptr;
    const SystemTime_s result = FileOperations::ConvertToSystemTime(time);
    require(!valid || (result.year == static_cast<unsigned short>(local.tm_year) && result.day == local.tm_mday &&
                       result.second == local.tm_sec),
            "time");
}

std::wstring wideOf(const std::string& bytes) {
    std::wstring text;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const unsigned int low = static_cast<unsigned char>(bytes[i]);
        // Mostly plain characters; 0xF0 and above bring the others in.
        text += static_cast<wchar_t>(
            low < 0xF0 || i + 1 == bytes.size() ? low : low << 8 | static_cast<unsigned char>(bytes[++i]));
    }
    return text;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzInput input(data, size);
    checkTime(input.take<std::uint64_t>());
    const std::wstring list = wideOf(input.field('\n'));
    const std::wstring path = wideOf(input.bytes());
    checkExtensions(path, list);
    checkPath(path);
    return 0;
}
