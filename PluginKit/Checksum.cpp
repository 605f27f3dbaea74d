#include <PluginKit/Checksum.h>
#include <PluginKit/Hex.h>

namespace PluginKit {

void Checksum::add(std::string_view text) {
    for (const char c : text) {
        sum_ = (sum_ ^ static_cast<unsigned char>(c)) * 0x100000001b3u;
    }
}

std::string Checksum::text() const {
    char bytes[sizeof sum_];
    for (std::size_t i = 0; i < sizeof bytes; ++i) {
        bytes[i] = static_cast<char>(sum_ >> (8 * (sizeof bytes - 1 - i)));
    }
    return toHex(bytes, sizeof bytes);
}

std::string checksum(std::string_view text) {
    Checksum sum;
    sum.add(text);
    return sum.text();
}

} // namespace PluginKit
