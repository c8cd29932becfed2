#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>

namespace dxfeditor {

/// A set of group codes from 0 to 447: all that dxflib makes records of, apart from extended data.
class DxfGroupSet {
public:
    /// All codes are below.
    static constexpr int endOfCodes = 448;

    constexpr DxfGroupSet(std::initializer_list<int> codes) {
        for (const int code : codes) {
            m_bits[static_cast<std::size_t>(code) / 64] |= std::uint64_t{1} << (code % 64);
        }
    }

    constexpr bool contains(int code) const {
        return code >= 0 && code < endOfCodes &&
               ((m_bits[static_cast<std::size_t>(code) / 64] >> (code % 64)) & 1) != 0;
    }

    /// The union of two sets.
    constexpr DxfGroupSet operator|(const DxfGroupSet& other) const {
        DxfGroupSet both = *this;
        for (std::size_t i = 0; i < m_bits.size(); ++i) {
            both.m_bits[i] |= other.m_bits[i];
        }
        return both;
    }

private:
    std::array<std::uint64_t, endOfCodes / 64> m_bits{};
};

} // namespace dxfeditor
