#pragma once

#include "converters/DrawingPath.h"
#include "converters/detail/drawing/dxf/Drawing.h"

#include <cstdint>
#include <map>
#include <tuple>
#include <vector>

namespace converters::drawing {

/// Counts what is left out, by kind, layer and reason.
class LeftOutTable {
public:
    /// @param kind    a number for the kind, known to the caller
    /// @param layer   as LayerTable has it
    /// @param number  how many; saturates
    void add(std::uint32_t kind, std::uint32_t layer, LeftOutReason reason,
             std::uint64_t number = 1);

    struct Entry {
        std::uint32_t kind;
        std::uint32_t layer;
        LeftOutReason reason;
        std::uint64_t number;
    };
    /// In the order in which they came up.
    const std::vector<Entry>& entries() const { return m_entries; }

private:
    using Key = std::tuple<std::uint32_t, std::uint32_t, LeftOutReason>;

    std::vector<Entry> m_entries;
    std::map<Key, std::size_t> m_numbers;
    /// Many of a kind come one after another.
    std::size_t m_last = 0;
};

} // namespace converters::drawing
