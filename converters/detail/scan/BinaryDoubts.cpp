#include "converters/detail/scan/BinaryDoubts.h"

#include "converters/detail/scan/Elements.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <set>
#include <vector>

namespace converters::scan {
namespace {

bool isCoordinate(const ScanProperty& property) {
    return property.use == ScanPropertyUse::x || property.use == ScanPropertyUse::y ||
           property.use == ScanPropertyUse::z;
}

/// Whether a number is of a magnitude that coordinates have. One of an arbitrary exponent hardly
/// is.
bool isUsual(double number) {
    return std::abs(number) >= 1e-9 && std::abs(number) <= 1e9;
}

/// The bytes of the character in UTF-8 that `text` begins with; 0 when it is none.
std::size_t lengthOfCharacter(std::string_view text) {
    const auto lead = static_cast<unsigned char>(text[0]);
    const std::size_t length = lead < 0x80                   ? 1
                               : lead >= 0xC2 && lead < 0xE0 ? 2
                               : lead >= 0xE0 && lead < 0xF0 ? 3
                               : lead >= 0xF0 && lead < 0xF5 ? 4
                                                             : 0;
    const std::string_view others = text.substr(1, length == 0 ? 0 : length - 1);
    const bool isWhole =
        others.size() + 1 >= length && std::all_of(others.begin(), others.end(), [](char c) {
            return (static_cast<unsigned char>(c) & 0xC0) == 0x80;
        });
    return isWhole ? length : 0;
}

double numberOf(const unsigned char* bytes, ScalarType type, bool isSwapped) {
    std::array<unsigned char, sizeof(double)> own{};
    const std::size_t size = std::min(sizeOf(type), own.size());
    for (std::size_t i = 0; i < size; ++i) {
        own[i] = bytes[isSwapped ? size - 1 - i : i];
    }
    return numberAt(own.data(), type);
}

} // namespace

bool isNumberText(std::string_view bytes) {
    constexpr std::size_t least = 6;
    return bytes.size() >= least &&
           bytes.find_first_not_of("0123456789+-.eEnaifNAIF \t\r\n") == std::string_view::npos &&
           bytes.find_first_of("0123456789") != std::string_view::npos &&
           bytes.find_first_of(" \t\r\n") != std::string_view::npos;
}

bool isConvertedText(std::string_view bytes) {
    constexpr std::string_view replacement = "\xEF\xBF\xBD";
    constexpr std::size_t mostReplaced = 7;
    constexpr std::size_t mostDifferent = 15;
    constexpr std::size_t longest = 4;
    std::size_t replaced = 0;
    std::set<std::string_view> characters;
    // The last character may be cut.
    while (bytes.size() >= longest) {
        const std::size_t length = lengthOfCharacter(bytes);
        if (length == 0) {
            return false;
        }
        const std::string_view character = bytes.substr(0, length);
        replaced += character == replacement ? 1 : 0;
        if (length > 1) {
            characters.insert(character);
        }
        bytes.remove_prefix(length);
    }
    return replaced > mostReplaced || characters.size() > mostDifferent;
}

bool areOfOtherByteOrder(const ScanElement& element, RecordBytes records, std::size_t count,
                         bool isSwapped) {
    const std::vector<std::size_t> offsets = scalarOffsets(element);
    std::size_t numbers = 0;
    std::size_t usual = 0;
    for (std::size_t i = 0; i < offsets.size(); ++i) {
        const ScanProperty& property = element.properties[i];
        if (!isCoordinate(property) ||
            (property.type != ScalarType::float32 && property.type != ScalarType::float64)) {
            continue;
        }
        for (std::size_t k = 0; k < count; ++k) {
            const unsigned char* const bytes = records.data + k * records.size + offsets[i];
            const double other = numberOf(bytes, property.type, !isSwapped);
            const double own = numberOf(bytes, property.type, isSwapped);
            if (other == 0 || own == 0) {
                continue;
            }
            if (!isUsual(other)) {
                return false;
            }
            ++numbers;
            usual += isUsual(own) ? 1 : 0;
        }
    }
    constexpr std::size_t least = 24;
    return numbers >= least && usual <= numbers / 2;
}

} // namespace converters::scan
