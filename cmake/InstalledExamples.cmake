cmake_minimum_required(VERSION 3.18)
project(ImportCommonExamples LANGUAGES C CXX)

find_package(ImportCommon 0.1 REQUIRED)
set(PROJECT_VERSION ${ImportCommon_VERSION}) # the host's own

if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
    set(CMAKE_BUILD_TYPE Release)
endif()
add_library(plugin-kit ALIAS ImportCommon::plugin-kit)
add_library(importcommon-options INTERFACE)
target_compile_features(importcommon-options INTERFACE cxx_std_17)

add_subdirectory(IfcReader)
add_subdirectory(IfcPlugin)
add_subdirectory(ImportHost)
add_subdirectory(Examples)
