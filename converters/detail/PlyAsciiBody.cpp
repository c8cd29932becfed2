#include "converters/detail/PlyAsciiBody.h"

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
    : text_(text) {
    for (const pcl::PCLPointField& field : fields) {
        datatypes_.push_back(field.datatype);
    }
}

void PlyAsciiBody::read(unsigned char* records, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        std::string_view text;
        takeLine(text_, text);
        PlyAsciiLine line(text, text_.data() + text_.size());
        for (const std::uint8_t datatype : datatypes_) {
            line.read(datatype, records);
            records += sizeOfDatatype(datatype);
        }
    }
}

} // namespace converters::detail
