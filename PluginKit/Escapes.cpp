#include <PluginKit/Escapes.h>
#include <PluginKit/Hex.h>

namespace PluginKit {

void appendEscaped(std::string& to, std::string_view text) {
    std::size_t done = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        if (byte < 0x20 || byte == 0x7F || byte == '%') {
            to.append(text, done, i - done).append(1, '%');
            appendHex(to, &text[i], 1);
            done = i + 1;
        }
    }
    to.append(text, done);
}

std::string escaped(std::string_view text) {
    std::string result;
    appendEscaped(result, text);
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
    Parts parts(text, separator);
    for (std::string_view part; parts.next(part);) {
        fields.push_back(part);
    }
    return fields;
}

} // namespace PluginKit
