cmake_minimum_required(VERSION 3.18)

# Writes a C++ source with the page as bytes: cmake -DPAGE= -DSTYLE= -DSCRIPTS=a|b -DLIBRARY=c|d -DOUTPUT= -P this
#
# The page allows itself the scripts and the style that are in it now and nothing else, each by its hash, so a script
# that a name in a model might smuggle in does not run, and nothing can be fetched or sent.

# The text in base 64 of a hash in hexadecimal
function(base64 hex result)
    set(alphabet "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/")
    set(text "")
    foreach(at RANGE 0 63 6) # 32 bytes: ten groups of three, and two bytes more
        string(SUBSTRING "${hex}0000" ${at} 6 group)
        foreach(shift 18 12 6 0)
            math(EXPR digit "(0x${group} >> ${shift}) & 63")
            string(SUBSTRING "${alphabet}" ${digit} 1 character)
            string(APPEND text "${character}")
        endforeach()
    endforeach()
    string(SUBSTRING "${text}" 0 43 text)
    set(${result} "'sha256-${text}='" PARENT_SCOPE)
endfunction()

set(scriptHashes "")
set(scriptElements "")
function(add_script content)
    string(FIND "${content}" "</script" end)
    string(FIND "${content}" "<!--" comment)
    if(NOT end EQUAL -1 OR NOT comment EQUAL -1)
        message(FATAL_ERROR "A script of the page can't stand in a page")
    endif()
    string(SHA256 hash "${content}")
    base64(${hash} source)
    set(scriptHashes "${scriptHashes} ${source}" PARENT_SCOPE)
    set(scriptElements "${scriptElements}<script>${content}</script>\n" PARENT_SCOPE)
endfunction()

string(REPLACE "|" ";" LIBRARY "${LIBRARY}")
foreach(file IN LISTS LIBRARY)
    file(READ "${file}" content)
    add_script("${content}")
endforeach()

string(REPLACE "|" ";" SCRIPTS "${SCRIPTS}")
set(script "'use strict';\n")
foreach(file IN LISTS SCRIPTS)
    file(READ "${file}" content)
    string(APPEND script "${content}")
endforeach()
add_script("${script}")

file(READ "${STYLE}" style)
string(SHA256 hash "${style}")
base64(${hash} styleHash)

file(READ "${PAGE}" page)
string(REPLACE "@STYLE_HASH@" "${styleHash}" page "${page}")
string(REPLACE "@SCRIPT_HASHES@" "${scriptHashes}" page "${page}")
string(REPLACE "@STYLE@" "${style}" page "${page}")
string(REPLACE "@SCRIPTS@" "${scriptElements}" page "${page}")

string(HEX "${page}" bytes)
string(REGEX REPLACE "([0-9a-f][0-9a-f])" "0x\\1," bytes "${bytes}")
file(WRITE "${OUTPUT}.new" "// Written by AssemblePage.cmake
#include \"output/html/PageTemplate.h\"

namespace {
const unsigned char bytes[] = {${bytes}};
}

std::string_view pageTemplate() {
    return {reinterpret_cast<const char*>(bytes), sizeof bytes};
}
")
file(RENAME "${OUTPUT}.new" "${OUTPUT}")
