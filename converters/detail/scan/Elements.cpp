#include "converters/detail/scan/Elements.h"

#include "converters/detail/scan/Wording.h"

#include <algorithm>

namespace converters::scan {

std::size_t scalarBytes(const ScanElement& element) {
    std::size_t size = 0;
    for (const ScanProperty& property : element.properties) {
        size += property.countType ? 0 : sizeOf(property.type);
    }
    return size;
}

std::vector<std::size_t> scalarOffsets(const ScanElement& element) {
    std::vector<std::size_t> offsets;
    std::size_t offset = 0;
    for (const ScanProperty& property : element.properties) {
        offsets.push_back(offset);
        offset += property.countType ? 0 : sizeOf(property.type);
    }
    return offsets;
}

bool hasLists(const ScanElement& element) {
    return std::any_of(element.properties.begin(), element.properties.end(),
                       [](const ScanProperty& property) { return property.countType.has_value(); });
}

std::uint64_t leastBytes(const ScanElement& element, ScanFormat format) {
    if (format == ScanFormat::ascii) {
        // A digit and a blank for each property.
        return 2 * std::uint64_t{element.properties.size()};
    }
    std::uint64_t size = scalarBytes(element);
    for (const ScanProperty& property : element.properties) {
        size += property.countType ? sizeOf(*property.countType) : 0;
    }
    return size;
}

bool isSwapped(ScanFormat format) {
    constexpr ScanFormat own = __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
                                   ? ScanFormat::binaryLittleEndian
                                   : ScanFormat::binaryBigEndian;
    return format != ScanFormat::ascii && format != own;
}

std::string endsAfter(const ScanElement& element, std::uint64_t records) {
    const std::string part =
        "the file ends after " + grouped(records) + " of " + grouped(element.count);
    return element.name == "vertex" ? part + " vertices"
                                    : part + " records of element " + inQuotes(element.name);
}

} // namespace converters::scan
