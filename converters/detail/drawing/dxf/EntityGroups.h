#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

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

/// The slot of a group code, Slot::none for all others.
constexpr Slot slotOf(int code) {
    switch (code) {
    case 10:
        return Slot::x;
    case 20:
        return Slot::y;
    case 30:
        return Slot::z;
    case 11:
        return Slot::endX;
    case 21:
        return Slot::endY;
    case 31:
        return Slot::endZ;
    case 12:
        return Slot::startTangentX;
    case 22:
        return Slot::startTangentY;
    case 32:
        return Slot::startTangentZ;
    case 13:
        return Slot::endTangentX;
    case 23:
        return Slot::endTangentY;
    case 33:
        return Slot::endTangentZ;
    case 38:
        return Slot::elevation;
    case 40:
        return Slot::number40;
    case 41:
        return Slot::number41;
    case 42:
        return Slot::number42;
    case 43:
        return Slot::number43;
    case 44:
        return Slot::number44;
    case 45:
        return Slot::number45;
    case 50:
        return Slot::angle50;
    case 51:
        return Slot::angle51;
    case 210:
        return Slot::extrusionX;
    case 220:
        return Slot::extrusionY;
    case 230:
        return Slot::extrusionZ;
    default:
        return Slot::none;
    }
}

constexpr int slotCodes = 231;

/// slotOf() as a table.
constexpr std::array<Slot, slotCodes> makeSlotTable() {
    std::array<Slot, slotCodes> table{};
    for (int code = 0; code < slotCodes; ++code) {
        table[static_cast<std::size_t>(code)] = slotOf(code);
    }
    return table;
}

inline constexpr std::array<Slot, slotCodes> slotTable = makeSlotTable();

/// What any entity has.
struct EntityAttributes {
    /// Group 5, as text.
    std::string_view handle;
    /// Group 8, a number in Drawing::layerNames.
    std::uint32_t layer = 0;
    /// Groups 62 and 420.
    std::int64_t colour = 256;
    std::int64_t trueColour = -1;
    /// Of its extension dictionary, as text.
    std::string_view dictionary;
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
        name = {};
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
    std::string_view name;
    /// Groups 70 and 71.
    std::int64_t flags = 0;
    std::optional<std::int64_t> count;

private:
    Slots m_has = 0;
    std::array<double, slots> m_numbers;
};

} // namespace converters::drawing
