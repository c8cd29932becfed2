#include "base/stitching/EndPairs.h"

#include "base/LargePages.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>

namespace base {

namespace {

std::uint32_t hashOf(Row x, Row y, Row z) {
    const std::uint64_t hash = static_cast<std::uint64_t>(x) * 0x9E3779B97F4A7C15 +
                               static_cast<std::uint64_t>(y) * 0xC2B2AE3D27D4EB4F +
                               static_cast<std::uint64_t>(z) * 0xD6E8FEB86659FD93;
    return static_cast<std::uint32_t>(hash >> 32);
}

/// The one or two rows in which coordinates in reach of one lie: the row of each of those lies
/// between the rows of the two farthest in reach, which are the same row or neighbours.
struct RowsInReach {
    Row rows[2];
    int count;

    RowsInReach(double coordinate, const JoinDistance& distance)
        : rows{rowOf(coordinate - distance.reach(), distance.rowsPerUnit()),
               rowOf(coordinate + distance.reach(), distance.rowsPerUnit())},
          count(rows[0] == rows[1] ? 1 : 2) {}
};

/// Finds the pairs among ends that are added one by one. The cells of a square share slots of a
/// table, by a hash: an end of another cell is one more to compare with.
class EndGrid {
public:
    /// A finite end on its way into the grid.
    struct Entry {
        EndNumber end;
        /// The slot of its cell, and those of all cells in reach.
        std::uint32_t ownSlot;
        std::uint32_t slots[8];
        unsigned slotCount;
    };

    EndGrid(const OrderedEnds& ends, const SpatialIndex& index, const JoinDistance& distance)
        : m_ends(ends), m_index(index), m_distance(distance) {
        reserveLarge(m_slots, index.size());
        m_slots.resize(index.size(), noEnd);
        reserveLarge(m_nodes, ends.size());
        m_nodes.resize(ends.size());
    }

    // The steps of adding an end: each asks for the memory that the next one needs, which takes as
    // long as some hundred additions.

    void locate(EndNumber end, Entry& entry) const {
        const Point& point = m_ends[end];
        entry.end = end;
        entry.slotCount = 0;
        const RowsInReach x(point.x, m_distance);
        const RowsInReach y(point.y, m_distance);
        const RowsInReach z(point.z, m_distance);
        for (int i = 0; i < x.count; ++i) {
            for (int j = 0; j < y.count; ++j) {
                for (int k = 0; k < z.count; ++k) {
                    const std::uint32_t slot = slotOf(x.rows[i], y.rows[j], z.rows[k]);
                    __builtin_prefetch(&m_slots[slot]);
                    entry.slots[entry.slotCount++] = slot;
                }
            }
        }
        entry.ownSlot =
            entry.slotCount == 1
                ? entry.slots[0]
                : slotOf(m_index.rowOf(point.x), m_index.rowOf(point.y), m_index.rowOf(point.z));
    }

    /// Whether an end meets itself: not where a coordinate is infinite or not a number.
    bool canMeet(EndNumber end) const { return m_distance.meet(m_ends[end], m_ends[end]); }

    void fetch(const Entry& entry) const {
        for (unsigned i = 0; i < entry.slotCount; ++i) {
            const EndNumber end = m_slots[entry.slots[i]];
            if (end < noEnd) {
                m_ends.prefetch(end);
                __builtin_prefetch(&m_nodes[end]);
            }
        }
    }

    /// Compares the end with those before it, and adds it.
    void add(const Entry& entry) {
        for (unsigned i = 0; i < entry.slotCount; ++i) {
            compare(entry.end, entry.slots[i]);
        }
        EndNumber& latest = m_slots[entry.ownSlot];
        if (latest == crowd) {
            m_nodes[entry.end].met = crowd;
        } else {
            m_nodes[entry.end].next = latest;
            latest = entry.end;
        }
    }

    /// Notes that two ends meet.
    void note(EndNumber a, EndNumber b) {
        noteOne(a, b);
        noteOne(b, a);
    }

