#include "tools/cloudconv/StandardError.h"

#include <cstdio>

std::string printable(const std::string& text) {
    std::string line;
    for (const char character : text) {
        const auto byte = static_cast<unsigned char>(character);
        if (byte >= 0x20 && byte != 0x7F) {
            line += character;
        } else {
            constexpr char digits[] = "0123456789ABCDEF";
            line += {'\\', 'x', digits[byte >> 4], digits[byte & 0xF]};
        }
    }
    return line;
}

void printToStandardError(const std::string& text) {
    std::string line = "cloudconv: " + printable(text.substr(0, longestErrorText));
    line += text.size() > longestErrorText ? "...\n" : "\n";
    static_cast<void>(std::fwrite(line.data(), 1, line.size(), stderr));
}
