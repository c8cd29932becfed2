#pragma once

#include "dxfeditor/detail/reading/DxfRecordGroups.h"
#include "dxfeditor/text/DxfGroups.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace dxfeditor {

/// Numbers the codes that records are made of, without gaps.
class DxfSlots {
public:
    static constexpr std::size_t count = 64;
    /// The slot of all other codes.
    static constexpr std::size_t other = count - 1;

    static constexpr DxfGroupSet groups =
        layerGroups | blockGroups | arcGroups | lineGroups | lwPolylineGroups | splineGroups;

    constexpr DxfSlots() {
        std::uint8_t next = 0;
        for (int code = 0; code < DxfGroupSet::endOfCodes; ++code) {
            m_slots[static_cast<std::size_t>(code)] =
                groups.contains(code) ? next++ : static_cast<std::uint8_t>(other);
        }
    }

    constexpr std::size_t operator[](int code) const {
        const auto index = static_cast<std::size_t>(static_cast<unsigned>(code));
        return index < m_slots.size() ? m_slots[index] : other;
    }

    /// The slots of a set of groups, a bit each.
    constexpr std::uint64_t bitsOf(const DxfGroupSet& set) const {
        std::uint64_t bits = 0;
        for (int code = 0; code < DxfGroupSet::endOfCodes; ++code) {
            bits |= set.contains(code) ? std::uint64_t{1} << (*this)[code] : 0;
        }
        return bits;
    }

private:
    std::array<std::uint8_t, DxfGroupSet::endOfCodes> m_slots{};
};

inline constexpr DxfSlots dxfSlots;

/// Whether two texts are the same; without a call of memcmp for short ones, as attributes are.
inline bool areSameText(std::string_view a, std::string_view b) {
    // From both sides, which overlap.
    const auto wordsAreEqual = [&](auto word) {
        decltype(word) other;
        const std::size_t last = a.size() - sizeof word;
        std::memcpy(&word, a.data(), sizeof word);
        std::memcpy(&other, b.data(), sizeof word);
        const bool begin = word == other;
        std::memcpy(&word, a.data() + last, sizeof word);
        std::memcpy(&other, b.data() + last, sizeof word);
        return begin && word == other;
    };
    if (a.size() != b.size() || a.size() > 2 * sizeof(std::uint64_t)) {
        return a == b;
    }
    return a.size() >= sizeof(std::uint64_t)   ? wordsAreEqual(std::uint64_t{})
           : a.size() >= sizeof(std::uint32_t) ? wordsAreEqual(std::uint32_t{})
           : a.size() >= sizeof(std::uint16_t) ? wordsAreEqual(std::uint16_t{})
                                               : a.empty() || a.front() == b.front();
}

/// The last value of each group of an object: where a code comes twice, dxflib takes the last.
/// Keeps those of the codes that records are made of.
class DxfLastValues {
public:
    /// Forgets all values.
    void clear() { m_present = 0; }

    void set(const DxfGroup& group) {
        const std::size_t slot = dxfSlots[group.code];
        m_values[slot] = group.value;
        m_present |= std::uint64_t{1} << slot;
    }

    template <int code>
    bool has() const {
        static_assert(DxfSlots::groups.contains(code));
        return ((m_present >> dxfSlots[code]) & 1) != 0;
    }

    /// Meaningful where has<code>().
    template <int code>
    std::string_view get() const {
        static_assert(DxfSlots::groups.contains(code));
        return m_values[dxfSlots[code]];
    }

    /// Whether the values in these slots are those of another object, character by character.
    bool agreeWith(const DxfLastValues& other, std::uint64_t slots) const {
        if (((m_present ^ other.m_present) & slots) != 0) {
            return false;
        }
        for (std::uint64_t rest = m_present & slots; rest != 0; rest &= rest - 1) {
            const auto slot = static_cast<std::size_t>(__builtin_ctzll(rest));
            if (!areSameText(m_values[slot], other.m_values[slot])) {
                return false;
            }
        }
        return true;
    }

private:
    std::array<std::string_view, DxfSlots::count> m_values;
    std::uint64_t m_present = 0;
};

} // namespace dxfeditor
