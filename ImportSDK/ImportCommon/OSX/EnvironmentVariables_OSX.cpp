#include <ImportCommon/EnvironmentVariables.h>
#include <ImportCommon/StringOperations.h>

#include <cstdlib>

namespace ImportCommon {

namespace {

constexpr std::size_t textCapacity = 4096;
constexpr std::size_t numberCapacity = 20;

/** Text as the environment holds it. */
class NarrowText {
public:
    explicit NarrowText(const std::wstring& text) { StringOperations::ConvertToUTF8(text, bytes_); }
    const char* get() const { return reinterpret_cast<const char*>(bytes_); }

private:
    unsigned char bytes_[textCapacity];
};

const char* lookUp(const std::wstring& key) {
    return std::getenv(NarrowText(key).get());
}

long numberOf(const char* text) {
    return text != nullptr ? std::strtol(text, nullptr, 10) : 0;
}

int set(const std::wstring& key, const char* value) {
    return setenv(NarrowText(key).get(), value, 1);
}

} // namespace

std::wstring EnvironmentVariables::GetString(const std::wstring& key) {
    const char* value = lookUp(key);
    if (value == nullptr) {
        return std::wstring();
    }
    wchar_t text[textCapacity] = {};
    StringOperations::ConvertFromUTF8(reinterpret_cast<const unsigned char*>(value), text);
    text[textCapacity - 1] = 0; // text that fills the buffer leaves no room for its terminator
    return text;
}

int EnvironmentVariables::GetInt(const std::wstring& key) {
    return static_cast<int>(numberOf(lookUp(key)));
}

FILE* EnvironmentVariables::GetFileStreamHandle(const std::wstring& key) {
    return reinterpret_cast<FILE*>(numberOf(lookUp(key)));
}

int EnvironmentVariables::SetString(const std::wstring& key, const std::wstring& value) {
    return set(key, NarrowText(value).get());
}

int EnvironmentVariables::SetInt(const std::wstring& key, int value) {
    char text[numberCapacity];
    std::snprintf(text, sizeof text, "%d", value);
    return set(key, text);
}

int EnvironmentVariables::SetFileStreamHandle(const std::wstring& key, FILE* stream) {
    char text[numberCapacity];
    std::snprintf(text, sizeof text, "%lu", reinterpret_cast<unsigned long>(stream));
    return set(key, text);
}

std::wstring EnvironmentVariables::ExpandVariables(const std::wstring& text) {
    return text;
}

} // namespace ImportCommon
