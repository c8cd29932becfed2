#include "converters/detail/drawing/dxf/Numbers.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>
#include <limits>
#include <system_error>

namespace converters::drawing {

namespace {

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

/// These, and the whole numbers below 2^53, are doubles: a quotient of the two is rounded once.
constexpr std::array<double, 23> powersOfTen = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                                1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                                1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

const char* readByLibrary(const char* begin, const char* end, double& number) {
    const auto [behind, error] = std::from_chars(begin, end, number);
    return error == std::errc() ? behind : nullptr;
}

} // namespace

std::string_view withoutBlanks(std::string_view text) {
    constexpr std::string_view blanks(" \t\r\n\v\f\0", 7);
    const std::size_t first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

std::optional<int> wholeNumber(std::string_view text) {
    const bool isNegative = !text.empty() && text.front() == '-';
    if (!text.empty() && (text.front() == '-' || text.front() == '+')) {
        text.remove_prefix(1);
    }
    constexpr std::size_t mostDigits = 5;
    if (text.empty() || text.size() > mostDigits ||
        !std::all_of(text.begin(), text.end(), isDigit)) {
        return std::nullopt;
    }
    int number = 0;
    for (const char digit : text) {
        number = number * 10 + (digit - '0');
    }
    return isNegative ? -number : number;
}

std::int64_t leadingInteger(std::string_view text) {
    text = withoutBlanks(text);
    if (!text.empty() && text.front() == '+') {
        text.remove_prefix(1);
    }
    std::int64_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error == std::errc::result_out_of_range) {
        return text.front() == '-' ? std::numeric_limits<std::int64_t>::min()
                                   : std::numeric_limits<std::int64_t>::max();
    }
    return number;
}

std::uint64_t handleOf(std::string_view text) {
    text = withoutBlanks(text);
    std::uint64_t handle = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), handle, 16);
    return error == std::errc() && end == text.data() + text.size() ? handle : 0;
}

const char* readPlainReal(const char* begin, const char* end, double& number) {
    const char* p = begin;
    const bool isNegative = p != end && *p == '-';
    p += isNegative ? 1 : 0;
    const char* const digits = p;
    std::uint64_t mantissa = 0;
    while (p != end && isDigit(*p)) {
        mantissa = mantissa * 10 + static_cast<std::uint64_t>(*p - '0');
        ++p;
    }
    std::ptrdiff_t count = p - digits;
    std::ptrdiff_t decimals = 0;
    if (p != end && *p == '.') {
        const char* const point = p++;
        while (p != end && isDigit(*p)) {
            mantissa = mantissa * 10 + static_cast<std::uint64_t>(*p - '0');
            ++p;
        }
        decimals = p - point - 1;
        count += decimals;
    }
    constexpr std::ptrdiff_t digitsOfMantissa = 19;
    const bool isExact = count > 0 && count <= digitsOfMantissa &&
                         mantissa <= std::uint64_t{1} << 53 && (p == end || (*p | 0x20) != 'e');
    if (!isExact) {
        return count > 0 ? readByLibrary(begin, end, number) : nullptr;
    }
    const double whole = static_cast<double>(mantissa);
    const double value =
        decimals > 0 ? whole / powersOfTen[static_cast<std::size_t>(decimals)] : whole;
    number = isNegative ? -value : value;
    return p;
}

TolerantReal readTolerantReal(std::string_view text) {
    constexpr double none = std::numeric_limits<double>::quiet_NaN();
    constexpr std::size_t longestNumber = 64;
    text = withoutBlanks(text);
    if (!text.empty() && text.front() == '+') {
        text.remove_prefix(1);
    }
    std::array<char, longestNumber> copy{};
    if (text.empty() || text.size() > copy.size()) {
        return {none, false};
    }
    std::copy(text.begin(), text.end(), copy.begin());
    char* const end = copy.data() + text.size();
    // As Fortran writes an exponent.
    std::replace_if(
        copy.data(), end, [](char c) { return c == 'd' || c == 'D'; }, 'e');
    char* const comma = std::find(copy.data(), end, ',');
    const bool hasComma = comma != end;
    if (hasComma) {
        *comma = '.';
    }
    double number = none;
    const auto [behind, error] = std::from_chars(copy.data(), end, number);
    if (behind != end) {
        return {none, false};
    }
    // The library leaves the number as it was when it is out of range, on either side.
    if (error == std::errc::result_out_of_range) {
        // Of the exponent.
        const bool isSmall = text.find('-', 1) != std::string_view::npos;
        return {isSmall ? 0.0 : none, hasComma};
    }
    return {error == std::errc() ? number : none, hasComma};
}

} // namespace converters::drawing
