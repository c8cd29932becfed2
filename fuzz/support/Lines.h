#pragma once

#include "tests/support/Random.h"

#include <algorithm>
#include <iterator>
#include <random>
#include <string>
#include <string_view>
#include <vector>

/// Random choices of the mutators. Small, since one is made for each mutation.
using Choice = RandomOf<std::minstd_rand>;

/// The lines of a text, without their ends.
inline std::vector<std::string> linesOf(std::string_view text) {
    std::vector<std::string> lines;
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        lines.emplace_back(text.substr(0, end));
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    }
    return lines;
}

/// Repeats, removes or moves a stretch of a list, in units of `unit` elements.
template <typename Element>
void rearrange(std::vector<Element>& list, std::size_t unit, Choice& choice) {
    const std::size_t units = list.size() / unit;
    if (units == 0) {
        return;
    }
    const auto place = [&](std::size_t number) {
        return list.begin() + static_cast<std::ptrdiff_t>(number * unit);
    };
    const std::size_t first = choice.below(units);
    const std::size_t length = 1 + choice.below(std::min<std::size_t>(units - first, 12));
    const std::vector<Element> stretch(place(first), place(first + length));
    if (choice.oneIn(2)) {
        list.erase(place(first), place(first + length));
    }
    if (!choice.oneIn(3)) {
        list.insert(place(choice.below(list.size() / unit + 1)), stretch.begin(), stretch.end());
    }
}
