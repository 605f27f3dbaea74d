#include "output/JsonText.h"

#include <PluginKit/Text.h>

std::string jsonString(std::string_view text) {
    std::string result = "\"";
    for (const char c : validUtf8(text)) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '"' || c == '\\') {
            result += std::string("\\") + c;
        } else if (byte < 0x20 || byte == 0x7F) {
            result += "\\u00" + toHex(&c, 1);
        } else {
            result += c;
        }
    }
    return result + '"';
}
