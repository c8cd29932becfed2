#include "converters/detail/drawing/dxf/BinaryGroups.h"

#include "converters/detail/drawing/dxf/Numbers.h"

#include <cmath>
#include <cstring>
#include <limits>

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

bool BinaryGroups::isBinary(std::string_view file) {
    return file.substr(0, sentinel.size()) == sentinel;
}

BinaryGroups::BinaryGroups(std::string_view file) : m_file(file), m_next(sentinel.size()) {
    // The first group has code 0 and the text "SECTION"; a comment, code 999, may come before.
    const std::string_view start = file.substr(sentinel.size(), 2);
    m_hasShortCodes = start.size() == 2 && start[1] != 0 && start != "\xE7\x03";
    m_group = m_next;
}

bool BinaryGroups::next() {
    m_group = m_next;
    if (!readCode()) {
        m_next = m_group;
        return false;
    }
    Layout layout = layoutOf(m_code);
    if (layout.form == Form::text) {
        const std::size_t end = m_file.find('\0', m_next);
        if (end == std::string_view::npos) {
            m_next = m_group;
            return false;
        }
        m_value = m_file.substr(m_next, end - m_next);
        m_next = end + 1;
    } else {
        if (layout.form == Form::chunk) {
            if (m_next == m_file.size()) {
                m_next = m_group;
                return false;
            }
            layout.size = static_cast<unsigned char>(m_file[m_next++]);
        }
        if (!take(layout.size)) {
            m_next = m_group;
            return false;
        }
    }
    m_form = layout.form;
    return true;
}

bool BinaryGroups::readCode() {
    std::size_t size = 2;
    if (m_hasShortCodes) {
        if (m_next == m_file.size()) {
            return false;
        }
        const auto code = static_cast<unsigned char>(m_file[m_next]);
        constexpr unsigned char announcesLongCode = 255;
        if (code == announcesLongCode) {
            ++m_next;
        } else {
            size = 1;
        }
    }
    if (!take(size)) {
        return false;
    }
    m_code = static_cast<int>(littleEndian(m_value));
    return true;
}

bool BinaryGroups::take(std::size_t size) {
    if (m_file.size() - m_next < size) {
        return false;
    }
    m_value = m_file.substr(m_next, size);
    m_next += size;
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
