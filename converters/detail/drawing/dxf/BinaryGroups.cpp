#include "converters/detail/drawing/dxf/BinaryGroups.h"

#include "converters/detail/drawing/dxf/Numbers.h"

#include <cmath>
#include <cstring>
#include <limits>
#include <utility>

namespace converters::drawing {

namespace {

constexpr std::string_view sentinel("AutoCAD Binary DXF\r\n\x1a\0", 22);

/// Little-endian, whatever the processor.
std::uint64_t littleEndian(std::string_view bytes) {
    std::uint64_t number = 0;
    for (std::size_t i = bytes.size(); i > 0; --i) {
        number = number << 8 | static_cast<unsigned char>(bytes[i - 1]);
    }
    return number;
}

bool isBetween(int code, int first, int last) {
    return code >= first && code <= last;
}

} // namespace

bool BinaryGroups::isBinary(input::ByteWindow& window) {
    return window.need(sentinel.size()) &&
           std::string_view(window.begin(), sentinel.size()) == sentinel;
}

BinaryGroups::BinaryGroups(input::ByteWindow window) : m_window(std::move(window)) {
    m_window.skip(sentinel.size());
    // The first group has code 0 and the text "SECTION"; a comment, code 999, may come before.
    const bool hasCode = m_window.need(2);
    const std::string_view start(m_window.begin(), hasCode ? 2 : 0);
    m_hasShortCodes = hasCode && start[1] != 0 && start != "\xE7\x03";
}

bool BinaryGroups::next() {
    m_window.take(m_window.begin() + m_read);
    m_read = 0;
    if (readGroup()) {
        return true;
    }
    m_read = 0;
    return false;
}

bool BinaryGroups::readGroup() {
    if (!readCode()) {
        return false;
    }
    const Layout layout = layoutOf(m_code);
    m_form = layout.form;
    if (layout.form == Form::text) {
        return readText();
    }
    if (layout.form == Form::chunk) {
        return take(1) && take(static_cast<unsigned char>(m_value[0]));
    }
    return take(layout.size);
}

bool BinaryGroups::readCode() {
    if (!m_hasShortCodes) {
        return takeCode(2);
    }
    constexpr int announcesLongCode = 255;
    return takeCode(1) && (m_code != announcesLongCode || takeCode(2));
}

bool BinaryGroups::takeCode(std::size_t size) {
    if (!take(size)) {
        return false;
    }
    m_code = static_cast<int>(littleEndian(m_value));
    return true;
}

/// Takes a text, up to the zero behind it.
bool BinaryGroups::readText() {
    std::size_t size = 0;
    for (;;) {
        const std::string_view rest(m_window.begin() + m_read, m_window.available() - m_read);
        const std::size_t end = rest.find('\0', size);
        if (end != std::string_view::npos) {
            m_value = rest.substr(0, end);
            m_read += end + 1;
            return true;
        }
        size = rest.size();
        if (!m_window.more()) {
            return false;
        }
    }
}

/// Takes bytes as the value.
/// @return false when the file has fewer
bool BinaryGroups::take(std::size_t size) {
    if (!m_window.need(m_read + size)) {
        return false;
    }
    m_value = {m_window.begin() + m_read, size};
    m_read += size;
    return true;
}

BinaryGroups::Layout BinaryGroups::layoutOf(int code) {
    if (isBetween(code, 10, 59) || isBetween(code, 110, 149) || isBetween(code, 210, 239) ||
        isBetween(code, 460, 469) || isBetween(code, 1010, 1059)) {
        return {Form::real, 8};
    }
    if (isBetween(code, 60, 79) || isBetween(code, 170, 179) || isBetween(code, 270, 289) ||
        isBetween(code, 370, 389) || isBetween(code, 400, 409) || isBetween(code, 1060, 1070)) {
        return {Form::integer, 2};
    }
    if (isBetween(code, 90, 99) || isBetween(code, 420, 429) || isBetween(code, 440, 459) ||
        code == 1071) {
        return {Form::integer, 4};
    }
    if (isBetween(code, 160, 169)) {
        return {Form::integer, 8};
    }
    if (isBetween(code, 290, 299)) {
        return {Form::integer, 1};
    }
    if (isBetween(code, 310, 319) || code == 1004) {
        return {Form::chunk, 0};
    }
    return {Form::text, 0};
}

double BinaryGroups::real() const {
    switch (m_form) {
    case Form::real: {
        const std::uint64_t bits = littleEndian(m_value);
        double number = 0;
        std::memcpy(&number, &bits, sizeof number);
        return number;
    }
    case Form::integer:
        return static_cast<double>(integer());
    case Form::text:
        return readTolerantReal(m_value).number;
    case Form::chunk:
        break;
    }
    return std::numeric_limits<double>::quiet_NaN();
}

std::int64_t BinaryGroups::integer() const {
    switch (m_form) {
    case Form::integer: {
        // Of 1, 2, 4 or 8 bytes, signed.
        const auto unusedBits = static_cast<unsigned>(64 - 8 * m_value.size());
        return static_cast<std::int64_t>(littleEndian(m_value) << unusedBits) >> unusedBits;
    }
    case Form::real: {
        constexpr double beyond = 9e18;
        const double number = real();
        return std::abs(number) < beyond ? static_cast<std::int64_t>(number) : 0;
    }
    case Form::text:
        return leadingInteger(m_value);
    case Form::chunk:
        break;
    }
    return 0;
}

} // namespace converters::drawing
