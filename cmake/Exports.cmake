# importcommon_limit_exports(TARGET FILE): the library exports the names in FILE and nothing else - neither private
# members of exported classes nor what the compiler instantiates from the standard library. The names are those of one
# ABI; elsewhere the visibility of the declarations alone decides.
include(CheckCXXSourceCompiles)

function(importcommon_limit_exports target file)
    check_cxx_source_compiles("
        #include <string>
        #if !defined(__linux__) || !defined(__LP64__) || !defined(__GLIBC__) || !_GLIBCXX_USE_CXX11_ABI
        #error another ABI
        #endif
        int main() {}" IMPORTCOMMON_EXPORTS_LISTED)
    if(NOT IMPORTCOMMON_EXPORTS_LISTED)
        return()
    endif()
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${file})
    file(STRINGS ${file} lines REGEX "^[^#]")
    set(script "{\nglobal:\n")
    foreach(line IN LISTS lines)
        string(REGEX MATCH "^[^ ]+" name "${line}")
        string(APPEND script "    ${name};\n")
    endforeach()
    string(APPEND script "local:\n    *;\n};\n")
    file(CONFIGURE OUTPUT ${CMAKE_CURRENT_BINARY_DIR}/${target}.map CONTENT "${script}" @ONLY)
    target_link_options(${target} PRIVATE -Wl,--version-script=${CMAKE_CURRENT_BINARY_DIR}/${target}.map)
    set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS ${CMAKE_CURRENT_BINARY_DIR}/${target}.map)
endfunction()
