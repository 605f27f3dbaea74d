/**
 * @file FileOperations.h
 * Files, folders and paths.
 */
#pragma once

#include <ImportCommon/Export.h>

#include <string>
#include <vector>

namespace ImportCommon {

/** A local time as the system breaks it down: years since 1900 and months from 0. That is meant. */
struct SystemTime_s {
    unsigned short year;   ///< since 1900
    unsigned short month;  ///< 0 to 11
    unsigned short day;    ///< 1 to 31
    unsigned short hour;   ///< 0 to 23
    unsigned short minute; ///< 0 to 59
    unsigned short second; ///< 0 to 60
};

/**
 * Files, folders and paths, as wide text. Nothing here throws except for lack of memory, and nothing is logged: a
 * failure of the system becomes false, 0 or an empty text. Symbolic links are followed.
 *
 * Paths go to the system as StringOperations::ConvertToCurrentLocale makes them: characters beyond U+FFFF are dropped
 * and text beyond 65535 bytes is cut, so a path with either names another file. Paths from the system that are not
 * valid UTF-8 are reported once on the log, by the conversion.
 *
 * Whatever takes or returns text throws `std::bad_alloc` without memory. Pointers must not be null unless a function
 * says that it doesn't look.
 */
class IMPORT_COMMON_API FileOperations {
public:
    /**
     * Whether a regular file is at the path; a socket counts as one, since just the bit of regular files is tested.
     * @param path  the path
     * @return whether there is one
     */
    static bool Exists(const std::wstring& path);

    /**
     * Whether a folder is at the path; a block device or a socket counts as one, since just a bit is tested.
     * @param path  the path
     * @return whether there is one
     */
    static bool IsDirectory(const std::wstring& path);

    /**
     * Removes a file.
     * @param path  the file
     * @return whether it was removed
     */
    static bool Delete(const std::wstring& path);

    /**
     * Makes one folder with mode 0755; its parent must exist.
     * @param path  the folder to make
     * @return whether it was made; false when there is one already
     */
    static bool MakeDirectory(const std::wstring& path);

    /**
     * Removes an empty folder.
     * @param path  the folder
     * @return whether it was removed
     */
    static bool DeleteDirectory(std::wstring path);

    /**
     * Whether the owner may read the file, whoever asks.
     * @param path  the file
     * @return whether the owner may; false when it can't be examined
     */
    static bool HasReadAccess(const std::wstring& path);

    /**
     * Whether the owner may write the file, whoever asks.
     * @param path  the file
     * @return whether the owner may; false when it can't be examined
     */
    static bool HasWriteAccess(const std::wstring& path);

    /**
     * Size in bytes; 0 for a file that can't be examined.
     * @param path  the file
     * @return the size or 0
     */
    static unsigned long long GetFileSize(const std::wstring& path);

    /**
     * Free bytes of the path's file system, those reserved for the superuser included; 0 on failure.
     * @param path  any file or folder in the file system
     * @return the number or 0
     */
    static unsigned long long GetFreeBytesAvailable(const std::wstring& path);

    /**
     * Time of the last change in units of 100 nanoseconds since 1601-01-01 00:00 UTC; 0 on failure.
     * @param path  the file
     * @return the time or 0
     */
    static unsigned long long GetFileLastWriteTime(const std::wstring& path);

    /**
     * A time of GetFileLastWriteTime as local time; all zero for one that the system can't break down.
     * @param time  units of 100 nanoseconds since 1601-01-01 00:00 UTC
     * @return the time
     */
    static SystemTime_s ConvertToSystemTime(unsigned long long time);

    /**
     * Always "no time on OSX".
     * @param time  not looked at
     * @return that text
     */
    static std::wstring ConvertSystemTimeToTimeString(const SystemTime_s& time);

    /**
     * Always "no time on OSX".
     * @param time  not looked at
     * @return that text
     */
    static std::wstring ConvertSystemTimeToDateString(const SystemTime_s& time);

