#include "tests/support/Dxf.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace {

/// Calls take(code, value) for each group of a text as dxf() has it.
template <typename Take>
void forEachGroup(std::string_view text, Take take) {
    while (!text.empty()) {
        const std::size_t blank = text.find(' ');
        const std::string code(text.substr(0, blank));
        text.remove_prefix(blank == std::string_view::npos ? text.size() : blank + 1);
        const std::size_t end = text.find("  ");
        take(code, text.substr(0, end));
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 2);
    }
}

bool isBetween(int code, int first, int last) {
    return code >= first && code <= last;
}

template <typename Number>
void append(std::string& bytes, Number number, std::size_t size = sizeof(Number)) {
    std::uint64_t bits = 0;
    std::memcpy(&bits, &number, sizeof number);
    for (std::size_t i = 0; i < size; ++i) {
        bytes += static_cast<char>(static_cast<unsigned char>(bits >> 8 * i & 0xFF));
    }
}

void appendValue(std::string& bytes, int code, const std::string& value) {
    if (isBetween(code, 10, 59) || isBetween(code, 210, 239) || isBetween(code, 1010, 1059)) {
        append(bytes, std::strtod(value.c_str(), nullptr));
    } else if (isBetween(code, 60, 79) || isBetween(code, 170, 179) ||
               isBetween(code, 1060, 1070)) {
        append(bytes, std::strtoll(value.c_str(), nullptr, 10), 2);
    } else if (isBetween(code, 90, 99) || isBetween(code, 420, 429)) {
        append(bytes, std::strtoll(value.c_str(), nullptr, 10), 4);
    } else if (isBetween(code, 160, 169)) {
        append(bytes, std::strtoll(value.c_str(), nullptr, 10), 8);
    } else if (isBetween(code, 290, 299)) {
        append(bytes, std::strtoll(value.c_str(), nullptr, 10), 1);
    } else if (isBetween(code, 310, 319)) {
        bytes += static_cast<char>(static_cast<unsigned char>(value.size()));
        bytes += value;
    } else {
        bytes += value;
        bytes += '\0';
    }
}

} // namespace

std::string dxf(std::string_view text) {
    std::string lines;
    forEachGroup(text, [&](const std::string& code, std::string_view value) {
        lines += code + "\n" + std::string(value) + "\n";
    });
    return lines;
}

std::string dxfOfLines(const std::vector<std::string>& lines) {
    std::string joined;
    for (const std::string& line : lines) {
        joined += line + '\n';
    }
    return joined;
}

std::string section(std::string_view name, std::string_view text) {
    return "0\nSECTION\n2\n" + std::string(name) + "\n" + dxf(text) + "0\nENDSEC\n";
}

std::string drawingOf(std::string_view entities, const std::string& before) {
    return before + section("ENTITIES", entities) + "0\nEOF\n";
}

std::string layerGroups(std::string_view name, int flags, int colour) {
    return "0 LAYER  2 " + std::string(name) + "  70 " + std::to_string(flags) + "  62 " +
           std::to_string(colour) + "  ";
}

std::string layerTable(std::string_view layers) {
    std::string text = "0 TABLE  2 LAYER  70 9  ";
    text += layers;
    text += "0 ENDTAB";
    return section("TABLES", text);
}

std::string binary(std::string_view text, BinaryForm form) {
    std::string bytes("AutoCAD Binary DXF\r\n\x1a\0", 22);
    forEachGroup(text, [&](const std::string& codeText, std::string_view value) {
        const int code = std::atoi(codeText.c_str());
        if (form == BinaryForm::longCodes) {
            append(bytes, code, 2);
        } else if (code < 255) {
            append(bytes, code, 1);
        } else {
            bytes += '\xFF';
            append(bytes, code, 2);
        }
        appendValue(bytes, code, std::string(value));
    });
    return bytes;
}
