# What "cmake --install" puts where. Component Runtime is what a program needs to run, Development what builds against it,
# Host the program import-host with its plug-in.
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

# The host, with the plug-in that it loads and the pages that are made from its options
if(TARGET import-host)
    file(RELATIVE_PATH libraryFromProgram /prefix/${CMAKE_INSTALL_BINDIR} /prefix/${CMAKE_INSTALL_LIBDIR})
    if(NOT CMAKE_INSTALL_PREFIX STREQUAL "/usr") # a tree of its own, which may be moved
        set_target_properties(import-host PROPERTIES INSTALL_RPATH "$ORIGIN/${libraryFromProgram}")
        set_target_properties(ifc-plugin PROPERTIES INSTALL_RPATH "$ORIGIN/..")
    endif()
    install(TARGETS import-host RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT Host)
    install(TARGETS ifc-plugin LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}/import-host COMPONENT Host)
    set(pages ${PROJECT_BINARY_DIR}/ImportHost/pages)
    if(TARGET import-host-manual)
        install(FILES ${pages}/import-host.1.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT Host)
        install(FILES ${pages}/import-host.bash RENAME import-host
            DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions COMPONENT Host)
        install(FILES ${pages}/_import-host DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions COMPONENT Host)
    endif()
endif()

# The examples, a project of their own once installed, with the host and its plug-ins
set(examplesDir ${CMAKE_INSTALL_DATADIR}/import-common/examples)
install(FILES cmake/InstalledExamples.cmake RENAME CMakeLists.txt DESTINATION ${examplesDir} COMPONENT Development)
install(FILES PluginKit/FORMATS.md DESTINATION ${CMAKE_INSTALL_DATADIR}/import-common COMPONENT Development)
install(DIRECTORY ImportHost IfcReader IfcPlugin Examples DESTINATION ${examplesDir} COMPONENT Development)
