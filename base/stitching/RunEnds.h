#pragma once

#include <cstddef>
#include <cstdint>

namespace base {

/// A run by its number: the order in which the runs came, which decides what is joined first.
using RunNumber = std::uint32_t;

/// Behind every number of a run.
constexpr RunNumber noRun = 0xFFFFFFFF;

/// A run by its rank in the spatial order, in which the next run of a contour is mostly near: what
/// is kept for the runs while they are stitched is in this order. A type of its own, so that
/// numbers and ranks are not mixed up.
enum class RunRank : std::uint32_t {};

/// One of the two ends of a run that is given by its number or by its rank; or no end, which
/// compares greater than all. Takes 31 bits, so that users have one to spare.
template <typename Run>
class EndOf {
public:
    /// No end.
    constexpr EndOf() = default;

    static constexpr EndOf first(Run run) { return EndOf(2 * static_cast<std::uint32_t>(run)); }
    static constexpr EndOf last(Run run) { return EndOf(2 * static_cast<std::uint32_t>(run) + 1); }
    /// The end that index() names.
    static constexpr EndOf at(std::size_t index) {
        return EndOf(static_cast<std::uint32_t>(index));
    }

    constexpr bool exists() const { return m_index != none; }
    constexpr Run run() const { return static_cast<Run>(m_index / 2); }
    constexpr bool isLast() const { return m_index % 2 != 0; }
    /// The ends counted through: twice the run, and 1 more for its last end.
    constexpr std::size_t index() const { return m_index; }

    friend constexpr bool operator==(EndOf a, EndOf b) { return a.m_index == b.m_index; }
    friend constexpr bool operator!=(EndOf a, EndOf b) { return a.m_index != b.m_index; }
    friend constexpr bool operator<(EndOf a, EndOf b) { return a.m_index < b.m_index; }

    static constexpr std::uint32_t none = 0x7FFFFFFF;

private:
    constexpr explicit EndOf(std::uint32_t index) : m_index(index) {}

    std::uint32_t m_index = none;
};

using NumberedEnd = EndOf<RunNumber>;
using RankedEnd = EndOf<RunRank>;

/// More runs are refused with std::bad_alloc: short numbers keep what is kept for each end small,
/// and the runs alone would take more than a hundred gigabytes.
constexpr std::size_t maximumRuns = RankedEnd::none / 2;

/// Nothing, one end, or a crowd: what an end meets. In a crowd, ends have indices.
class EndOrCrowd {
public:
    /// Nothing.
    constexpr EndOrCrowd() = default;
    /// One end, or nothing for no end.
    constexpr EndOrCrowd(RankedEnd end) : m_bits(static_cast<std::uint32_t>(end.index())) {}
    static constexpr EndOrCrowd crowd(std::uint32_t index = 0) {
        EndOrCrowd crowd;
        crowd.m_bits = crowdBit | index;
        return crowd;
    }

    constexpr bool isEnd() const { return m_bits < RankedEnd::none; }
    constexpr bool isCrowd() const { return (m_bits & crowdBit) != 0; }

    /// The end, or no end for nothing. Not for a crowd.
    constexpr RankedEnd end() const { return RankedEnd::at(m_bits); }
    /// The index that a crowd was given.
    constexpr std::uint32_t indexInCrowd() const { return m_bits & ~crowdBit; }

    friend constexpr bool operator==(EndOrCrowd a, EndOrCrowd b) { return a.m_bits == b.m_bits; }
    friend constexpr bool operator!=(EndOrCrowd a, EndOrCrowd b) { return a.m_bits != b.m_bits; }

private:
    static constexpr std::uint32_t crowdBit = 0x80000000;

    std::uint32_t m_bits = RankedEnd::none;
};

} // namespace base
