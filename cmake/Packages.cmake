# "cpack" makes Debian packages: the library, what a developer needs besides, and the host where it is built.
set(CPACK_GENERATOR DEB)
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_PACKAGE_NAME import-common)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "") # each package begins with its own
set(CPACK_PACKAGE_VENDOR "${PROJECT_NAME}")
set(CPACK_PACKAGE_CONTACT "The ${PROJECT_NAME} developers <developers@import-common.invalid>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL Runtime Development)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)

set(CPACK_COMPONENT_RUNTIME_DESCRIPTION "identities and versions of imported building models
A library for plug-ins that import building and plant models: it gives each
object a stable identity, finds it again when a revision is imported, and
tells what changed.")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME libimport-common${IMPORTCOMMON_ABI})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA ${CMAKE_CURRENT_LIST_DIR}/triggers)

set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION "import plug-ins for building models: development files
Headers, build files and examples of libimport-common, a library for plug-ins
that import building and plant models.")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libimport-common-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS
    "libimport-common${IMPORTCOMMON_ABI} (= ${PROJECT_VERSION}), libc6-dev")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SHLIBDEPS OFF)

# The guides as they are, and the reference where Scripts/docs.sh has built it
list(APPEND CPACK_COMPONENTS_ALL Documentation)
set(CPACK_COMPONENT_DOCUMENTATION_DESCRIPTION "import plug-ins for building models: documentation
Guides and reference of libimport-common, a library for plug-ins that import
building and plant models.")
set(CPACK_DEBIAN_DOCUMENTATION_PACKAGE_ARCHITECTURE all)
set(CPACK_DEBIAN_DOCUMENTATION_PACKAGE_NAME libimport-common-doc)
set(CPACK_DEBIAN_DOCUMENTATION_PACKAGE_SECTION doc)
set(CPACK_DEBIAN_DOCUMENTATION_PACKAGE_SHLIBDEPS OFF)
set(documentationDir ${CMAKE_INSTALL_DATADIR}/doc/libimport-common-doc)
install(DIRECTORY Docs/ DESTINATION ${documentationDir} COMPONENT Documentation
    FILES_MATCHING PATTERN "*.md" PATTERN "*.svg" PATTERN "*.png" PATTERN "*.json")
install(DIRECTORY ${PROJECT_SOURCE_DIR}/build/docs/ DESTINATION ${documentationDir}/html COMPONENT Documentation OPTIONAL)

if(TARGET import-host)
    list(APPEND CPACK_COMPONENTS_ALL Host)
    set(CPACK_COMPONENT_HOST_DESCRIPTION "tells what changed between two versions of a building model
Imports an IFC model, remembers it, and says of its next revision what became
of every object: in words, as a page with the model in three dimensions, as
plans, JSON, CSV or BCF.")
    set(CPACK_DEBIAN_HOST_PACKAGE_NAME import-host)
    set(CPACK_DEBIAN_HOST_PACKAGE_SECTION utils)
    set(CPACK_DEBIAN_HOST_PACKAGE_DEPENDS "libimport-common${IMPORTCOMMON_ABI} (= ${PROJECT_VERSION})")
    set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR}/ImportSDK/ImportCommon)
endif()

# Packages of Debian say what may be done with them and what changed.
function(install_package_documents component package)
    install(FILES ${PROJECT_SOURCE_DIR}/cmake/copyright ${PROJECT_BINARY_DIR}/changelog.gz ${PROJECT_BINARY_DIR}/NEWS.gz
        DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${package} COMPONENT ${component})
endfunction()
find_program(IMPORTCOMMON_GZIP gzip)
if(IMPORTCOMMON_GZIP)
    string(TIMESTAMP packagingTime "%a, %d %b %Y %H:%M:%S +0000" UTC)
    configure_file(cmake/changelog.in ${PROJECT_BINARY_DIR}/changelog @ONLY)
    execute_process(COMMAND ${IMPORTCOMMON_GZIP} -9nc ${PROJECT_BINARY_DIR}/changelog
        OUTPUT_FILE ${PROJECT_BINARY_DIR}/changelog.gz)
    execute_process(COMMAND ${IMPORTCOMMON_GZIP} -9nc ${PROJECT_SOURCE_DIR}/CHANGELOG.md
        OUTPUT_FILE ${PROJECT_BINARY_DIR}/NEWS.gz)
    install_package_documents(Runtime ${CPACK_DEBIAN_RUNTIME_PACKAGE_NAME})
    install_package_documents(Development ${CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME})
    install_package_documents(Documentation ${CPACK_DEBIAN_DOCUMENTATION_PACKAGE_NAME})
    if(TARGET import-host)
        install_package_documents(Host ${CPACK_DEBIAN_HOST_PACKAGE_NAME})
    endif()
endif()

include(CPack)
