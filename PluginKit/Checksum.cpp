#include <PluginKit/Checksum.h>
#include <PluginKit/Hex.h>

#include <cstdint>

namespace PluginKit {

std::string checksum(std::string_view text) {
    std::uint64_t sum = 0xcbf29ce484222325u;
    for (const char c : text) {
        sum = (sum ^ static_cast<unsigned char>(c)) * 0x100000001b3u;
    }
    char bytes[8];
    for (char& byte : bytes) {
        byte = static_cast<char>(sum >> 56);
        sum <<= 8;
    }
    return toHex(bytes, sizeof bytes);
}

} // namespace PluginKit
