# Warnings and sanitizers for this project's own targets; nothing here reaches a program that links the library.
add_library(importcommon-options INTERFACE)
target_compile_features(importcommon-options INTERFACE cxx_std_17)
target_compile_options(importcommon-options INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Wshadow)
if(IMPORTCOMMON_WERROR)
    target_compile_options(importcommon-options INTERFACE -Werror)
endif()
if(IMPORTCOMMON_SANITIZE)
    target_compile_options(importcommon-options INTERFACE -fsanitize=${IMPORTCOMMON_SANITIZE}
        -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(importcommon-options INTERFACE -fsanitize=${IMPORTCOMMON_SANITIZE})
endif()
# What is built does not tell where: the same sources give the same bytes in any folder.
target_compile_options(importcommon-options INTERFACE -ffile-prefix-map=${PROJECT_SOURCE_DIR}=.
    -ffile-prefix-map=${PROJECT_BINARY_DIR}=build)
if(IMPORTCOMMON_BUILD_FUZZERS AND CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    # The library tells the fuzzers which of its branches an input has reached.
    target_compile_options(importcommon-options INTERFACE -fsanitize=fuzzer-no-link)
endif()
if(NOT IMPORTCOMMON_SANITIZE)
    # What is handed out resists an overrun: checked stack frames and library calls, tables that can't be written to.
    set(optimized $<CONFIG:Release,RelWithDebInfo,MinSizeRel>)
    target_compile_options(importcommon-options INTERFACE
        $<${optimized}:-fstack-protector-strong> $<${optimized}:-U_FORTIFY_SOURCE> $<${optimized}:-D_FORTIFY_SOURCE=2>)
    target_link_options(importcommon-options INTERFACE
        $<$<AND:${optimized},$<PLATFORM_ID:Linux>>:LINKER:-z,relro,-z,now>)
endif()
