#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace converters::drawing {

/// The numbers that entities have, each with a place of its own.
enum class Slot : std::uint8_t {
    x,
    y,
    z,
    endX,
    endY,
    endZ,
    startTangentX,
    startTangentY,
    startTangentZ,
    endTangentX,
    endTangentY,
    endTangentZ,
    elevation,
    number40,
    number41,
    number42,
    number43,
    number44,
    number45,
    angle50,
    angle51,
    extrusionX,
    extrusionY,
    extrusionZ,
    /// Groups that hold no such number.
    none
};

constexpr std::size_t slots = static_cast<std::size_t>(Slot::none);

/// A set of slots.
using Slots = std::uint32_t;

constexpr Slots bitOf(Slot slot) {
    return Slots{1} << static_cast<unsigned>(slot);
}

/// The set of these slots.
template <typename... Some>
constexpr Slots slotSet(Some... some) {
    return (Slots{0} | ... | bitOf(some));
}

/// The group codes of the slots, in their order.
constexpr std::array<int, slots> slotCodes = {10, 20, 30, 11, 21, 31, 12, 22, 32, 13,  23,  33,
                                              38, 40, 41, 42, 43, 44, 45, 50, 51, 210, 220, 230};

constexpr std::size_t slotTableSize = 231;

constexpr std::array<Slot, slotTableSize> makeSlotTable() {
    std::array<Slot, slotTableSize> table{};
    for (Slot& slot : table) {
        slot = Slot::none;
    }
    for (std::size_t i = 0; i < slots; ++i) {
        table[static_cast<std::size_t>(slotCodes[i])] = static_cast<Slot>(i);
    }
    return table;
}

inline constexpr std::array<Slot, slotTableSize> slotTable = makeSlotTable();

/// The slot of a group code, Slot::none for all others.
constexpr Slot slotOf(int code) {
    const auto index = static_cast<std::size_t>(code);
    return code >= 0 && index < slotTableSize ? slotTable[index] : Slot::none;
}

static_assert(slotOf(10) == Slot::x && slotOf(38) == Slot::elevation &&
              slotOf(45) == Slot::number45 && slotOf(230) == Slot::extrusionZ &&
              slotOf(999) == Slot::none && slotOf(-5) == Slot::none);

/// What any entity has.
struct EntityAttributes {
    /// Group 5.
    std::uint64_t handle = 0;
    /// Group 8, a number in Drawing::layerNames.
    std::uint32_t layer = 0;
    /// Groups 62 and 420.
    std::int64_t colour = 256;
    std::int64_t trueColour = -1;
    /// The handle of its extension dictionary.
    std::uint64_t dictionary = 0;
    /// Group 60.
    bool isInvisible = false;
    /// Whether group 67 says which space it is in, and which; its owner says, too.
    bool tellsSpace = false;
    bool isInPaperSpace = false;
    bool isOwnedByPaperSpace = false;
    bool hasLayer = false;
};

/// What the groups of an entity say: the last value of each.
class EntityGroups {
public:
    void clear() {
        attributes = {};
        name.clear();
        flags = 0;
        count.reset();
        m_has = 0;
    }

    void set(Slot slot, double number) {
        m_numbers[static_cast<std::size_t>(slot)] = number;
        m_has |= bitOf(slot);
    }
    bool has(Slot slot) const { return (m_has & bitOf(slot)) != 0; }
    bool hasAny(Slots set) const { return (m_has & set) != 0; }
    double real(Slot slot, double fallback = 0) const {
        return has(slot) ? m_numbers[static_cast<std::size_t>(slot)] : fallback;
    }

    EntityAttributes attributes;
    /// Group 2.
    std::string name;
    /// Groups 70 and 71.
    std::int64_t flags = 0;
    std::optional<std::int64_t> count;

private:
    Slots m_has = 0;
    std::array<double, slots> m_numbers;
};

} // namespace converters::drawing
