#include "tools/cloudconv/Units.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace {

using namespace std::string_view_literals;

/// By the numbers of the units.
constexpr std::array<std::string_view, 22> symbols = {
    "",           "in"sv,  "ft"sv, "mi"sv,     "mm"sv, "cm"sv,      "m"sv,  "km"sv,
    "\u00B5in"sv, "mil"sv, "yd"sv, "\u00C5"sv, "nm"sv, "\u00B5m"sv, "dm"sv, "dam"sv,
    "hm"sv,       "Gm"sv,  "au"sv, "ly"sv,     "pc"sv, "ft (US)"sv};

} // namespace

std::string symbolOf(converters::LengthUnit unit) {
    const auto number = static_cast<std::size_t>(unit);
    return number < symbols.size() ? std::string(symbols.at(number)) : std::string();
}

converters::LengthUnit unitOf(const std::string& symbol) {
    const auto found = std::find(symbols.begin(), symbols.end(), symbol);
    return found == symbols.end() ? converters::LengthUnit::none
                                  : static_cast<converters::LengthUnit>(found - symbols.begin());
}