    /// What each end has met. The end of the grid.
    std::vector<EndNumber> met() && {
        std::vector<EndNumber>().swap(m_slots);
        std::vector<EndNumber> met;
        reserveLarge(met, m_nodes.size());
        for (std::size_t end = 0; end < m_nodes.size(); ++end) {
            const EndNumber other = m_nodes[end].met;
            met.push_back(other < noEnd && m_nodes[other].met != end ? crowd : other);
        }
        return met;
    }

private:
    struct Node {
        EndNumber met = noEnd;
        /// The end added before it to the same slot.
        EndNumber next = noEnd;
    };

    std::uint32_t slotOf(Row x, Row y, Row z) const {
        const SpatialIndex::Range range = m_index.rangeOf(x, z);
        return range.begin +
               static_cast<std::uint32_t>(std::uint64_t{hashOf(x, y, z)} * range.size >> 32);
    }

    void noteOne(EndNumber end, EndNumber other) {
        EndNumber& met = m_nodes[end].met;
        met = met == noEnd || met == other ? other : crowd;
    }

    void compare(EndNumber end, std::uint32_t slot) {
        constexpr int mostEnds = 16;
        int count = 0;
        for (EndNumber other = m_slots[slot]; other != noEnd; other = m_nodes[other].next) {
            if (other == crowd || ++count > mostEnds) {
                makeCrowd(slot);
                m_nodes[end].met = crowd;
                return;
            }
            if (m_distance.meet(m_ends[end], m_ends[other])) {
                note(end, other);
            }
        }
    }

    /// Makes the ends in a slot, and all that come, a crowd.
    void makeCrowd(std::uint32_t slot) {
        for (EndNumber end = m_slots[slot]; end < noEnd; end = m_nodes[end].next) {
            m_nodes[end].met = crowd;
        }
        m_slots[slot] = crowd;
    }

    const OrderedEnds& m_ends;
    const SpatialIndex& m_index;
    const JoinDistance m_distance;
    std::vector<Node> m_nodes;
    /// The end added last to each slot, or crowd.
    std::vector<EndNumber> m_slots;
};

/// Ends that are added together, after the memory for all of them has been asked for.
struct Block {
    static constexpr EndNumber mostEnds = 32;

    EndGrid::Entry entries[mostEnds];
    EndNumber size = 0;

    /// Takes the ends from `begin` on, as many as fit.
    void locate(const OrderedEnds& ends, std::size_t begin, EndGrid& grid) {
        size = 0;
        const std::size_t behind = std::min(begin + mostEnds, ends.size());
        // Those of the next block.
        for (std::size_t i = behind; i < std::min(behind + mostEnds, ends.size()); ++i) {
            ends.prefetch(i);
        }
        for (std::size_t i = begin; i < behind; ++i) {
            const auto end = static_cast<EndNumber>(i);
            if (!grid.canMeet(end)) {
                continue; // Meets nothing, not even itself.
            }
            if (ends.isSecondOfEqual(end)) {
                grid.note(end - 1, end);
            } else {
                grid.locate(end, entries[size++]);
            }
        }
    }
    void fetch(const EndGrid& grid) const {
        for (EndNumber i = 0; i < size; ++i) {
            grid.fetch(entries[i]);
        }
    }
    void add(EndGrid& grid) {
        for (EndNumber i = 0; i < size; ++i) {
            grid.add(entries[i]);
        }
        size = 0;
    }
};

/// Adds all finite ends.
void addAll(const OrderedEnds& ends, EndGrid& grid) {
    Block blocks[3];
    // Two blocks more than there are, until the last one has been added.
    const std::size_t behind = ends.size() + std::size_t{2} * Block::mostEnds;
    for (std::size_t i = 0; i * Block::mostEnds < behind; ++i) {
        blocks[(i + 1) % 3].add(grid);
        blocks[i % 3].locate(ends, i * Block::mostEnds, grid);
        blocks[(i + 2) % 3].fetch(grid);
    }
}

} // namespace

std::vector<EndNumber> pairEnds(const OrderedEnds& ends, const SpatialIndex& index,
                                const JoinDistance& distance) {
    EndGrid grid(ends, index, distance);
    addAll(ends, grid);
    return std::move(grid).met();
}

} // namespace base
