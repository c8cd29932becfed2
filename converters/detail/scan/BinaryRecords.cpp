#include "converters/detail/scan/BinaryRecords.h"

#include "converters/detail/scan/Columns.h"
#include "converters/detail/scan/Elements.h"
#include "converters/detail/scan/Fault.h"
#include "converters/detail/scan/Wording.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace converters::scan {

BinaryRecords::BinaryRecords(input::ByteWindow& window, const ScanElement& element,
                             ScanFormat format)
    : m_window(window), m_element(element), m_isSwapped(isSwapped(format)) {
    m_parts.emplace_back();
    for (const ScanProperty& property : element.properties) {
        if (property.countType) {
            m_parts.back().countType = property.countType;
            m_parts.back().itemBytes = sizeOf(property.type);
            m_parts.emplace_back();
        } else {
            m_parts.back().scalarBytes += sizeOf(property.type);
        }
    }
}

void BinaryRecords::take(unsigned char* scalars) {
    for (const Part& part : m_parts) {
        takeScalars(scalars, part.scalarBytes);
        if (part.countType) {
            stepOverList(part);
        }
    }
    ++m_taken;
}

void BinaryRecords::takeScalars(unsigned char*& to, std::size_t size) {
    if (!m_window.need(size)) {
        refuseEnd();
    }
    std::copy_n(m_window.begin(), size, to);
    m_window.take(m_window.begin() + size);
    to += size;
}

void BinaryRecords::stepOverList(const Part& part) {
    const std::size_t countBytes = sizeOf(*part.countType);
    if (!m_window.need(countBytes)) {
        refuseEnd();
    }
    const std::uint64_t items = itemsAt(m_window.begin(), *part.countType);
    m_window.take(m_window.begin() + countBytes);
    // No file has as many.
    constexpr std::uint64_t beyondAny = std::uint64_t{1} << 60;
    const std::uint64_t size = std::min(items, beyondAny) * part.itemBytes;
    if (m_window.skip(size) != size) {
        refuseEnd();
    }
}

std::uint64_t BinaryRecords::itemsAt(const char* count, ScalarType type) const {
    constexpr std::size_t bitsPerByte = 8;
    const std::size_t size = sizeOf(type);
    std::uint64_t word = 0;
    std::memcpy(&word, count, size);
    if (m_isSwapped) {
        word = __builtin_bswap64(word) >> (bitsPerByte * (sizeof word - size));
    }
    unsigned char bytes[sizeof word];
    std::memcpy(bytes, &word, sizeof word);
    if (type == ScalarType::uint8) {
        return bytes[0];
    }
    const double items = numberAt(bytes, type);
    if (!(items >= 0) || std::trunc(items) != items) {
        refuse("byte " + grouped(m_window.position()) + ": a list of " + shortly(items) +
               " items in element " + inQuotes(m_element.name));
    }
    constexpr double beyondAny = 0x1p60;
    return static_cast<std::uint64_t>(std::min(items, beyondAny));
}

void BinaryRecords::stepOver(std::uint64_t count) {
    if (!hasLists(m_element)) {
        stepOverEqual(count);
        return;
    }
    std::vector<unsigned char> scalars(scalarBytes(m_element));
    while (count != 0) {
        const std::uint64_t stepped = stepOverLikeFirst(count);
        count -= stepped;
        m_taken += stepped;
        // Where records are of many kinds, the attempts cost little.
        constexpr std::uint64_t others = 32;
        for (std::uint64_t i = 0; stepped == 0 && i < others && count != 0; ++i, --count) {
            take(scalars.data());
        }
    }
}

/// Records of one size.
void BinaryRecords::stepOverEqual(std::uint64_t count) {
    const std::size_t size = m_parts[0].scalarBytes;
    if (size == 0) {
        return;
    }
    // More bytes than files have.
    constexpr std::uint64_t beyondAny = std::uint64_t{1} << 60;
    const std::uint64_t bytes = count > beyondAny / size ? beyondAny : count * size;
    const std::uint64_t skipped = m_window.skip(bytes);
    m_taken += skipped / size;
    if (skipped != bytes) {
        refuseEnd();
    }
}

/// Most faces of a mesh have as many corners. Steps over records in the window whose only list,
/// with a count of one byte, has as many items as that of the first: their counts are looked at
/// without waiting for one to tell where the next is.
///
/// @return how many, at most `count`; 0 when the records are not of that kind
std::uint64_t BinaryRecords::stepOverLikeFirst(std::uint64_t count) {
    const bool isKnown = m_parts.size() == 2 && sizeOf(*m_parts[0].countType) == 1;
    const std::size_t countOffset = m_parts[0].scalarBytes;
    if (!isKnown || !m_window.need(countOffset + 1)) {
        return 0;
    }
    const char items = m_window.begin()[countOffset];
    const std::size_t size =
        countOffset + 1 +
        itemsAt(m_window.begin() + countOffset, *m_parts[0].countType) * m_parts[0].itemBytes +
        m_parts[1].scalarBytes;
    const auto most = std::min<std::uint64_t>(count, m_window.available() / size);
    constexpr std::size_t batch = 64;
    std::uint64_t stepped = 0;
    for (const char* c = m_window.begin() + countOffset; stepped + batch <= most;
         stepped += batch) {
        unsigned differences = 0;
        for (std::size_t i = 0; i < batch; ++i, c += size) {
            differences |= static_cast<unsigned char>(*c) ^ static_cast<unsigned char>(items);
        }
        if (differences != 0) {
            break;
        }
    }
    m_window.take(m_window.begin() + stepped * size);
    return stepped;
}

void BinaryRecords::refuseEnd() const {
    refuse(endsAfter(m_element, m_taken));
}

} // namespace converters::scan
