#include "converters/detail/drawing/dxf/Text.h"

#include "converters/detail/drawing/dxf/CodePage.h"

#include <algorithm>
#include <optional>

namespace converters::drawing {

namespace {

constexpr char32_t replacement = 0xFFFD;

void appendUtf8(std::string& text, char32_t character) {
    const auto byte = [](char32_t bits) {
        return static_cast<char>(static_cast<unsigned char>(bits));
    };
    if (character < 0x80) {
        text += byte(character);
    } else if (character < 0x800) {
        text += byte(0xC0 | character >> 6);
        text += byte(0x80 | (character & 0x3F));
    } else if (character < 0x10000) {
        text += byte(0xE0 | character >> 12);
        text += byte(0x80 | (character >> 6 & 0x3F));
        text += byte(0x80 | (character & 0x3F));
    } else {
        text += byte(0xF0 | character >> 18);
        text += byte(0x80 | (character >> 12 & 0x3F));
        text += byte(0x80 | (character >> 6 & 0x3F));
        text += byte(0x80 | (character & 0x3F));
    }
}

/// The character at the start of the text, which is not empty, and how many bytes it takes; the
/// replacement character, of one byte, for what is not valid.
struct Decoded {
    char32_t character;
    std::size_t size;
};

Decoded firstCharacter(std::string_view text) {
    const auto byteAt = [&](std::size_t i) {
        return i < text.size() ? static_cast<unsigned char>(text[i]) : 0U;
    };
    const unsigned lead = byteAt(0);
    if (lead < 0x80) {
        return {lead, 1};
    }
    const std::size_t size = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4) {
        return {replacement, 1};
    }
    char32_t character = lead & (0xFFU >> (size + 1));
    for (std::size_t i = 1; i < size; ++i) {
        if ((byteAt(i) & 0xC0) != 0x80) {
            return {replacement, 1};
        }
        character = character << 6 | (byteAt(i) & 0x3F);
    }
    const bool isTooLong = (size == 3 && character < 0x800) || (size == 4 && character < 0x10000);
    const bool isSurrogate = character >= 0xD800 && character < 0xE000;
    if (isTooLong || isSurrogate || character > 0x10FFFF) {
        return {replacement, 1};
    }
    return {character, size};
}

bool isAscii(std::string_view text) {
    return std::all_of(text.begin(), text.end(),
                       [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

bool isUtf8(std::string_view text) {
    while (!text.empty()) {
        const Decoded first = firstCharacter(text);
        if (first.character == replacement && first.size == 1) {
            return false;
        }
        text.remove_prefix(first.size);
    }
    return true;
}

std::string repaired(std::string_view text) {
    std::string result;
    while (!text.empty()) {
        const Decoded first = firstCharacter(text);
        appendUtf8(result, first.character);
        text.remove_prefix(first.size);
    }
    return result;
}

/// The number that four hexadecimal digits are.
std::optional<unsigned> fourDigits(std::string_view text, std::size_t offset) {
    if (text.size() < offset + 4) {
        return std::nullopt;
    }
    unsigned number = 0;
    for (const char c : text.substr(offset, 4)) {
        const char small = static_cast<char>(c | 0x20);
        if (c >= '0' && c <= '9') {
            number = number * 16 + static_cast<unsigned>(c - '0');
        } else if (small >= 'a' && small <= 'f') {
            number = number * 16 + static_cast<unsigned>(small - 'a' + 10);
        } else {
            return std::nullopt;
        }
    }
    return number;
}

/// "\U+XXXX" at the start of the text, or two of them that are a pair of surrogates.
std::optional<Decoded> unicodeEscape(std::string_view text) {
    constexpr std::size_t size = 7;
    const auto numberAt = [&](std::size_t offset) {
        const std::string_view start = text.substr(std::min(offset, text.size()), 3);
        return start == "\\U+" || start == "\\u+" ? fourDigits(text, offset + 3) : std::nullopt;
    };
    const std::optional<unsigned> first = numberAt(0);
    if (!first) {
        return std::nullopt;
    }
    if (*first < 0xD800 || *first >= 0xE000) {
        return Decoded{*first, size};
    }
    const std::optional<unsigned> second = numberAt(size);
    if (*first < 0xDC00 && second && *second >= 0xDC00 && *second < 0xE000) {
        return Decoded{0x10000 + ((*first & 0x3FF) << 10) + (*second & 0x3FF), 2 * size};
    }
    return Decoded{replacement, size};
}

/// What "\M+nXXXX" at the start of the text means: a character of two bytes of a code page.
std::optional<std::string> multibyteEscape(std::string_view text) {
    constexpr std::string_view pages[] = {"CP932", "BIG5", "CP949", "JOHAB", "GBK"};
    const bool isEscape =
        text.size() >= 8 && (text.substr(0, 3) == "\\M+" || text.substr(0, 3) == "\\m+");
    if (!isEscape || text[3] < '1' || text[3] > '5') {
        return std::nullopt;
    }
    const std::optional<unsigned> number = fourDigits(text, 4);
    if (!number) {
        return std::nullopt;
    }
    std::string bytes;
    if (*number > 0xFF) {
        bytes += static_cast<char>(static_cast<unsigned char>(*number >> 8));
    }
    bytes += static_cast<char>(static_cast<unsigned char>(*number & 0xFF));
    return toUtf8(bytes, std::string(pages[text[3] - '1']));
}

std::string withoutEscapes(std::string_view text) {
    std::string result;
    while (!text.empty()) {
        const std::size_t escape = std::min(text.find('\\'), text.size());
        result += text.substr(0, escape);
        text.remove_prefix(escape);
        if (const auto character = unicodeEscape(text)) {
            appendUtf8(result, character->character);
            text.remove_prefix(character->size);
        } else if (const auto characters = multibyteEscape(text)) {
            constexpr std::size_t size = 8;
            result += *characters;
            text.remove_prefix(size);
        } else if (!text.empty()) {
            result += text.front();
            text.remove_prefix(1);
        }
    }
    return result;
}

/// The small letter of a capital one; other characters as they are.
char32_t smallLetter(char32_t c) {
    const auto isIn = [c](char32_t first, char32_t last) { return c >= first && c <= last; };
    if (isIn('A', 'Z') || (isIn(0xC0, 0xDE) && c != 0xD7) || (isIn(0x391, 0x3A9) && c != 0x3A2) ||
        isIn(0x410, 0x42F) || isIn(0xFF21, 0xFF3A)) {
        return c + 0x20;
    }
    if (isIn(0x400, 0x40F)) {
        return c + 0x50;
    }
    // Latin and Cyrillic letters that stand in pairs: a capital one, then its small one.
    const bool isEvenPair = isIn(0x100, 0x137) || isIn(0x14A, 0x177) || isIn(0x460, 0x481) ||
                            isIn(0x48A, 0x4BF) || isIn(0x4D0, 0x52F) || isIn(0x1E00, 0x1E95) ||
                            isIn(0x1EA0, 0x1EFF);
    const bool isOddPair = isIn(0x139, 0x148) || isIn(0x179, 0x17E) || isIn(0x4C1, 0x4CE);
    constexpr char32_t capitalIWithDot = 0x130;
    if ((isEvenPair && c % 2 == 0 && c != capitalIWithDot) || (isOddPair && c % 2 == 1)) {
        return c + 1;
    }
    return c == 0x178 ? 0xFF : c;
}

} // namespace

TextDecoder::TextDecoder(const Header& header) : m_codePage(header.codePage) {
    constexpr std::string_view firstInUtf8 = "AC1021";
    m_isUtf8 = header.release.size() == firstInUtf8.size() && header.release >= firstInUtf8;
}

std::string TextDecoder::decoded(std::string_view text) const {
    std::string result;
    if (isAscii(text)) {
        result = text;
    } else if (m_isUtf8) {
        result = repaired(text);
    } else {
        if (!m_encoding) {
            m_encoding = encodingOf(m_codePage);
        }
        // Programs that write UTF-8 name this code page, too, or none; what is meant in it is
        // hardly ever valid UTF-8.
        const bool isMeantAsUtf8 = *m_encoding == "CP1252" && isUtf8(text);
        result = isMeantAsUtf8 ? std::string(text) : repaired(toUtf8(text, *m_encoding));
    }
    return result.find('\\') == std::string::npos ? result : withoutEscapes(result);
}

std::string caseFolded(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    while (!text.empty()) {
        const Decoded first = firstCharacter(text);
        appendUtf8(result, smallLetter(first.character));
        text.remove_prefix(first.size);
    }
    return result;
}

/// Goes through both from the left; after a mismatch, the last "*" takes one character more.
bool matches(std::string_view name, std::string_view pattern) {
    std::string_view nameBehindStar;
    std::string_view patternBehindStar;
    bool hasStar = false;
    while (!name.empty()) {
        const std::size_t size = firstCharacter(name).size;
        if (!pattern.empty() && pattern.front() == '*') {
            pattern.remove_prefix(1);
            nameBehindStar = name;
            patternBehindStar = pattern;
            hasStar = true;
        } else if (!pattern.empty() && pattern.front() == '?') {
            name.remove_prefix(size);
            pattern.remove_prefix(1);
        } else if (pattern.substr(0, size) == name.substr(0, size)) {
            name.remove_prefix(size);
            pattern.remove_prefix(size);
        } else if (hasStar) {
            nameBehindStar.remove_prefix(firstCharacter(nameBehindStar).size);
            name = nameBehindStar;
            pattern = patternBehindStar;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of('*') == std::string_view::npos;
}

} // namespace converters::drawing
