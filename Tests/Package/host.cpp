// Hands an environment to the plug-in that is named on the command line, and checks what comes back.
#include <ImportCommon/ImportCommon.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

using namespace ImportCommon;

extern "C" int countDifferent(const std::int32_t* numbers, int count);

namespace {

void require(bool condition, const char* what) {
    if (!condition) {
        std::fprintf(stderr, "package test: wrong %s\n", what);
        std::exit(1);
    }
}

} // namespace

int main(int count, char** arguments) {
    require(count == 2, "number of arguments");
    const int headers[] = {IMPORT_COMMON_VERSION_MAJOR, IMPORT_COMMON_VERSION_MINOR};
    int library[2] = {-1, -1};
    require(std::sscanf(getVersion(), "%d.%d.", &library[0], &library[1]) == 2 && library[0] == headers[0] &&
                library[1] == headers[1],
            "version of the library");
    const std::unique_ptr<FILE, int (*)(FILE*)> stream(std::tmpfile(), std::fclose);
    require(stream != nullptr, "temporary file");
    EnvironmentVariables::SetInt(L"fo_handle_version", 1);
    EnvironmentVariables::SetString(L"fo_string_filename", L"2O2Fr$t4X7Zf8NOew3FNtn");
    EnvironmentVariables::SetFileStreamHandle(L"fo_handle_objects", stream.get());

    const std::unique_ptr<DynamicLibrary> plugin(
        DynamicLibrary::loadDynamicLibrary(StringOperations::ConvertFromCurrentLocale(arguments[1]), L""));
    require(plugin != nullptr, "plug-in");
    const auto importModel = reinterpret_cast<int (*)()>(plugin->getSymbolAddress("ImportModel"));
    require(importModel != nullptr && importModel() == 0, "import");

    char bytes[256];
    std::rewind(stream.get());
    const std::size_t size = std::fread(bytes, 1, sizeof bytes, stream.get());
    require(size == ExternalGUID::RecordSize + 28 + 3, "size of the results");
    const ExternalGUID identity = ExternalGUID::fromByteStream(ExternalGUID::RecordSize, bytes);
    require(std::strcmp(identity.getIFCGlobalID(), "2O2Fr$t4X7Zf8NOew3FNtn") == 0, "identity");
    ExternalVersion version;
    version.fromByteStream(28, bytes + ExternalGUID::RecordSize);
    require(version == createFromBoundingBox(4.0, 0.2, 3.0), "version");
    require(std::memcmp(bytes + size - 3, "F90", 3) == 0, "property");

    ExternalGUIDDatabase database;
    require(database.findGUID(database.insertGUID(identity)).getType() == ExternalGUID::GUIDTypeIFCGlobalID,
            "database");
    const std::int32_t numbers[] = {3, 1, 3, 2, 1};
    require(countDifferent(numbers, 5) == 3, "table");
    std::puts("package test: passed");
    return 0;
}
