#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <random>

/// Random numbers from a seed, the same with every standard library.
///
/// @tparam Engine  where they come from
template <typename Engine>
class RandomOf {
public:
    explicit RandomOf(typename Engine::result_type seed) : m_engine(seed) {}

    /// As many random bits as the engine gives at a time.
    auto operator()() { return m_engine(); }

    /// A number from 0 to `count` - 1; `count` is greater than 0.
    template <typename Integer = std::size_t>
    Integer below(std::size_t count) {
        return static_cast<Integer>(m_engine() % count);
    }

    /// True once in `count` times.
    bool oneIn(std::size_t count) { return below(count) == 0; }

    /// One of the elements of a container or an array, which is not empty.
    template <typename Container>
    const auto& pick(const Container& choices) {
        return *(std::begin(choices) + static_cast<std::ptrdiff_t>(below(std::size(choices))));
    }

private:
    Engine m_engine;
};

using Random = RandomOf<std::mt19937_64>;
/// Gives 32 bits at a time.
using Random32 = RandomOf<std::mt19937>;
