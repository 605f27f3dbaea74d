/**
 * @file Checksum.h
 * A number for a text.
 */
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace PluginKit {

/** 64-bit FNV-1a: tells a text that was cut or changed, not one that was forged. */
class Checksum {
public:
    void add(std::string_view text);

    /** Of all that was added, in hexadecimal. */
    std::string text() const;

private:
    std::uint64_t sum_ = 0xcbf29ce484222325u;
};

/** The checksum of one text. */
std::string checksum(std::string_view text);

} // namespace PluginKit
