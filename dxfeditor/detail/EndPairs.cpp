#include "dxfeditor/detail/EndPairs.h"

#include "dxfeditor/detail/LargePages.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>

namespace dxfeditor {

namespace {

using Point = Run::Point;

/// A cell's place in one direction.
using Row = std::int64_t;

constexpr double rowsPerUnit = 64.0;
/// A little more than the tolerance, so that rounding does not matter.
constexpr double reach = 0.0011;
/// Beyond it there are no further rows: the outermost one is endless.
constexpr double endOfRows = 0x1p40;

/// The row of a coordinate. Never decreases from one coordinate to a greater one, not even by
/// rounding: the row of every coordinate in reach of another lies between the rows of the two
/// farthest in reach, which are the same row or neighbours. Whole numbers, which drawings prefer,
/// are far from the sides.
Row rowOf(double coordinate) {
    // In this order, what is not a number is in the outermost row.
    const double inside = std::max(-endOfRows, std::min(endOfRows, coordinate));
    return static_cast<Row>(inside * rowsPerUnit + 0.5);
}

std::uint64_t hashOf(Row x, Row y, Row z) {
    return static_cast<std::uint64_t>(x) * 0x9E3779B97F4A7C15 +
           static_cast<std::uint64_t>(y) * 0xC2B2AE3D27D4EB4F +
           static_cast<std::uint64_t>(z) * 0xD6E8FEB86659FD93;
}

std::uint64_t ownHash(const Point& point) {
    return hashOf(rowOf(point.x), rowOf(point.y), rowOf(point.z));
}

/// The one or two rows in which coordinates in reach of one lie.
struct RowsInReach {
    Row rows[2];
    int count;

    explicit RowsInReach(double coordinate)
        : rows{rowOf(coordinate - reach), rowOf(coordinate + reach)},
          count(rows[0] == rows[1] ? 1 : 2) {}
};

/// Finds the pairs among ends that are added one by one. Cells share slots of a table, by a hash:
/// an end of another cell is one more to compare with.
class EndGrid {
public:
    explicit EndGrid(const std::vector<Point>& ends) : m_ends(ends) {
        std::size_t slots = 2;
        m_shift = 63;
        while (slots < ends.size()) {
            slots *= 2;
            --m_shift;
        }
        fill(m_slots, slots);
        fill(m_met, ends.size());
        fill(m_next, ends.size());
    }

    std::size_t slotOf(std::uint64_t hash) const { return hash >> m_shift; }

    /// Two steps towards the memory that add() needs.
    void prefetchSlot(std::size_t slot) const { __builtin_prefetch(&m_slots[slot]); }
    void prefetchEnds(std::size_t slot) const {
        const EndNumber end = m_slots[slot];
        if (end < noEnd) {
            __builtin_prefetch(&m_ends[end]);
            __builtin_prefetch(&m_met[end]);
        }
    }

    /// Compares a finite end with those before it, and adds it.
    ///
    /// @param slot  that of its own cell
    void add(EndNumber end, std::size_t slot) {
        const Point& point = m_ends[end];
        const RowsInReach x(point.x);
        const RowsInReach y(point.y);
        const RowsInReach z(point.z);
        for (int i = 0; i < x.count; ++i) {
            for (int j = 0; j < y.count; ++j) {
                for (int k = 0; k < z.count; ++k) {
                    compare(end, slotOf(hashOf(x.rows[i], y.rows[j], z.rows[k])));
                }
            }
        }
        if (m_slots[slot] == crowd) {
            m_met[end] = crowd;
        } else {
            m_next[end] = m_slots[slot];
            m_slots[slot] = end;
        }
    }

    /// Notes that two ends meet.
    void note(EndNumber a, EndNumber b) {
        noteOne(a, b);
        noteOne(b, a);
    }

    /// What each end has met.
    std::vector<EndNumber> takeMet() { return std::move(m_met); }

private:
    void noteOne(EndNumber end, EndNumber other) {
        EndNumber& met = m_met[end];
        met = met == noEnd || met == other ? other : crowd;
    }

    void compare(EndNumber end, std::size_t slot) {
        constexpr int mostEnds = 16;
        int count = 0;
        for (EndNumber other = m_slots[slot]; other != noEnd; other = m_next[other]) {
            if (other == crowd || ++count > mostEnds) {
                makeCrowd(slot);
                m_met[end] = crowd;
                return;
            }
            if (meet(m_ends[end], m_ends[other])) {
                note(end, other);
            }
        }
    }

    /// Makes the ends in a slot, and all that come, a crowd.
    void makeCrowd(std::size_t slot) {
        for (EndNumber end = m_slots[slot]; end < noEnd; end = m_next[end]) {
            m_met[end] = crowd;
        }
        m_slots[slot] = crowd;
    }

    static void fill(std::vector<EndNumber>& numbers, std::size_t size) {
        reserveLarge(numbers, size);
        numbers.resize(size, noEnd);
    }

    const std::vector<Point>& m_ends;
    std::vector<EndNumber> m_met;
    /// The end added last to each slot, or crowd, and that before each end.
    std::vector<EndNumber> m_slots;
    std::vector<EndNumber> m_next;
    int m_shift;
};

/// Adds all finite ends. A block of them at a time, so that the memory for all of a block is on its
/// way at once.
void addAll(const std::vector<Point>& ends, EndGrid& grid) {
    constexpr EndNumber blockSize = 32;
    std::size_t slots[blockSize];
    const auto count = static_cast<EndNumber>(ends.size());
    for (EndNumber begin = 0; begin < count; begin += blockSize) {
        const EndNumber size = std::min(blockSize, count - begin);
        for (EndNumber i = 0; i < size; ++i) {
            slots[i] = grid.slotOf(ownHash(ends[begin + i]));
            grid.prefetchSlot(slots[i]);
        }
        for (EndNumber i = 0; i < size; ++i) {
            grid.prefetchEnds(slots[i]);
        }
        for (EndNumber i = 0; i < size; ++i) {
            const EndNumber end = begin + i;
            if (!meet(ends[end], ends[end])) {
                continue; // Not finite: meets nothing, not even itself.
            }
            if (end % 2 != 0 && ends[end] == ends[end - 1]) {
                grid.note(end - 1, end);
            } else {
                grid.add(end, slots[i]);
            }
        }
    }
}

} // namespace

std::vector<EndNumber> pairEnds(const std::vector<Point>& ends) {
    EndGrid grid(ends);
    addAll(ends, grid);
    std::vector<EndNumber> met = grid.takeMet();
    for (std::size_t end = 0; end < met.size(); ++end) {
        if (met[end] < noEnd && met[met[end]] != end) {
            met[end] = crowd;
        }
    }
    return met;
}

} // namespace dxfeditor
