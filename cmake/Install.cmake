# What "cmake --install" puts where. Component Runtime is what a program needs to run, Development what builds against it.
include(CMakePackageConfigHelpers)

set(packageDir ${CMAKE_INSTALL_LIBDIR}/cmake/ImportCommon)
set(pkgConfigDir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

# The library, the kit for plug-ins, and their headers
install(TARGETS import-common plugin-kit EXPORT ImportCommonTargets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT Runtime NAMELINK_COMPONENT Development
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT Runtime
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT Development)
install(DIRECTORY ImportSDK/ImportCommon/Include/ImportCommon DbFast/Include/DbFast PluginKit/Include/PluginKit
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT Development FILES_MATCHING PATTERN "*.h")

# find_package(ImportCommon)
configure_package_config_file(cmake/ImportCommonConfig.cmake.in ${PROJECT_BINARY_DIR}/ImportCommonConfig.cmake
    INSTALL_DESTINATION ${packageDir} NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/ImportCommonConfigVersion.cmake
    COMPATIBILITY ${IMPORTCOMMON_COMPATIBILITY})
install(EXPORT ImportCommonTargets NAMESPACE ImportCommon:: DESTINATION ${packageDir} COMPONENT Development)
install(FILES ${PROJECT_BINARY_DIR}/ImportCommonConfig.cmake ${PROJECT_BINARY_DIR}/ImportCommonConfigVersion.cmake
    DESTINATION ${packageDir} COMPONENT Development)

# pkg-config: the prefix is found from the file's own place, so that an installed tree can be moved.
file(RELATIVE_PATH PC_PREFIX_FROM_FILE /prefix/${pkgConfigDir} /prefix)
string(REGEX REPLACE "/$" "" PC_PREFIX_FROM_FILE "${PC_PREFIX_FROM_FILE}")
configure_file(cmake/import-common.pc.in ${PROJECT_BINARY_DIR}/import-common.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/import-common.pc DESTINATION ${pkgConfigDir} COMPONENT Development)

# The examples, a project of their own once installed, with the host and its plug-ins
set(examplesDir ${CMAKE_INSTALL_DATADIR}/import-common/examples)
install(FILES cmake/InstalledExamples.cmake RENAME CMakeLists.txt DESTINATION ${examplesDir} COMPONENT Development)
install(FILES PluginKit/FORMATS.md DESTINATION ${CMAKE_INSTALL_DATADIR}/import-common COMPONENT Development)
install(DIRECTORY ImportHost IfcReader IfcPlugin Examples DESTINATION ${examplesDir} COMPONENT Development)
