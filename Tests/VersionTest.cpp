#include <ImportCommon/Version.h>

#include <gtest/gtest.h>

#include <string>

// The build passes the project's own version, which names the shared library and the packages.
TEST(VersionTest, headersLibraryAndProjectAgree) {
    const std::string headers = std::to_string(IMPORT_COMMON_VERSION_MAJOR) + "." +
                                std::to_string(IMPORT_COMMON_VERSION_MINOR) + "." +
                                std::to_string(IMPORT_COMMON_VERSION_PATCH);
    EXPECT_EQ(headers, PROJECT_VERSION);
    EXPECT_EQ(ImportCommon::getVersion(), headers);
}
