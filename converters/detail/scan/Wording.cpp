#include "converters/detail/scan/Wording.h"

#include "converters/detail/numbers/NumberFormat.h"

namespace converters::scan {

std::string grouped(std::uint64_t count) {
    std::string text = std::to_string(count);
    for (std::size_t offset = text.size(); offset > 3;) {
        offset -= 3;
        text.insert(offset, 1, ',');
    }
    return text;
}

std::string inQuotes(std::string_view text) {
    constexpr std::size_t longest = 40;
    constexpr char digits[] = "0123456789abcdef";
    std::string result = "'";
    for (const char c : text.substr(0, longest)) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x20 || byte >= 0x7F) {
            result.append("\\x").append(1, digits[byte >> 4]).append(1, digits[byte & 15]);
        } else {
            result += c;
        }
    }
    return result + (text.size() > longest ? "...'" : "'");
}

std::string shortly(double value) {
    char text[32];
    return {text, detail::writeGeneral(text, value)};
}

} // namespace converters::scan
