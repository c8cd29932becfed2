#include "converters/detail/scan/Columns.h"

#include "converters/detail/scan/TypeSwitch.h"

#include <cmath>
#include <cstring>
#include <type_traits>
#include <utility>

namespace converters::scan {
namespace {

template <std::size_t size>
using Bits = std::conditional_t<
    size == 1, std::uint8_t,
    std::conditional_t<size == 2, std::uint16_t,
                       std::conditional_t<size == 4, std::uint32_t, std::uint64_t>>>;

std::uint8_t swapped(std::uint8_t bits) {
    return bits;
}
std::uint16_t swapped(std::uint16_t bits) {
    return __builtin_bswap16(bits);
}
std::uint32_t swapped(std::uint32_t bits) {
    return __builtin_bswap32(bits);
}
std::uint64_t swapped(std::uint64_t bits) {
    return __builtin_bswap64(bits);
}

template <typename Number, bool isSwapped>
Number load(const unsigned char* bytes) {
    Bits<sizeof(Number)> bits;
    std::memcpy(&bits, bytes, sizeof bits);
    if (isSwapped) {
        bits = swapped(bits);
    }
    Number number;
    std::memcpy(&number, &bits, sizeof number);
    return number;
}

/// Walks over `count` records of both sides.
template <typename Convert>
void forEach(const Column& column, RecordBytes from, unsigned char* to, std::size_t toSize,
             std::size_t count, Convert convert) {
    const unsigned char* source = from.data + column.from;
    unsigned char* target = to + column.to;
    for (std::size_t i = 0; i < count; ++i) {
        const auto number = convert(source);
        std::memcpy(target, &number, sizeof number);
        source += from.size;
        target += toSize;
    }
}

/// Beyond the range of floats: infinite.
float narrowed(double wide) {
    return static_cast<float>(wide);
}

/// Copies one column; returns the most that a number lost.
template <typename Number, bool isSwapped>
double copyColumn(const Column& column, RecordBytes from, unsigned char* to, std::size_t toSize,
                  std::size_t count) {
    const double shift = column.shift;
    double loss = 0;
    if (column.fromType == column.toType && shift == 0) {
        forEach(column, from, to, toSize, count, load<Bits<sizeof(Number)>, isSwapped>);
    } else if (column.toType == ScalarType::float64) {
        forEach(column, from, to, toSize, count, [=](const unsigned char* bytes) {
            return static_cast<double>(load<Number, isSwapped>(bytes)) - shift;
        });
    } else if (column.isCoordinate) {
        forEach(column, from, to, toSize, count, [&](const unsigned char* bytes) {
            const double wide = static_cast<double>(load<Number, isSwapped>(bytes)) - shift;
            const float number = narrowed(wide);
            const double lost = std::abs(wide - static_cast<double>(number));
            // Not that of nan, nor of a number that was infinite before.
            loss = lost > loss ? lost : loss;
            return number;
        });
    } else {
        forEach(column, from, to, toSize, count, [=](const unsigned char* bytes) {
            return narrowed(static_cast<double>(load<Number, isSwapped>(bytes)) - shift);
        });
    }
    return loss;
}

} // namespace

ColumnCopier::ColumnCopier(std::vector<Column> columns, bool isSwapped)
    : m_columns(std::move(columns)), m_isSwapped(isSwapped) {}

void ColumnCopier::copy(RecordBytes from, unsigned char* to, std::size_t toSize,
                        std::size_t count) {
    for (const Column& column : m_columns) {
        const double loss = withType(column.fromType, [&](auto number) {
            using Number = decltype(number);
            return m_isSwapped ? copyColumn<Number, true>(column, from, to, toSize, count)
                               : copyColumn<Number, false>(column, from, to, toSize, count);
        });
        m_largestLoss = loss > m_largestLoss ? loss : m_largestLoss;
    }
}

double numberAt(const unsigned char* bytes, ScalarType type) {
    return withType(type, [&](auto number) {
        return static_cast<double>(load<decltype(number), false>(bytes));
    });
}

} // namespace converters::scan
