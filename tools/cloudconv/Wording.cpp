#include "tools/cloudconv/Wording.h"

#include "tools/cloudconv/StandardError.h"

#include <cstdio>

namespace {

/// How many bytes the character at the beginning has; 0 when it is no UTF-8, or no character of
/// XML.
std::size_t lengthOfCharacter(const std::string& text, std::size_t begin) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[begin + i]); };
    constexpr unsigned char ascii = 0x80;
    if (byte(0) < ascii) {
        return 1;
    }
    const std::size_t length = byte(0) >= 0xF0 ? 4 : byte(0) >= 0xE0 ? 3 : 2;
    if (byte(0) < 0xC2 || byte(0) > 0xF4 || begin + length > text.size()) {
        return 0;
    }
    unsigned long code = byte(0) & (0xFFU >> (length + 1));
    for (std::size_t i = 1; i < length; ++i) {
        if ((byte(i) & 0xC0U) != 0x80U) {
            return 0;
        }
        code = code << 6 | (byte(i) & 0x3FU);
    }
    const bool tooLong = (length == 3 && code < 0x800) || (length == 4 && code < 0x10000);
    const bool noCharacter = (code >= 0xD800 && code < 0xE000) || (code & 0xFFFEU) == 0xFFFEU;
    return tooLong || noCharacter || code > 0x10FFFF ? 0 : length;
}

} // namespace

std::string asPrintableUtf8(const std::string& text) {
    constexpr char replacement[] = "\xEF\xBF\xBD";
    const std::string source = printable(text);
    std::string result;
    for (std::size_t i = 0; i < source.size();) {
        const std::size_t length = lengthOfCharacter(source, i);
        result += length == 0 ? replacement : source.substr(i, length);
        i += length == 0 ? 1 : length;
    }
    return result;
}

std::string counted(std::size_t count, const std::string& singular) {
    return counted(count, singular, singular + 's');
}

std::string counted(std::size_t count, const std::string& singular, const std::string& plural) {
    return std::to_string(count) + ' ' + (count == 1 ? singular : plural);
}

std::string numberText(double number, int digits) {
    char text[32];
    static_cast<void>(std::snprintf(text, sizeof text, "%.*g", digits, number));
    return text;
}

std::string leftOutText(std::size_t count) {
    return "left out " + counted(count, "point") + " without a place";
}
