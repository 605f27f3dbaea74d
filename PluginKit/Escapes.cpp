#include <PluginKit/Escapes.h>
#include <PluginKit/Hex.h>

namespace PluginKit {

std::string escaped(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x20 || byte == 0x7F || byte == '%') {
            result += '%' + toHex(&c, 1);
        } else {
            result += c;
        }
    }
    return result;
}

std::string unescaped(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const std::string bytes = text[i] == '%' ? fromHex(text.substr(i + 1, 2)) : std::string();
        result += bytes.empty() ? text[i] : bytes[0];
        i += bytes.empty() ? 0 : 2;
    }
    return result;
}

std::vector<std::string_view> split(std::string_view text, char separator) {
    std::vector<std::string_view> fields;
    for (;;) {
        const std::size_t end = text.find(separator);
        fields.push_back(text.substr(0, end));
        if (end == std::string_view::npos) {
            return fields;
        }
        text.remove_prefix(end + 1);
    }
}

} // namespace PluginKit