    /**
     * The absolute path without links and dots. A path that begins with "/" is returned as it is. A bare name that
     * doesn't exist is put behind the current folder; of a longer path that doesn't exist comes back what the system
     * could resolve. An empty path gives the current folder with a slash at its end.
     *
     * Empty when the result would be longer than the system's longest path or isn't valid UTF-8, when the current
     * folder can't be told, and when the system resolved nothing of a longer path.
     * @param path  the path
     * @return the absolute path
     */
    static std::wstring GetFullPath(const std::wstring& path);

    /**
     * The last component of the path; "." for an empty path.
     * @param path  the path
     * @return the component
     */
    static std::wstring GetFileWithoutPath(const std::wstring& path);

    /**
     * The last component up to its last "."; the spelling of the name is part of the interface.
     * @param path  the path
     * @return the name
     */
    static std::wstring GetFileWithoutExtenstion(const std::wstring& path);

    /**
     * The folder of an existing file, absolute, without a slash at its end. A path that begins with "/" is returned
     * whole, its file part included; that is meant.
     *
     * Empty when the path is empty or nothing is there, when the folder's name isn't valid UTF-8, and for what stands
     * in the root folder, whose path ends with the slash.
     * @param path  the file
     * @return the folder
     */
    static std::wstring GetFullFolder(const std::wstring& path);

    /**
     * Always empty on this platform.
     * @param address  not looked at
     * @return an empty text
     */
    static std::wstring GetModuleByAddress(const void* address);

    /**
     * Whether a file name ends as one of the patterns in a list like `*.ifc|*.ifcxml` says, in either case of ASCII
     * letters. An empty list matches everything; an empty pattern ends the list. An empty name matches every pattern,
     * but not a list that begins with "|".
     * @param file        the file name
     * @param extensions  patterns, separated by "|"
     * @return whether one matches
     */
    static bool MatchExtension(const std::wstring& file, const std::wstring& extensions);

    /**
     * Length of the first pattern of a list: up to "|" or the end.
     *
     * REQUIRES: a terminating zero.
     *
     * @param extensions  zero-terminated list of patterns
     * @return the number of characters
     */
    static unsigned int ParseExtension(const wchar_t* extensions);

    /**
     * Whether a file name ends as a pattern of @p length characters does. The first character of either is never
     * looked at, and a name that is shorter than the pattern matches when all its characters do. An empty name or
     * pattern matches.
     *
     * REQUIRES: @p pattern has @p length characters.
     *
     * @param file     the file name
     * @param pattern  the pattern, such as `*.ifc`
     * @param length   its number of characters
     * @return whether it matches
     */
    static bool MatchExtension(const std::wstring& file, const wchar_t* pattern, unsigned int length);

    /**
     * The path with "/" added, unless it is empty or ends with a slash or backslash.
     * @param path  the path
     * @return the path with the slash
     */
    static std::wstring InsertEndingDirectorySlash(const std::wstring& path);

    /**
     * Paths of all entries of a folder that aren't folders, in the system's order; empty when the folder can't be read.
     * Entries whose names aren't valid UTF-8 of the Basic Multilingual Plane are left out: nothing but the one report
     * on the log tells of them.
     * @param directory  the folder
     * @return the paths
     */
    static std::vector<std::wstring> ScanFilesInDirectory(const std::wstring& directory);

    /**
     * Not available on this platform: gives four zeros and true.
     * @param path      not looked at
     * @param major     receives 0
     * @param minor     receives 0
     * @param revision  receives 0
     * @param build     receives 0
     * @return true
     */
    static bool GetProductVersion(const std::wstring& path, unsigned int* major, unsigned int* minor,
                                  unsigned int* revision, unsigned int* build);

    /**
     * Not available on this platform: does nothing, and leaves the results as they are.
     * @param path      not looked at
     * @param readable  left as it is
     * @param writable  left as it is
     */
    static void oe_file_access_core(const std::wstring& path, bool* readable, bool* writable);

    /**
     * Upper case of an ASCII letter; any other value unchanged.
     * @param character  the character
     * @return the upper case
     */
    static int MyToUpper(int character);
};

} // namespace ImportCommon
