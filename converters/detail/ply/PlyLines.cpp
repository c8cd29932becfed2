#include "converters/detail/ply/PlyLines.h"

#include <algorithm>
#include <array>
#include <numeric>

namespace converters::detail {
namespace {

/// Counts line feeds, in a form that compilers turn into vector instructions.
std::uint64_t countFeeds(std::string_view text) {
    constexpr std::size_t lanes = 32;
    constexpr std::size_t roundsPerBlock = 255; // what a counter of 8 bits holds
    std::uint64_t total = 0;
    while (text.size() >= lanes) {
        const std::size_t rounds = std::min(text.size() / lanes, roundsPerBlock);
        std::array<std::uint8_t, lanes> counters{};
        for (std::size_t i = 0; i < rounds; ++i) {
            for (std::size_t lane = 0; lane < lanes; ++lane) {
                const bool isFeed = text[i * lanes + lane] == '\n';
                counters[lane] = static_cast<std::uint8_t>(counters[lane] + isFeed);
            }
        }
        total = std::accumulate(counters.begin(), counters.end(), total);
        text.remove_prefix(rounds * lanes);
    }
    return total + static_cast<std::uint64_t>(std::count(text.begin(), text.end(), '\n'));
}

} // namespace

std::uint64_t countLines(std::string_view text, std::uint64_t limit) {
    if (text.empty()) {
        return 0;
    }
    const std::uint64_t lines = countFeeds(text) + (text.back() == '\n' ? 0 : 1);
    return std::min(lines, limit);
}

} // namespace converters::detail
