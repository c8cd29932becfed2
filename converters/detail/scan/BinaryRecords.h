#pragma once

#include "converters/Scan.h"
#include "converters/detail/input/ByteWindow.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace converters::scan {

/// Takes the records of one element of a binary body, in the byte order of the file.
class BinaryRecords {
public:
    /// The window is at the first record; both have to outlive this object.
    BinaryRecords(input::ByteWindow& window, const ScanElement& element, ScanFormat format);

    /// Takes a record.
    /// @param scalars  receives the scalar properties without gaps
    /// @throws Fault
    void take(unsigned char* scalars);

    /// Takes `count` records, and nothing of them.
    /// @throws Fault
    void stepOver(std::uint64_t count);

private:
    /// Scalar properties, and the list behind them, if there is one.
    struct Part {
        std::size_t scalarBytes = 0;
        std::optional<ScalarType> countType;
        std::size_t itemBytes = 0;
    };

    void takeScalars(unsigned char*& to, std::size_t size);
    void stepOverList(const Part& part);
    std::uint64_t itemsAt(const char* count, ScalarType type) const;
    void stepOverEqual(std::uint64_t count);
    std::uint64_t stepOverLikeFirst(std::uint64_t count);
    [[noreturn]] void refuseEnd() const;

    input::ByteWindow& m_window;
    const ScanElement& m_element;
    bool m_isSwapped;
    std::vector<Part> m_parts;
    std::uint64_t m_taken = 0;
};

} // namespace converters::scan
