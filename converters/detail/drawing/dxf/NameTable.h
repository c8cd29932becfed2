#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <forward_list>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace converters::drawing {

/// Numbers for names, from 0 in the order in which they come up.
class NameTable {
public:
    NameTable() = default;
    NameTable(const NameTable&) = delete;
    NameTable& operator=(const NameTable&) = delete;
    NameTable(NameTable&&) = default;
    NameTable& operator=(NameTable&&) = default;
    ~NameTable() = default;

    std::uint32_t numberOf(std::string_view name) {
        Recent& recent = m_recent[slotOf(name)];
        if (recent.name != name || recent.name.data() == nullptr) {
            recent = search(name);
        }
        return recent.number;
    }

    const std::vector<std::string_view>& names() const { return m_names; }

private:
    /// Entities of a few layers take turns: most names are found here.
    struct Recent {
        std::string_view name;
        std::uint32_t number = 0;
    };
    static constexpr std::size_t slots = 64;

    static std::size_t slotOf(std::string_view name) {
        const std::size_t last = name.empty() ? 0 : static_cast<unsigned char>(name.back());
        return (name.size() * 7 + last) % slots;
    }
    Recent search(std::string_view name);

    std::array<Recent, slots> m_recent;
    /// They stay where they are, also when the table moves.
    std::forward_list<std::string> m_texts;
    std::vector<std::string_view> m_names;
    std::unordered_map<std::string_view, std::uint32_t> m_numbers;
};

} // namespace converters::drawing
