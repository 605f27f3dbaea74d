#include <ImportCommon/Version.h>

#define TEXT_OF(number) #number
#define DOTTED(major, minor, patch) TEXT_OF(major) "." TEXT_OF(minor) "." TEXT_OF(patch)

namespace ImportCommon {

const char* getVersion() {
    return DOTTED(IMPORT_COMMON_VERSION_MAJOR, IMPORT_COMMON_VERSION_MINOR, IMPORT_COMMON_VERSION_PATCH);
}

} // namespace ImportCommon
