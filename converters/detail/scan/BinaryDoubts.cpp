#include "converters/detail/scan/BinaryDoubts.h"

#include "converters/detail/scan/Elements.h"

#include <algorithm>
#include <cmath>
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

double numberOf(const unsigned char* bytes, ScalarType type, bool isSwapped) {
    unsigned char own[sizeof(double)] = {};
    std::copy_n(bytes, sizeOf(type), own);
    if (isSwapped) {
        std::reverse(own, own + sizeOf(type));
    }
    return numberAt(own, type);
}

} // namespace

bool isNumberText(std::string_view bytes) {
    constexpr std::size_t least = 6;
    return bytes.size() >= least &&
           bytes.find_first_not_of("0123456789+-.eEnaifNAIF \t\r\n") == std::string_view::npos &&
           bytes.find_first_of("0123456789") != std::string_view::npos &&
           bytes.find_first_of(" \t\r\n") != std::string_view::npos;
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
