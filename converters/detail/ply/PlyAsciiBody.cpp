// How the text of a value becomes a number. Each stage takes what it can prove to be right, and
// leaves the rest to the next; all give what a stream in the classic locale would give.
//
//   1. takeShortFloats takes a whole line of floats of at most eight characters, one blank apart:
//      the usual line. No branch depends on a digit.
//   2. takeShortDigits (DigitWords.h), where a line is not like that, takes up to seven digits of
//      one value in one step, whatever stands behind them.
//   3. takeLongDigits (NumberExtraction.cpp) takes any digits, one by one.
//   4. convertFast makes a number of them in one exact operation, or one whose error is known.
//   5. std::from_chars converts what is left: many digits, large exponents, ties.
//   6. strtod_l of the C library converts what std::from_chars calls out of range.
//
// Not done: one decoder of digits for 1 and 2. The first knows the length of its token before it
// looks at a digit, so that processors work on several tokens at a time; the second finds out by
// decoding where the digits end.

#include "converters/detail/ply/PlyAsciiBody.h"

#include "base/Blank.h"
#include "base/DigitWords.h"
#include "base/Words.h"
#include "converters/detail/numbers/NumberExtraction.h"
#include "converters/detail/ply/PlyDatatype.h"
#include "converters/detail/ply/PlyLines.h"

#include <cstring>
#include <type_traits>

namespace converters::detail {

void PlyAsciiLine::skipBlanks() {
    while (!m_hasFailed && m_position != m_end && base::isBlank(*m_position)) {
        ++m_position;
    }
}

template <typename Number>
void PlyAsciiLine::readNumber(unsigned char* out) {
    Number value = 0;
    skipBlanks();
    if (!m_hasFailed) {
        if constexpr (std::is_floating_point_v<Number>) {
            m_hasFailed = !extractNumber(m_position, m_end, m_readable, value);
        } else {
            m_hasFailed = !extractNumber(m_position, m_end, value);
        }
    }
    std::memcpy(out, &value, sizeof value);
}

void PlyAsciiLine::readCharacter(unsigned char* out) {
    skipBlanks();
    m_hasFailed = m_hasFailed || m_position == m_end;
    *out = m_hasFailed ? 0 : static_cast<unsigned char>(*m_position++);
}

void PlyAsciiLine::read(std::uint8_t datatype, unsigned char* out) {
    using Field = pcl::PCLPointField;
    switch (datatype) {
    case Field::INT8:
    case Field::UINT8:
        return readCharacter(out);
    case Field::INT16:
        return readNumber<std::int16_t>(out);
    case Field::UINT16:
        return readNumber<std::uint16_t>(out);
    case Field::INT32:
        return readNumber<std::int32_t>(out);
    case Field::UINT32:
        return readNumber<std::uint32_t>(out);
    case Field::FLOAT32:
        return readNumber<float>(out);
    case Field::FLOAT64:
        return readNumber<double>(out);
    default:
        return;
    }
}

PlyAsciiBody::PlyAsciiBody(const std::vector<pcl::PCLPointField>& fields, std::string_view text)
    : m_areFloats(base::canUseWords && !fields.empty()), m_text(text) {
    for (const pcl::PCLPointField& field : fields) {
        m_datatypes.push_back(field.datatype);
        m_recordSize += sizeOfDatatype(field.datatype);
        m_areFloats = m_areFloats && field.datatype == pcl::PCLPointField::FLOAT32;
    }
}

/// Takes the next line if its values are short floats with one blank between them: the usual line.
/// @return whether it has been taken; else it is still to be read
bool PlyAsciiBody::takeShortFloats(unsigned char* record) {
    constexpr std::ptrdiff_t room = 2 * base::wordLength;
    const char* const end = m_text.data() + m_text.size();
    const char* position = m_text.data();
    char separator = ' ';
    for (std::size_t i = 0; i < m_datatypes.size(); ++i) {
        if (separator != ' ' || end - position < room) {
            return false;
        }
        float value;
        const unsigned length = base::tokenLength(position);
        if (!base::readShortFloat(position, length, value)) {
            return false;
        }
        std::memcpy(record + i * sizeof value, &value, sizeof value);
        separator = position[length];
        position += length + 1;
    }
    if (separator != '\n') {
        return false;
    }
    m_text.remove_prefix(static_cast<std::size_t>(position - m_text.data()));
    return true;
}

void PlyAsciiBody::takeValues(unsigned char* record) {
    std::string_view text = m_text;
    base::takeLine(m_text, text);
    PlyAsciiLine line(text, m_text.data() + m_text.size());
    for (const std::uint8_t datatype : m_datatypes) {
        line.read(datatype, record);
        record += sizeOfDatatype(datatype);
    }
}

void PlyAsciiBody::read(unsigned char* records, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i, records += m_recordSize) {
        if (!m_areFloats || !takeShortFloats(records)) {
            takeValues(records);
        }
    }
}

} // namespace converters::detail
