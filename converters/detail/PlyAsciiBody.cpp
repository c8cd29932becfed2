#include "converters/detail/PlyAsciiBody.h"

#include "converters/detail/DigitWords.h"
#include "converters/detail/NumberExtraction.h"
#include "converters/detail/PlyDatatype.h"
#include "converters/detail/PlyLines.h"

#include <cstring>
#include <type_traits>

namespace converters::detail {

void PlyAsciiLine::skipBlanks() {
    while (!hasFailed_ && position_ != end_ && isBlank(*position_)) {
        ++position_;
    }
}

template <typename Number>
void PlyAsciiLine::readNumber(unsigned char* out) {
    Number value = 0;
    skipBlanks();
    if (!hasFailed_) {
        if constexpr (std::is_floating_point_v<Number>) {
            hasFailed_ = !extractNumber(position_, end_, readable_, value);
        } else {
            hasFailed_ = !extractNumber(position_, end_, value);
        }
    }
    std::memcpy(out, &value, sizeof value);
}

void PlyAsciiLine::readCharacter(unsigned char* out) {
    skipBlanks();
    hasFailed_ = hasFailed_ || position_ == end_;
    *out = hasFailed_ ? 0 : static_cast<unsigned char>(*position_++);
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
    : areFloats_(canUseWords && !fields.empty()), text_(text) {
    for (const pcl::PCLPointField& field : fields) {
        datatypes_.push_back(field.datatype);
        recordSize_ += sizeOfDatatype(field.datatype);
        areFloats_ = areFloats_ && field.datatype == pcl::PCLPointField::FLOAT32;
    }
}

/// Takes the next line if its values are short floats with one blank between them: the usual line.
/// @return whether it has been taken; else it is still to be read
bool PlyAsciiBody::takeShortFloats(unsigned char* record) {
    constexpr std::ptrdiff_t room = 2 * wordLength;
    const char* const end = text_.data() + text_.size();
    const char* position = text_.data();
    char separator = ' ';
    for (std::size_t i = 0; i < datatypes_.size(); ++i) {
        if (separator != ' ' || end - position < room) {
            return false;
        }
        float value;
        const unsigned length = tokenLength(position);
        if (!readShortFloat(position, length, value)) {
            return false;
        }
        std::memcpy(record + i * sizeof value, &value, sizeof value);
        separator = position[length];
        position += length + 1;
    }
    if (separator != '\n') {
        return false;
    }
    text_.remove_prefix(static_cast<std::size_t>(position - text_.data()));
    return true;
}

void PlyAsciiBody::takeValues(unsigned char* record) {
    std::string_view text = text_;
    takeLine(text_, text);
    PlyAsciiLine line(text, text_.data() + text_.size());
    for (const std::uint8_t datatype : datatypes_) {
        line.read(datatype, record);
        record += sizeOfDatatype(datatype);
    }
}

void PlyAsciiBody::read(unsigned char* records, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i, records += recordSize_) {
        if (!areFloats_ || !takeShortFloats(records)) {
            takeValues(records);
        }
    }
}

} // namespace converters::detail
