/**
 * @file EnvironmentVariables.h
 * Text, numbers and open streams in the process environment.
 */
#pragma once

#include <ImportCommon/Export.h>

#include <cstdio>
#include <string>

namespace ImportCommon {

/**
 * The process environment as the channel between host and plug-in.
 *
 * Keys and values are wide text here and UTF-8 in the environment, converted as StringOperations does: at most 4095
 * bytes each, and at most 4095 characters of text read back. A stream travels as the decimal value of its `FILE*`,
 * which means something only inside the process that wrote it. The environment is not locked: set variables from one
 * thread before others read them. What returns text throws `std::bad_alloc` without memory; nothing else throws.
 */
class IMPORT_COMMON_API EnvironmentVariables {
public:
    /**
     * The variable's text; empty when it is not set. Invalid UTF-8, and a character beyond ASCII behind the 4096th, is
     * reported once on the log and yields the characters before it.
     * @param key  name of the variable
     * @return the text
     */
    static std::wstring GetString(const std::wstring& key);

    /**
     * The number at the start of the variable's text; 0 when there is none or the variable is not set.
     * @param key  name of the variable
     * @return the number
     */
    static int GetInt(const std::wstring& key);

    /**
     * The stream whose pointer value the variable holds; null when the variable is not set or holds no number. The
     * pointer is not checked: it must come from SetFileStreamHandle in this process, and the stream must still be open.
     * The stream stays owned by whoever opened it.
     * @param key  name of the variable
     * @return the stream or null
     */
    static FILE* GetFileStreamHandle(const std::wstring& key);

    /**
     * Sets the variable, replacing an earlier value.
     * @param key    name of the variable
     * @param value  the text
     * @return 0, or -1 when the system refuses
     */
    static int SetString(const std::wstring& key, const std::wstring& value);

    /**
     * Sets the variable to the decimal text of @p value.
     * @param key    name of the variable
     * @param value  the number
     * @return as SetString
     */
    static int SetInt(const std::wstring& key, int value);

    /**
     * Sets the variable to the pointer value of @p stream, which stays owned by the caller.
     * @param key     name of the variable
     * @param stream  the stream; may be null
     * @return as SetString
     */
    static int SetFileStreamHandle(const std::wstring& key, FILE* stream);

    /**
     * Returns @p text unchanged: variable references are not expanded on this platform.
     * @param text  any text
     * @return the same text
     */
    static std::wstring ExpandVariables(const std::wstring& text);
};

} // namespace ImportCommon
